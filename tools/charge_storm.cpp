// Runs a child that edits and exports without pause, and kills it at random moments and at each
// step of a charge. After each restart, the service's ledger must contain one unrefunded charge for
// every render that the batch knows as paid. Other unrefunded charges are allowed only if the
// child still has an entry for them in its journal.
//
//     charge_storm SERVICE_PROGRAM FOLDER KILLS
//         runs children and judges the ledger
//     charge_storm --child FOLDER ADDRESS [STEP TIMES]
//         exports until it is killed; kills itself when it reaches STEP for the TIMES-th time
//     charge_storm --child FOLDER ADDRESS calm
//         only loads the photos and refunds what earlier children left open

#include "account/CreditJournal.h"
#include "canvas/RenderFingerprint.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "tools/Storm.h"

#include <QDateTime>
#include <QScopeGuard>

#include <array>
#include <csignal>
#include <iostream>
#include <map>
#include <set>

#include <sqlite3.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr std::array steps{"opened",   "reserved",  "wrote",   "worked",
                           "recorded", "refunding", "refunded"};
// Runs in a child process: edits and exports until it is killed.
class Child {
public:
    Child(const QString& folder, const QUrl& address)
        : m_folder(folder), m_preferences(m_folder.filePath(u"moltiva.sqlite"_s)),
          m_api(configurationOf(address), m_preferences), m_account(m_api, withoutBrowser()),
          m_journal(m_account, m_preferences, m_folder.filePath(u"runs"_s),
                    {.retry = 200ms, .underWay = underWay}),
          m_photos(std::make_shared<PhotoCache>(m_folder.filePath(u"thumbnails"_s))),
          m_session(m_photos, m_preferences, &std::chrono::steady_clock::now, smallSize)
    {
        m_session.setAccountSession(m_account);
        m_session.setCreditJournal(m_journal, m_folder.filePath(u"staging"_s));
        m_journal.stepReached = [this](const char* step) { reached(step); };
    }

    void dieAt(const QString& step, int times)
    {
        m_lastStep = step;
        m_stepsLeft = times;
    }

    // Restores the batch and waits for the refunds of entries that earlier children left open, then
    // prints the state. Returns whether all of this succeeded.
    bool start()
    {
        m_session.restoreWorkspaceIfNeeded();
        const qsizetype open = entries().size();
        if (!refreshed(m_account))
            return complain("the account cannot be read:", m_account.message());
        if (!turnUntil([this] { return m_session.didRestoreWorkspace(); }))
            return complain("the batch was not restored:", m_session.status());
        if (!turnUntil([&] { return m_refunds >= open; })) {
            return complain("too few refunds:",
                            u"%1 of %2; %3"_s.arg(m_refunds).arg(open).arg(m_account.message()));
        }
        if (m_session.batch().items.isEmpty()) {
            m_session.load({QUrl::fromLocalFile(m_folder.filePath(u"photos"_s))});
            turnUntil([this] { return !m_session.isImporting(); });
        }
        tellState();
        return m_session.batch().items.size() == photoCount ||
               complain("photos are missing:", m_session.status());
    }

    bool waitUntilRefunded()
    {
        const bool isIdle = turnUntil([this] { return entries().isEmpty(); });
        tellState();
        return isIdle || complain("entries stay open:", m_account.message());
    }

    [[noreturn]] void storm()
    {
        while (true) {
            for (int edits = below(4); edits > 0; --edits)
                edit();
            exportSomething();
        }
    }

private:
    QStringList entries() const { return m_preferences.keysBeginningWith(entryPrefix); }

    void reached(const QByteArray& step)
    {
        say(u"step "_s + QString::fromLatin1(step));
        m_refunds += step == "refunded";
        if (m_lastStep == QLatin1StringView(step) && --m_stepsLeft == 0)
            std::raise(SIGKILL);
        if (step == m_stopAt)
            m_session.activities().stop(Activity::Kind::exporting);
    }

    // Prints the paid renders of the batch and the open entries of the journal. Then waits until
    // the judge answers, because the ledger must not change while it is judged.
    void tellState() const
    {
        for (const PublicationItem& item : m_session.batch().items) {
            for (const QString& fingerprint : item.paidRenderFingerprints) {
                if (!fingerprint.startsWith(u"pixels-"))
                    say(u"paid %1/%2"_s.arg(item.id.toString(), fingerprint));
            }
        }
        for (const QString& key : entries())
            say(u"open "_s + key.section(u' ', -1));
        say(u"settled"_s);
        std::string go;
        std::getline(std::cin, go);
    }

