#pragma once

// What the storms share whose children pay for renders: a child, and the judgement of the ledger.

#include "account/CreditJournal.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "tools/Storm.h"

#include <QScopeGuard>

#include <csignal>
#include <iostream>
#include <map>
#include <set>

// Runs in a child process: a session that restores its batch, until it is killed.
class PayingChild {
public:
    PayingChild(const QString& folderPath, const QUrl& address)
        : folder(folderPath), preferences(folder.filePath(QStringLiteral("moltiva.sqlite"))),
          api(configurationOf(address), preferences), account(api, withoutBrowser()),
          journal(account, preferences, folder.filePath(QStringLiteral("runs")),
                  {.retry = std::chrono::milliseconds(200), .underWay = underWay}),
          photos(std::make_shared<PhotoCache>(folder.filePath(QStringLiteral("thumbnails")))),
          session(photos, preferences, &std::chrono::steady_clock::now, smallSize)
    {
        session.setAccountSession(account);
        session.setCreditJournal(journal, folder.filePath(QStringLiteral("staging")));
        journal.stepReached = [this](const char* step) { reached(step); };
    }
    virtual ~PayingChild() = default;

    void dieAt(const QString& step, int times)
    {
        m_lastStep = step;
        m_stepsLeft = times;
    }

    // Restores the batch and waits for the refunds of entries that earlier children left open, then
    // prints the state. Returns whether all of this succeeded.
    bool start()
    {
        session.restoreWorkspaceIfNeeded();
        const qsizetype open = entries().size();
        if (!refreshed(account))
            return complain("the account cannot be read:", account.message());
        if (!turnUntil([this] { return session.didRestoreWorkspace(); }))
            return complain("the batch was not restored:", session.status());
        if (!turnUntil([&] { return m_refunds >= open; })) {
            return complain(
                "too few refunds:",
                QStringLiteral("%1 of %2; %3").arg(m_refunds).arg(open).arg(account.message()));
        }
        if (session.batch().items.isEmpty()) {
            session.load({QUrl::fromLocalFile(folder.filePath(QStringLiteral("photos")))});
            turnUntil([this] { return !session.isImporting(); });
        }
        tellState();
        return session.batch().items.size() == photoCount ||
               complain("photos are missing:", session.status());
    }

    bool waitUntilRefunded()
    {
        const bool isIdle = turnUntil([this] { return entries().isEmpty(); });
        tellState();
        return isIdle || complain("entries stay open:", account.message());
    }

    [[noreturn]] virtual void storm() = 0;

protected:
    QStringList entries() const { return preferences.keysBeginningWith(entryPrefix.toString()); }

    // Called at each step of a charge, before the child may die there.
    virtual void follow(const QByteArray& /*step*/) {}
    virtual void tellMore() {}    // of the state

    void edit()
    {
        switch (below(6)) {
        case 0:
            return session.undo();
        case 1:
            return session.redo();
        case 2:
            return session.selectItem(below(photoCount), Qt::KeyboardModifiers());
        case 3:
            return session.selectItem(below(photoCount), Qt::ControlModifier);
        default:
            session.setText(CopySlot::title,
                            QString::number(QRandomGenerator::global()->generate64()));
        }
    }

    QDir folder;
    PreferencesStore preferences;
    AccountAPI api;
    AccountSession account;
    CreditJournal journal;
    std::shared_ptr<PhotoCache> photos;
    StudioSession session;

private:
    void reached(const QByteArray& step)
    {
        follow(step);
        say(QStringLiteral("step ") + QString::fromLatin1(step));
        m_refunds += step == "refunded";
        if (m_lastStep == QLatin1StringView(step) && --m_stepsLeft == 0)
            std::raise(SIGKILL);
    }

    // Prints the paid renders of the batch and the open entries of the journal. Then waits until
    // the judge answers, because the ledger must not change while it is judged.
    void tellState()
    {
        for (const PublicationItem& item : session.batch().items) {
            for (const QString& fingerprint : item.paidRenderFingerprints) {
                if (!fingerprint.startsWith(QStringLiteral("pixels-")))
                    say(QStringLiteral("paid %1/%2")
                            .arg(item.id.toString(QUuid::WithoutBraces), fingerprint));
            }
        }
        for (const QString& key : entries())
            say(QStringLiteral("open ") + key.section(QLatin1Char(' '), -1));
        tellMore();
        say(QStringLiteral("settled"));
        std::string go;
        std::getline(std::cin, go);
    }

    QString m_lastStep;
    int m_stepsLeft = 0, m_refunds = 0;
};

// What the service's ledger says about the charge with one request id. The charge is open until it
// is refunded.
struct StormCharge {
    int amount = 0;    // credits; negative
    bool isOpen = false;
};
using StormLedger = std::map<QString, StormCharge>;

// Compares the ledger with what the running child reports: one unrefunded charge for every render
// that the batch knows as paid, and no others but those that the child still has an entry for.
class RenderJudge {
public:
    explicit RenderJudge(const QString& ledgerFile) : m_ledgerFile(ledgerFile) {}
    virtual ~RenderJudge() = default;

