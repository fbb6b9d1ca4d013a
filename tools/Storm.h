#pragma once

// What the storms share: running children that are killed, and the service that they pay at.

#include "account/AccountAPI.h"
#include "account/AccountSession.h"
#include "model/SocialFormat.h"
#include "platform/PreferencesStore.h"

#include <QCoroTask>
#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QRandomGenerator>

#include <chrono>
#include <cstdio>
#include <optional>

#include <sqlite3.h>

inline constexpr int photoCount = 3;
inline constexpr std::chrono::seconds underWay{2};
inline const QString entryPrefix = QStringLiteral("moltiva.creditReservation.");

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
bool turnUntil(Done done, int milliseconds = 60'000)
{
    QElapsedTimer watch;
    for (watch.start(); !done() && watch.elapsed() < milliseconds;)
        QGuiApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 5);
    return done();
}

// Gives the last account of the ledger more credits than any storm spends.
inline bool topUp(const QString& ledgerFile)
{
    sqlite3* handle = nullptr;
    sqlite3_open(ledgerFile.toUtf8().constData(), &handle);
    sqlite3_busy_timeout(handle, 5000);
    const int result =
        sqlite3_exec(handle,
                     "INSERT INTO ledger_entry (account, kind, amount, balance, note, created)"
                     " SELECT account, 'purchase', 100000000, 100000000 + balance, '', created"
                     " FROM ledger_entry ORDER BY id DESC LIMIT 1",
                     nullptr, nullptr, nullptr);
    const int rows = sqlite3_changes(handle);
    sqlite3_close(handle);
    return result == SQLITE_OK && rows == 1;
}

// `Judge` has hear(line), judge() and childDied(isByItself).
template <typename Judge>
class Storm {
public:
    Storm(const QString& folder, const QString& address, Judge& judge)
        : m_folder(folder), m_address(address), m_judge(judge)
    {
    }

    // Runs a child with the arguments `how` and kills it after `life` milliseconds, if given.
    // Returns whether the child ended as expected.
    bool run(const QStringList& how, std::optional<int> life)
    {
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(QCoreApplication::applicationFilePath(),
                    QStringList{QStringLiteral("--child"), m_folder, m_address} + how);
        QElapsedTimer watch;
        watch.start();
        const int limit = life.value_or(120'000);
        while (child.state() != QProcess::NotRunning && watch.elapsed() < limit) {
            child.waitForReadyRead(int(limit - watch.elapsed()));
            hear(child);
        }
        const bool isKilled = child.state() != QProcess::NotRunning;
        if (isKilled)
            child.kill();
        child.waitForFinished();
        hear(child);
        if (child.exitStatus() == QProcess::NormalExit)
            return child.exitCode() == 0;
        m_judge.childDied(!isKilled);
        return isKilled == life.has_value();
    }

private:
    void hear(QProcess& child)
    {
        while (child.canReadLine()) {
            if (!m_judge.hear(QString::fromUtf8(child.readLine()).trimmed()))
                continue;
            m_judge.judge();
            child.write("go\n");
            child.waitForBytesWritten();
        }
    }

    QString m_folder, m_address;
    Judge& m_judge;
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
    return QCoro::waitFor(account.registerAccount(QStringLiteral("tormenta@ejemplo.es"),
                                                  QStringLiteral("una-contraseña")));
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
        m_service.waitForReadyRead(30'000);
        m_address = QString::fromUtf8(m_service.readLine()).trimmed();
        m_isReady = !m_address.isEmpty() && signUp(folder, m_address) && topUp(m_ledgerFile);
        if (!m_isReady)
            std::fputs("the service does not answer\n", stderr);
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
