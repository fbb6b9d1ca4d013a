// Runs a child that generates copy in the cloud without pause, and kills it at random moments and
// at each step of a charge. After each restart, every unrefunded charge in the service's ledger
// must be for a copy that the child has stored, and no stored copy may be for a refunded one.
//
//     copy_storm SERVICE_PROGRAM FOLDER KILLS
//         runs children and judges the ledger
//     copy_storm --child FOLDER ADDRESS [STEP TIMES]
//         generates until it is killed; kills itself when it reaches STEP for the TIMES-th time
//     copy_storm --child FOLDER ADDRESS calm
//         only loads the photos and refunds what earlier children left open

#include "account/CreditJournal.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "tests/support/StandInProvider.h"
#include "tools/Storm.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QScopeGuard>

#include <array>
#include <csignal>
#include <iostream>
#include <map>
#include <set>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr std::array steps{"opened", "reserved", "worked", "recorded", "refunding", "refunded"};
constexpr int copyCost = 10;

// The numbers that the provider gave to the titles in a text.
QStringList numbersIn(const QByteArray& text)
{
    static const QRegularExpression title(u"T-(\\d+)\\."_s);
    QStringList numbers;
    for (const auto& found : title.globalMatch(QString::fromUtf8(text)))
        numbers.append(found.captured(1));
    return numbers;
}

// Runs in a child process: generates and edits until it is killed.
class Child {
public:
    Child(const QString& folder, const QUrl& address)
        : m_folder(folder), m_preferences(m_folder.filePath(u"moltiva.sqlite"_s)),
          m_api(configurationOf(address), m_preferences), m_account(m_api, withoutBrowser()),
          m_journal(m_account, m_preferences, m_folder.filePath(u"runs"_s),
                    {.retry = 200ms, .underWay = underWay}),
          m_session(std::make_shared<PhotoCache>(m_folder.filePath(u"thumbnails"_s)), m_preferences)
    {
        m_session.setAccountSession(m_account);
        m_session.setCreditJournal(m_journal, m_folder.filePath(u"staging"_s));
        m_session.setCloudCopyService({&m_api});
        m_session.setGenerationMode(CopyGenerationMode::cloud);
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
        tellState();
        return importWhatIsGone();
    }

    bool refundAll()
    {
        const bool isIdle = turnUntil([this] { return entries().isEmpty(); });
        tellState();
        return isIdle || complain("entries stay open:", m_account.message());
    }

    // Returns only if that has become impossible.
    void storm()
    {
        while (true) {
            say(u"generate"_s);
            m_session.selectSingleIndex(below(photoCount));
            if (below(2) == 0)
                m_session.selectAll();
            m_session.copy().analyzeSelected();
            QElapsedTimer sinceLast;
            sinceLast.start();
            while (m_session.isAnalyzing()) {
                // An image takes several times as long.
                if (sinceLast.elapsed() >= 10) {
                    disturb();
                    sinceLast.start();
                }
                QGuiApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
            }
            m_session.endCanvasHistoryEdit({});
            if (!importWhatIsGone())
                return;
        }
    }

private:
    QStringList entries() const { return m_preferences.keysBeginningWith(entryPrefix.toString()); }

    // Returns whether all photos are in the batch then.
    bool importWhatIsGone()
    {
        if (m_session.batch().items.size() == photoCount)
            return true;
        say(u"undo"_s);    // the new images show no copy
        m_session.load({QUrl::fromLocalFile(m_folder.filePath(u"photos"_s))});
        turnUntil([this] { return !m_session.isImporting(); });
        return m_session.batch().items.size() == photoCount ||
               complain("photos are missing after an import:", m_session.status());
    }

    void reached(const QByteArray& step)
    {
        say(u"step "_s + QString::fromLatin1(step));
        m_refunds += step == "refunded";
        if (m_lastStep == QLatin1StringView(step) && --m_stepsLeft == 0)
            std::raise(SIGKILL);
        if (step == "recorded") {
            for (const QString& key : m_preferences.keysBeginningWith(u"moltiva.paidCopy."_s))
                tell(u"have"_s, m_preferences.value(key).value_or(QByteArray()));
        }
    }

    // What the user does meanwhile.
    void disturb()
    {
        switch (below(60)) {
        case 0:
            say(u"undo"_s);
            return m_session.undo();
        case 1:
            say(u"undo"_s);
            return m_session.redo();
        case 2:
            return m_session.beginCanvasHistoryEdit();
        case 3:
        case 4:
            return m_session.endCanvasHistoryEdit({});
        case 5:
            return m_session.setText(CopySlot::subtitle, QString::number(below(1000)));
        case 6:
            return m_session.copy().cancel();
        case 7:
            say(u"undo"_s);    // an image that is gone shows no copy
            return m_session.removeCurrentItem();
        default:
            return;
        }
    }

    void tell(const QString& word, const QByteArray& text)
    {
        // The first one is that of the copy itself; a waiting copy also has the texts from before.
        const QString number = numbersIn(text).value(0);
        if (!number.isEmpty() && !m_told.contains(word + number))
            say(word + u' ' + number);
        m_told.insert(word + number);
    }

    // Prints the copies that the batch shows and the open entries of the journal. Then waits until
    // the judge answers, because the ledger must not change while it is judged.
    void tellState()
    {
        m_told.clear();
        for (const PublicationItem& item : m_session.batch().items)
            tell(u"shows"_s, item.analysis.title.toUtf8());
        for (const QString& key : entries())
            say(u"open "_s + key.section(u' ', -1));
        say(u"settled"_s);
        std::string go;
        std::getline(std::cin, go);
    }