    // Reads one line of a child's output. Returns whether the child waits for an answer.
    bool hear(const QString& line)
    {
        const QStringList words = line.split(QLatin1Char(' '));
        if (words[0] == QStringLiteral("paid"))
            m_paid.insert(words.value(1));
        else if (words[0] == QStringLiteral("open"))
            m_left.insert(words.value(1));
        else if (words[0] == QStringLiteral("step"))
            m_step = words.value(1);
        follow(words);
        return words[0] == QStringLiteral("settled");
    }

    void fail(const char* what, const QString& about)
    {
        if (++m_violations <= 20)
            std::fprintf(stderr, "%s: %s\n", what, qPrintable(about));
    }

protected:
    // The renders that a request pays for.
    void plan(const QString& request, const QStringList& renders) { m_plans[request] = renders; }

    virtual void follow(const QStringList& words) = 0;    // of each line that is heard

    void countKill(bool isByItself)
    {
        ++m_kills[isByItself ? m_step : QStringLiteral("random, last at ") + m_step];
        m_step = QStringLiteral("none");
        forgetState();
    }
    void forgetState()
    {
        m_paid.clear();
        m_left.clear();
    }

    StormLedger judgeLedger()
    {
        const StormLedger ledger = readLedger();
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
            if (!charge.isOpen || m_left.contains(request))
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
        return ledger;
    }

    // Returns the status of the program.
    int finishWith(const QString& more) const
    {
        int kills = 0;
        for (const auto& [where, count] : m_kills) {
            std::printf("killed at %-28s %5d\n", qPrintable(where), count);
            kills += count;
        }
        std::printf("%d kills, %d judgements; %d charges, %d refunds, %d renders paid; %d entries "
                    "waited for requests under way; %s; %d violations\n",
                    kills, m_judged, m_charges, m_refunds, m_renders, m_leftEntries,
                    qPrintable(more), m_violations);
        return m_violations == 0 && m_renders > 0 && m_refunds > 0 ? 0 : 1;
    }

    // The rows of a query on the service's database.
    QList<QByteArrayList> rowsOf(const char* query)
    {
        const auto rows = ledgerRows(m_ledgerFile, query);
        if (!rows)
            fail("no judgement", QStringLiteral("without the ledger"));
        return rows.value_or(QList<QByteArrayList>());
    }

    std::set<QString> m_paid, m_left;    // reported by the running child
    QString m_step = QStringLiteral("none");

private:
    StormLedger readLedger()
    {
        StormLedger ledger;
        m_charges = m_refunds = 0;
        const auto rows = rowsOf("SELECT kind, request_id, amount FROM ledger_entry"
                                 " WHERE request_id IS NOT NULL ORDER BY id");
        for (const QByteArrayList& row : rows) {
            const bool isReserve = row[0] == "reserve";
            const QString request = QString::fromUtf8(row[1]);
            const int amount = row[2].toInt();
            StormCharge& charge = ledger[request];
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
    std::map<QString, QStringList> m_plans;    // the renders that each request pays for
    std::map<QString, int> m_kills;
    int m_charges = 0, m_refunds = 0, m_renders = 0, m_judged = 0, m_leftEntries = 0;
    int m_violations = 0;
};

template <typename Child>
int runPayingChild(const QStringList& arguments)
{
    Child child(arguments[2], QUrl(arguments[3]));
    const bool isCalm = arguments.value(4) == QStringLiteral("calm");
    if (arguments.size() > 5)
        child.dieAt(arguments[4], arguments[5].toInt());
    if (!child.start())
        return 1;
    if (isCalm)
        return child.waitUntilRefunded() ? 0 : 1;
    child.storm();
}

// `prepare`: called with the service before the first child. Returns the status of the program.
template <typename Judge, typename Steps, typename Prepare>
int judgePayingStorm(const QStringList& arguments, const Steps& steps, const Prepare& prepare)
{
    const QDir folder(arguments[2]);
    if (!paintPhotos(folder))
        return 2;
    const StormService service(arguments[1], folder);
    if (!service.isReady() || !prepare(service))
        return 1;
    Judge judge(service.ledgerFile());
    Storm<Judge> storm(folder.path(), service.address(), judge);
    // Imports the photos in a child of its own. No later child can undo this import, because a
    // child can undo only its own changes. Without the imported batch, the paid renders would be
    // unknown.
    storm.runCalmly();
    storm.killAtEach(steps, arguments[3].toInt());
    storm.runCalmly();
    return judge.finish();
}

template <typename Child, typename Judge, typename Steps, typename Prepare>
int payingStormMain(int argc, char** argv, const Steps& steps, const Prepare& prepare)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() >= 4 && arguments[1] == QStringLiteral("--child"))
        return runPayingChild<Child>(arguments);
    if (arguments.size() == 4 && arguments[3].toInt() > 0)
        return judgePayingStorm<Judge>(arguments, steps, prepare);
    std::fprintf(stderr, "%s SERVICE_PROGRAM FOLDER KILLS\n", argv[0]);
    return 2;
}
