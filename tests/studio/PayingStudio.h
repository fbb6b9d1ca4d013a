#pragma once

#include "account/AccountAPI.h"
#include "account/AccountSession.h"
#include "account/CreditJournal.h"
#include "platform/PreferencesStore.h"
#include "studio/StudioSession.h"
#include "tests/account/Awaited.h"
#include "tests/service/TestService.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>

template <typename Done>
bool turnUntil(Done done, int milliseconds = 30'000)
{
    QElapsedTimer watch;
    for (watch.start(); !done() && watch.elapsed() < milliseconds;)
        QGuiApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 5);
    return done();
}

// Photos, preferences and a service with its ledger, which outlive a run of the program.
class PayingWorld {
public:
    struct Entry {
        QString kind, requestId;
        int amount = 0;
    };

    PayingWorld()
    {
        QDir(folder.path()).mkpath(QStringLiteral("fotos"));
        QDir(folder.path()).mkpath(QStringLiteral("salida"));
        service.signUp("ana@ejemplo.es");
    }

    QString file(const QString& name) const { return folder.filePath(name); }
    QUrl photo(const QString& name, const QColor& color = Qt::blue, QSize size = {64, 80}) const
    {
        QImage image(size, QImage::Format_RGB32);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x)
                image.setPixelColor(x, y, color.darker(100 + (x * 7 + y * 3) % 60));
        }
        EXPECT_TRUE(image.save(file(QStringLiteral("fotos/") + name)));
        return QUrl::fromLocalFile(file(QStringLiteral("fotos/") + name));
    }
    QStringList exported() const
    {
        return QDir(file(QStringLiteral("salida")))
            .entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    // Reserves credits until `balance` is left, as another program of the user would.
    void leaveCredits(qint64 balance)
    {
        const qint64 now = service.get("/api/auth/me").json()["balance"];
        service.post("/api/credits/social-copy/reserve",
                     {{"cost", now - balance}, {"requestId", "otro programa"}});
    }
    qint64 balance() { return service.get("/api/auth/me").json()["balance"]; }
    // The entries of the ledger whose request id is like `requests`.
    QList<Entry> ledger(const QString& requests = QStringLiteral("moltiva_render_%")) const
    {
        QList<Entry> entries;
        {
            QSqlDatabase database =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("ledger"));
            database.setDatabaseName(service.folder().filePath(QStringLiteral("servicio.sqlite")));
            EXPECT_TRUE(database.open());
            QSqlQuery rows(database);
            rows.exec(QStringLiteral("SELECT kind, request_id, amount FROM ledger_entry"
                                     " WHERE request_id LIKE '%1' ORDER BY id")
                          .arg(requests));
            while (rows.next()) {
                entries.append(
                    {rows.value(0).toString(), rows.value(1).toString(), rows.value(2).toInt()});
            }
        }
        QSqlDatabase::removeDatabase(QStringLiteral("ledger"));
        return entries;
    }
    // The credits charged for renders less those refunded, according to the ledger.
    int charged() const
    {
        int sum = 0;
        for (const Entry& entry : ledger())
            sum -= entry.amount;
        return sum;
    }

    QTemporaryDir folder;
    mutable TestService service;
};

// One run of the program in a PayingWorld. It connects to `address`, which may be that of a proxy;
// if empty, to the service of the PayingWorld.
class PayingStudio {
public:
    explicit PayingStudio(PayingWorld& ofWorld, const QUrl& address = {},
                          const OutputSize& size = smallSize, const RequestLimits& limits = {},
                          CreditJournal::Times times = quickTimes)
        : world(ofWorld), m_configuration(configuration(ofWorld, address)), m_times(times),
          api(m_configuration, preferences, nullptr, limits),
          account(api, {.openInBrowser = [](const QUrl&) { return false; }}),
          session(std::make_shared<PhotoCache>(ofWorld.file(QStringLiteral("miniaturas"))),
                  preferences, &std::chrono::steady_clock::now, size)
    {
        session.setAccountSession(account);
        session.setCreditJournal(journal, world.file(QStringLiteral("espera")));
        session.restoreWorkspaceIfNeeded();
        EXPECT_TRUE(turnUntil([this] { return session.didRestoreWorkspace(); }));
    }
    static constexpr CreditJournal::Times quickTimes{.retry = std::chrono::milliseconds(100),
                                                     .underWay = std::chrono::milliseconds(0)};
    static QSizeF smallSize(SocialFormat format) { return exportSize(format) / 10; }

    void signIn()
    {
        // Signs in without the tests' short time limits, because hashing a password takes long.
        AccountAPI patient(m_configuration, preferences);
        awaited(patient.login(QStringLiteral("ana@ejemplo.es"),
                              QString::fromUtf8(TestService::password)));
        EXPECT_TRUE(awaited(account.refresh()));
    }
    void load(const QList<QUrl>& photos)
    {
        session.load(photos);
        EXPECT_TRUE(turnUntil([this] { return !session.isImporting(); }));
    }
    // Returns the status at the end of the export.
    QString exportAll(const QString& folder = QStringLiteral("salida"))
    {
        session.exportAll(world.file(folder));
        return ended();
    }
    QString exportCurrent(const QString& path = QStringLiteral("salida/una.png"))
    {
        session.exportCurrent(world.file(path));
        return ended();
    }
    QString ended()
    {
        EXPECT_TRUE(turnUntil([this] { return !session.isExporting(); }));
        return session.status();
    }
    // Waits for the costs. Returns the prices of exportCurrent() and exportAll(); -1 if unknown.
    std::pair<qint64, qint64> prices()
    {
        EXPECT_TRUE(turnUntil([this] { return session.exports().areCostsUpToDate(); }));
        return {session.displayedExportCurrentCost().value_or(-1),
                session.displayedExportAllCost().value_or(-1)};
    }

    PayingWorld& world;

private:
    const ServiceConfiguration m_configuration;
    const CreditJournal::Times m_times;

public:
    PreferencesStore preferences{world.file(QStringLiteral("p.sqlite"))};
    AccountAPI api;
    AccountSession account;
    CreditJournal journal{account, preferences, world.file(QStringLiteral("runs")), m_times};
    StudioSession session;

private:
    static ServiceConfiguration configuration(const PayingWorld& world, const QUrl& address)
    {
        const QUrl url =
            address.isEmpty() ? QUrl(QString::fromStdString(world.service.address())) : address;
        return {.service = url,
                .site = url,
                .siteName = QStringLiteral("Moltiva local"),
                .administratorEmail = {},
                .problem = {}};
    }
};