    QDir m_folder;
    QString m_lastStep;
    QSet<QString> m_told;
    int m_stepsLeft = 0, m_refunds = 0;
    PreferencesStore m_preferences;
    AccountAPI m_api;
    AccountSession m_account;
    CreditJournal m_journal;
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
        return child.refundAll() ? 0 : 1;
    child.storm();
    return 1;
}

class Judge {
public:
    Judge(const QString& ledgerFile, StandInProvider& provider)
        : m_ledgerFile(ledgerFile), m_provider(provider)
    {
    }

    // Reads one line of a child's output. Returns whether the child waits for an answer.
    bool hear(const QString& line)
    {
        const QString word = line.section(u' ', 0, 0), rest = line.section(u' ', 1);
        if (word == u"shows") {
            m_shown.insert(rest);
            m_stored.insert(rest);
        } else if (word == u"have") {
            m_fresh.insert(rest);
            m_stored.insert(rest);
        } else if (word == u"open") {
            m_left.insert(rest);
        } else if (word == u"step") {
            m_step = rest;
            if (m_step == u"opened")
                mistreat();
        } else if (word == u"undo" || word == u"generate") {
            m_fresh.clear();
        }
        return word == u"settled";
    }

    void childDied(bool isByItself)
    {
        ++m_kills[isByItself ? m_step : u"random, last at "_s + m_step];
        m_step = u"none"_s;
        m_shown.clear();
        m_left.clear();
    }

    void judge()
    {
        for (const QString& number : m_fresh) {
            if (!m_shown.contains(number))
                fail("a stored copy is lost", number);
        }
        int credits = 0;
        m_charged = m_refunded = 0;
        for (const auto& [request, charge] : readLedger()) {
            if (m_left.contains(request))
                continue;
            ++(charge.isOpen ? m_charged : m_refunded);
            credits += charge.isOpen ? charge.cost : 0;
            if (charge.isOpen && !m_stored.contains(charge.number))
                fail("charged, but no texts are stored", request);
            if (!charge.isOpen && m_shown.contains(charge.number))
                fail("given back, but its texts are stored", request);
        }
        if (credits != copyCost * m_charged)
            fail("the charges are not the price of the copies", QString::number(credits));
        m_leftEntries += int(m_left.size());
        ++m_judged;
        m_fresh.clear();
        m_shown.clear();
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
        std::printf("%d kills, %d judgements; %d charges for stored texts, %d given back; %d "
                    "entries waited for requests under way; %d violations\n",
                    kills, m_judged, m_charged, m_refunded, m_leftEntries, m_violations);
        return m_violations == 0 && m_charged > 0 && m_refunded > 0 ? 0 : 1;
    }

private:
    struct Charge {
        bool isOpen = false;
        int cost = 0;
        QString number;    // of the copy that the service made for it; empty: none
    };

    // Changes how the provider answers from now on.
    void mistreat()
    {
        using Mode = StandInProvider::Mode;
        static constexpr std::array modes{Mode::good, Mode::good,  Mode::good,    Mode::good,
                                          Mode::good, Mode::wrong, Mode::failing, Mode::held};
        m_provider.set(modes[std::size_t(below(int(modes.size())))]);
    }

    std::map<QString, Charge> readLedger()
    {
        const auto rows = ledgerRows(
            m_ledgerFile, "SELECT kind, entry.request_id, amount, reply FROM ledger_entry entry"
                          " LEFT JOIN copy_result result ON result.request_id = entry.request_id"
                          " WHERE entry.request_id IS NOT NULL ORDER BY id");
        if (!rows)
            fail("no judgement", u"without the ledger"_s);
        std::map<QString, Charge> ledger;
        for (const QByteArrayList& row : rows.value_or(QList<QByteArrayList>())) {
            const QString request = QString::fromUtf8(row[1]);
            Charge& charge = ledger[request];
            const bool isReserve = row[0] == "reserve";
            if (charge.isOpen == isReserve)
                fail("charged or given back twice in a row", request);
            charge.isOpen = isReserve;
            charge.cost = std::abs(row[2].toInt());
            charge.number = numbersIn(row[3]).value(0);
        }
        return ledger;
    }

    QString m_ledgerFile;
    StandInProvider& m_provider;
    std::set<QString> m_stored;           // copies that any child has stored
    std::set<QString> m_shown, m_left;    // reported by the running child
    // Stored by the last child, and neither undone nor asked for again since.
    std::set<QString> m_fresh;
    QString m_step = u"none"_s;
    std::map<QString, int> m_kills;
    int m_charged = 0, m_refunded = 0, m_judged = 0, m_leftEntries = 0, m_violations = 0;
};

int judgeStorm(const QString& program, const QDir& folder, int kills)
{
    if (!paintPhotos(folder))
        return 2;
    StandInProvider provider;
    const StormService service(
        program, folder,
        {u"MOLTIVA_COPY_URL="_s + provider.address(), u"MOLTIVA_COPY_MODEL=modelo"_s});
    if (!service.isReady())
        return 1;
    Judge judge(service.ledgerFile(), provider);
    Storm<Judge> storm(folder.path(), service.address(), judge);
    // The first import is in a child of its own: no later child can undo it.
    storm.runCalmly();
    storm.killAtEach(steps, kills);
    provider.set(StandInProvider::Mode::good);
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
    std::fputs("copy_storm SERVICE_PROGRAM FOLDER KILLS\n", stderr);
    return 2;
}