    void edit()
    {
        switch (below(6)) {
        case 0:
            return m_session.undo();
        case 1:
            return m_session.redo();
        case 2:
            return m_session.selectItem(below(photoCount), Qt::KeyboardModifiers());
        case 3:
            return m_session.selectItem(below(photoCount), Qt::ControlModifier);
        default:
            m_session.setText(CopySlot::title,
                              QString::number(QRandomGenerator::global()->generate64()));
        }
    }

    void exportSomething()
    {
        const bool isSingle = below(2) == 0;
        const QString place = m_folder.filePath(below(4) == 0 ? u"missing"_s : u"out"_s);
        static constexpr std::array<const char*, 8> stops{"opened", "reserved", "wrote"};
        m_stopAt = stops[std::size_t(below(int(stops.size())))];
        const Batch& batch = m_session.batch();
        tellPlan(isSingle ? QList<int>{batch.selectedIndex} : m_session.exports().exportIndices());
        if (isSingle)
            m_session.exportCurrent(place + u'/' + batch.currentItem()->filename() + u".png"_s);
        else
            m_session.exportAll(place);
        turnUntil([this] { return !m_session.isExporting(); });
        say(u"ended %1 %2"_s.arg(int(m_session.statusLog().current().kind))
                .arg(m_session.status()));
    }

    // Prints how many files the coming export writes, and the request id and the renders of its
    // charge.
    void tellPlan(const QList<int>& indices) const
    {
        const SocialFormat format = m_session.batch().format;
        QList<RenderedOutput> outputs;
        for (const int index : indices) {
            const PublicationItem& item = m_session.batch().items[index];
            const auto content = m_photos->digestOf(item.image.path);
            outputs.append({item,
                            {},
                            renderFingerprint({item, content.value_or(QByteArray()),
                                               smallSize(format), designSize(format)}),
                            {}});
        }
        const QList<RenderedOutput> unpaid = unpaidRenderedOutputs(outputs, m_session.payments());
        QString line = u"plan %1"_s.arg(outputs.size());
        if (!unpaid.isEmpty())
            line += u' ' + creditRequestID(unpaid, u"download"_s);
        for (const RenderedOutput& output : unpaid)
            line += u" %1/%2"_s.arg(output.item.id.toString(), output.fingerprint);
        say(line);
    }

    QDir m_folder;
    QString m_lastStep;
    int m_stepsLeft = 0, m_refunds = 0;
    QByteArray m_stopAt;
    PreferencesStore m_preferences;
    AccountAPI m_api;
    AccountSession m_account;
    CreditJournal m_journal;
    std::shared_ptr<PhotoCache> m_photos;
    StudioSession m_session;
};

int runChild(const QStringList& arguments)
{
    Child child(arguments[2], QUrl(arguments[3]));
    const bool isCalm = arguments.value(4) == u"calm";
    if (arguments.size() > 5)
        child.dieAt(arguments[4], arguments[5].toInt());
    if (!child.start())
        return 1;
    if (isCalm)
        return child.waitUntilRefunded() ? 0 : 1;
    child.storm();
}

// What the service's ledger says about the charge with one request id. The charge is open until it
// is refunded.
struct Charge {
    int amount = 0;    // credits; negative
    bool isOpen = false;
};
using Ledger = std::map<QString, Charge>;

class Judge {
public:
    Judge(const QString& ledgerFile) : m_ledgerFile(ledgerFile) {}

    // Reads one line of a child's output. Returns whether the child waits for an answer.
    bool hear(const QString& line)
    {
        const QStringList words = line.split(u' ');
        const QString& word = words[0];
        if (word == u"paid") {
            m_paid.insert(words.value(1));
        } else if (word == u"open") {
            m_left.insert(words.value(1));
        } else if (word == u"plan") {
            m_files = words.value(1).toInt();
            m_written = 0;
            m_request = words.value(2);
            m_isFree = m_request.isEmpty();
            if (!m_request.isEmpty())
                m_plans[m_request] = words.mid(3);
        } else if (word == u"step") {
            m_step = words.value(1);
            m_written += m_step == u"wrote";
            if (m_step == u"recorded")
                m_request.clear();
        } else if (word == u"ended") {
            const bool isDone = words.value(1).toInt() == int(StatusKind::done);
            m_exports += isDone;
            m_freeExports += isDone && m_isFree;
            m_request.clear();
            m_step = u"none"_s;
        }
        return word == u"settled";
    }

    void childDied(bool isByItself)
    {
        ++m_kills[isByItself ? m_step : u"random, last at "_s + m_step];
        // Notes the request if the child died after writing all files, but before recording the
        // payment: its charge is refunded although the files exist.
        if (!m_request.isEmpty() && m_written == m_files)
            m_unrecorded.insert(m_request);
        m_request.clear();
        m_step = u"none"_s;
        m_paid.clear();
        m_left.clear();
    }

