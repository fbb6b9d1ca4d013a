#pragma once

// What the storms share: running children that are killed, and the service that they pay at.

#include "account/AccountAPI.h"
#include "account/AccountSession.h"
#include "account/JournalEntry.h"
#include "model/SocialFormat.h"
#include "model/SocialPublishNetwork.h"
#include "platform/PreferencesStore.h"

#include <QCoroTask>
#include <QDeadlineTimer>
#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QRandomGenerator>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <optional>

#include <sqlite3.h>

inline constexpr int photoCount = 3;
// A killed child's last request may reach the service this much later, on a busy machine too.
inline constexpr std::chrono::seconds underWay{10};
// Longest wait for anything that a right program does.
inline constexpr std::chrono::seconds longestWait{60};

inline QSizeF smallSize(SocialFormat format)
{
    return exportSize(format) / 10;
}

inline ServiceConfiguration configurationOf(const QUrl& address)
{
    return {.service = address,
            .site = address,
            .siteName = QStringLiteral("Moltiva local"),
            .administratorEmail = {},
            .problem = {}};
}

inline AccountSession::Surroundings withoutBrowser()
{
    return {.openInBrowser = [](const QUrl&) { return false; }};
}

inline int below(int bound)
{
    return QRandomGenerator::global()->bounded(bound);
}

inline void say(const QString& line)
{
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

template <typename Done>
bool turnUntil(Done done, std::chrono::milliseconds wait = longestWait)
{
    for (const QDeadlineTimer end(wait); !done() && !end.hasExpired();)
        QGuiApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 5);
    return done();
}

// Calls `attempt` until it succeeds, because the service closes a connection that is silent for a
// second, which happens on a busy machine.
template <typename Attempt>
bool tryUntilDone(Attempt attempt)
{
    for (const QDeadlineTimer end(longestWait); !end.hasExpired();) {
        if (attempt())
            return true;
        turnUntil([] { return false; }, std::chrono::milliseconds(100));
    }
    return false;
}

inline bool refreshed(AccountSession& account)
{
    return tryUntilDone([&] { return QCoro::waitFor(account.refresh()); });
}

// Prints why a child cannot go on. Returns false.
inline bool complain(const char* what, const QString& about = {})
{
    std::fprintf(stderr, "%s %s\n", what, qPrintable(about));
    return false;
}

// The ledger of the service, opened for a single use.
class LedgerFile {
public:
    LedgerFile(const QString& path, int flags)
    {
        sqlite3_open_v2(path.toUtf8().constData(), &m_handle, flags, nullptr);
        sqlite3_busy_timeout(m_handle, 5000);
    }
    ~LedgerFile() { sqlite3_close(m_handle); }
    LedgerFile(const LedgerFile&) = delete;
    LedgerFile& operator=(const LedgerFile&) = delete;

    sqlite3* handle() const { return m_handle; }
    QString error() const { return QString::fromUtf8(sqlite3_errmsg(m_handle)); }

private:
    sqlite3* m_handle = nullptr;
};

// Calls `attempt`, which returns a result code of SQLite, until the ledger is not locked. Reports
// any other result than `expected`. Returns whether that was the result.
template <typename Attempt>
bool onLedger(const QString& path, int flags, int expected, Attempt attempt)
{
    int result = SQLITE_BUSY;
    QString error;
    tryUntilDone([&] {
        const LedgerFile ledger(path, flags);
        result = attempt(ledger.handle());
        error = ledger.error();
        return result != SQLITE_BUSY;
    });
    return result == expected || complain("the ledger:", error);
}

// Gives the last account of the ledger more credits than any storm spends.
inline bool topUp(const QString& ledgerFile)
{
    int rows = 0;
    const auto insert = [&rows](sqlite3* ledger) {
        const int result =
            sqlite3_exec(ledger,
                         "INSERT INTO ledger_entry (account, kind, amount, balance, note, created)"
                         " SELECT account, 'purchase', 100000000, 100000000 + balance, '', created"
                         " FROM ledger_entry ORDER BY id DESC LIMIT 1",
                         nullptr, nullptr, nullptr);
        rows = sqlite3_changes(ledger);
        return result;
    };
    return onLedger(ledgerFile, SQLITE_OPEN_READWRITE, SQLITE_OK, insert) &&
           (rows == 1 || complain("the ledger has no account"));
}