    void judge()
    {
        const Ledger ledger = readLedger();
        std::map<QString, int> charged;    // number of open charges, by render
        int openCredits = 0;
        for (const auto& [request, charge] : ledger) {
            const auto plan = m_plans.find(request);
            if (plan == m_plans.end()) {
                fail("charged under an identifier that was not announced", request);
                continue;
            }
            if (charge.amount != -exportCreditCost * int(plan->second.size()))
                fail("charged another amount than announced", request);
            const bool isLeft = m_left.contains(request);
            if (!charge.isOpen) {
                m_inUsersFavour += int(m_unrecorded.erase(request));
                continue;
            }
            if (isLeft)
                continue;
            openCredits -= charge.amount;
            for (const QString& render : plan->second) {
                ++charged[render];
                if (!m_paid.contains(render))
                    fail("charged, not given back and not known as paid", render);
            }
        }
        for (const QString& render : m_paid) {
            if (charged[render] != 1)
                fail(charged[render] == 0 ? "known as paid, but free" : "paid twice", render);
        }
        if (openCredits != exportCreditCost * int(m_paid.size()))
            fail("the charges are not the price of what is paid", QString::number(openCredits));
        m_leftEntries += int(m_left.size());
        m_renders = int(m_paid.size());
        ++m_judged;
        m_paid.clear();
        m_left.clear();
    }

    void fail(const char* what, const QString& about)
    {
        if (++m_violations <= 20)
            std::fprintf(stderr, "%s: %s\n", what, qPrintable(about));
    }

    int finish() const
    {
        int kills = 0;
        for (const auto& [where, count] : m_kills) {
            std::printf("killed at %-28s %5d\n", qPrintable(where), count);
            kills += count;
        }
        std::printf("%d kills, %d judgements; %d charges, %d refunds, %d renders paid; %d exports "
                    "done, %d of them free; %d entries waited for requests under way; %d "
                    "refunded though the files were there; %d violations\n",
                    kills, m_judged, m_charges, m_refunds, m_renders, m_exports, m_freeExports,
                    m_leftEntries, m_inUsersFavour, m_violations);
        return m_violations == 0 && m_renders > 0 && m_refunds > 0 ? 0 : 1;
    }

private:
    Ledger readLedger()
    {
        const auto rows =
            ledgerRows(m_ledgerFile, "SELECT kind, request_id, amount FROM ledger_entry"
                                     " WHERE request_id IS NOT NULL ORDER BY id");
        if (!rows)
            fail("no judgement", u"without the ledger"_s);
        Ledger ledger;
        m_charges = m_refunds = 0;
        for (const QByteArrayList& row : rows.value_or(QList<QByteArrayList>())) {
            const QString request = QString::fromUtf8(row[1]);
            const bool isReserve = row[0] == "reserve";
            const int amount = row[2].toInt();
            Charge& charge = ledger[request];
            ++(isReserve ? m_charges : m_refunds);
            if (charge.isOpen == isReserve)
                fail("charged or given back twice in a row", request);
            if (!isReserve && amount != -charge.amount)
                fail("another amount came back", request);
            charge = {isReserve ? amount : charge.amount, isReserve};
        }
        return ledger;
    }

    QString m_ledgerFile;
    // The renders that each request pays for, by request id.
    std::map<QString, QStringList> m_plans;
    std::set<QString> m_paid, m_left;    // reported by the running child
    // Ids of requests whose files were all written, but whose payment was not recorded.
    std::set<QString> m_unrecorded;
    QString m_request, m_step = u"none"_s;    // of the export under way
    bool m_isFree = false;
    int m_files = 0, m_written = 0;
    std::map<QString, int> m_kills;
    int m_charges = 0, m_refunds = 0, m_renders = 0, m_judged = 0, m_exports = 0;
    int m_freeExports = 0, m_leftEntries = 0, m_inUsersFavour = 0, m_violations = 0;
};

int judgeStorm(const QString& program, const QDir& folder, int kills)
{
    if (!paintPhotos(folder))
        return 2;
    const StormService service(program, folder);
    if (!service.isReady())
        return 1;
    Judge judge(service.ledgerFile());
    Storm<Judge> storm(folder.path(), service.address(), judge);
    // Imports the photos in a child of its own. No later child can undo this import, because a
    // child can undo only its own changes. Without the imported batch, the paid renders would be
    // unknown.
    storm.runCalmly();
    storm.killAtEach(steps, kills);
    storm.runCalmly();
    return judge.finish();
}

}    // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() >= 4 && arguments[1] == u"--child")
        return runChild(arguments);
    if (arguments.size() == 4 && arguments[3].toInt() > 0)
        return judgeStorm(arguments[1], QDir(arguments[2]), arguments[3].toInt());
    std::fputs("charge_storm SERVICE_PROGRAM FOLDER KILLS\n", stderr);
    return 2;
}