// Connects the last account of the ledger with all networks.
inline bool connectNetworks(const QString& ledgerFile)
{
    const auto insert = [](sqlite3* ledger) {
        int result = SQLITE_OK;
        for (const auto& network : Vocabulary<SocialPublishNetwork>::rows) {
            const QString insertion =
                QStringLiteral("INSERT OR IGNORE INTO social_connection"
                               " (account, network, display_name, connected)"
                               " SELECT account, '%1', 'Tormenta', 1 FROM ledger_entry"
                               " ORDER BY id DESC LIMIT 1")
                    .arg(network.rawValue.toString());
            result =
                sqlite3_exec(ledger, insertion.toUtf8().constData(), nullptr, nullptr, nullptr);
            if (result != SQLITE_OK)
                break;
        }
        return result;
    };
    return onLedger(ledgerFile, SQLITE_OPEN_READWRITE, SQLITE_OK, insert);
}

// One attempt to read all rows of `query`. Returns the result code of SQLite.
inline int readRows(sqlite3* ledger, const char* query, QList<QByteArrayList>& rows)
{
    rows.clear();
    sqlite3_stmt* statement = nullptr;
    int result = sqlite3_prepare_v2(ledger, query, -1, &statement, nullptr);
    if (result != SQLITE_OK)
        return result;
    while ((result = sqlite3_step(statement)) == SQLITE_ROW) {
        QByteArrayList row;
        for (int column = 0; column < sqlite3_column_count(statement); ++column) {
            row.append(
                QByteArray(reinterpret_cast<const char*>(sqlite3_column_text(statement, column))));
        }
        rows.append(row);
    }
    sqlite3_finalize(statement);
    return result;
}

// The rows of `query`; nothing, with the reason on standard error, if they cannot be read.
inline std::optional<QList<QByteArrayList>> ledgerRows(const QString& ledgerFile, const char* query)
{
    QList<QByteArrayList> rows;
    const auto read = [&](sqlite3* ledger) { return readRows(ledger, query, rows); };
    return onLedger(ledgerFile, SQLITE_OPEN_READONLY, SQLITE_DONE, read) ? std::optional(rows)
                                                                         : std::nullopt;
}

// Runs children and kills them. `Judge` has hear(line), judge(), childDied(isByItself) and
// fail(what, about).
template <typename Judge>
class Storm {
public:
    Storm(const QString& folder, const QString& address, Judge& judge)
        : m_folder(folder), m_address(address), m_judge(judge)
    {
    }

    // Runs a child that ends when every open entry is refunded.
    void runCalmly()
    {
        run({QStringLiteral("calm")}, longestRun);
        expect(m_how == How::exited && m_code == 0, QStringLiteral("calm"));
    }

    // Kills as many children: at each of the steps as often as at a random moment.
    template <std::size_t count>
    void killAtEach(const std::array<const char*, count>& steps, int kills)
    {
        for (int kill = 0; kill < kills; ++kill) {
            if (const std::size_t kind = std::size_t(kill) % (count + 1); kind < count)
                killAt(QString::fromLatin1(steps[kind]), 1 + below(3));
            else
                killAfter(std::chrono::milliseconds(1 + below(900)));
        }
    }

private:
    enum class How { notStarted, exited, diedByItself, isKilled };
    static constexpr std::chrono::minutes longestRun{4};

    void killAt(const QString& step, int times)
    {
        run({step, QString::number(times)}, longestRun);
        expect(m_how == How::diedByItself && m_code == SIGKILL && m_step == step,
               QStringLiteral("until step %1 for the %2. time").arg(step).arg(times));
    }

    void killAfter(std::chrono::milliseconds life)
    {
        run({}, life);
        expect(m_how == How::isKilled, QStringLiteral("for %1 ms").arg(life.count()));
    }

    // Runs a child with the arguments `how` and kills it after `life`.
    void run(const QStringList& how, std::chrono::milliseconds life)
    {
        m_step.clear();
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // A child ends while idle threads of Qt still live; the leak checker takes what they hold
        // for leaks.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ASAN_OPTIONS"),
                           environment.value(QStringLiteral("ASAN_OPTIONS")) +
                               QStringLiteral(":detect_leaks=0"));
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(),
                    QStringList{QStringLiteral("--child"), m_folder, m_address} + how);
        if (!child.waitForStarted(int(std::chrono::milliseconds(longestWait).count()))) {
            m_how = How::notStarted;
            return;
        }
        const QDeadlineTimer end(life);
        while (child.state() != QProcess::NotRunning && !end.hasExpired()) {
            child.waitForReadyRead(int(end.remainingTime()));
            hear(child);
        }
        const bool isKilled = child.state() != QProcess::NotRunning;
        if (isKilled)
            child.kill();
        child.waitForFinished();
        hear(child);
        m_code = child.exitCode();
        if (child.exitStatus() == QProcess::NormalExit) {
            m_how = How::exited;
            return;
        }
        m_how = isKilled ? How::isKilled : How::diedByItself;
        m_judge.childDied(!isKilled);
    }

    // Reports how the last run ended unless that `isAsMeant`.
    void expect(bool isAsMeant, const QString& meant)
    {
        if (isAsMeant)
            return;
        static constexpr std::array ends{"it did not start", "exit code", "signal",
                                         "still running; killed with signal"};
        m_judge.fail("a child did not end as it was to",
                     QStringLiteral("%1; %2 %3, last step «%4»")
                         .arg(meant, QLatin1StringView(ends[std::size_t(m_how)]))
                         .arg(m_code)
                         .arg(m_step));
    }

    void hear(QProcess& child)
    {
        while (child.canReadLine()) {
            const QString line = QString::fromUtf8(child.readLine()).trimmed();
            if (line.startsWith(QStringLiteral("step ")))
                m_step = line.sliced(5);
            if (!m_judge.hear(line))
                continue;
            m_judge.judge();
            child.write("go\n");
            child.waitForBytesWritten();
        }
    }

    QString m_folder, m_address;
    Judge& m_judge;
    // Of the last child. QProcess gives the number of the signal as the exit code.
    How m_how = How::notStarted;
    int m_code = 0;
    QString m_step;
};

inline bool paintPhotos(const QDir& folder)
{
    for (const QString& each :
         {QStringLiteral("photos"), QStringLiteral("out"), QStringLiteral("service")})
        folder.mkpath(each);
    for (int i = 0; i < photoCount; ++i) {
        QImage image(64, 80, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(90 * i, 200, 200));
        if (!image.save(folder.filePath(QStringLiteral("photos/%1.png").arg(i))))
            return false;
    }
    return true;
}

// Registers an account. Its session cookie remains in the preferences file that the children use.
inline bool signUp(const QDir& folder, const QString& address)
{
    PreferencesStore preferences(folder.filePath(QStringLiteral("moltiva.sqlite")));
    AccountAPI api(configurationOf(QUrl(address)), preferences);
    AccountSession account(api, withoutBrowser());
    const QString mail = QStringLiteral("tormenta@ejemplo.es");
    const QString password = QStringLiteral("una-contraseña");
    // An attempt whose reply was lost has registered the account all the same.
    const bool isIn = tryUntilDone([&] {
        return QCoro::waitFor(account.registerAccount(mail, password)) ||
               QCoro::waitFor(account.login(mail, password));
    });
    return isIn || complain("no account:", account.message());
}

// The service that a storm pays at, with an account that has more credits than any storm spends.
class StormService {
public:
    // `environment`: more variables, as "NAME=value".
    StormService(const QString& program, const QDir& folder, const QStringList& environment = {})
        : m_ledgerFile(folder.filePath(QStringLiteral("service/servicio.sqlite")))
    {
        m_service.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_service.setEnvironment(QProcess::systemEnvironment() + environment);
        m_service.start(program,
                        {QStringLiteral("--data"), folder.filePath(QStringLiteral("service"))});
        const int wait = int(std::chrono::milliseconds(longestWait).count());
        while (!m_service.canReadLine() && m_service.waitForReadyRead(wait)) {
        }
        m_address = QString::fromUtf8(m_service.readLine()).trimmed();
        m_isReady = !m_address.isEmpty() && signUp(folder, m_address) && topUp(m_ledgerFile);
        if (!m_isReady)
            complain("the service does not answer:", m_service.errorString());
    }
    ~StormService()
    {
        m_service.terminate();
        m_service.waitForFinished();
    }
    StormService(const StormService&) = delete;
    StormService& operator=(const StormService&) = delete;

    bool isReady() const { return m_isReady; }
    const QString& address() const { return m_address; }
    const QString& ledgerFile() const { return m_ledgerFile; }

private:
    QString m_ledgerFile, m_address;
    QProcess m_service;
    bool m_isReady = false;
};
