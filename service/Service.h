#pragma once

#include "service/Attempts.h"
#include "service/CopyForwarding.h"
#include "service/OfferedProgram.h"
#include "service/store/Database.h"

#include <QDir>
#include <QString>

#include <atomic>
#include <functional>

enum class ServiceAudience {
    everybody,
    ownUser,    // only programs of the user that the service runs as, on this machine
};

struct ServiceSettings {
    QString dataFolder;                                           // must exist
    Database::History history = Database::History::perhapsNew;    // of the database in `dataFolder`
    ServiceAudience audience = ServiceAudience::everybody;
    // E-mail address of the administrator; may be empty. Ignored with ServiceAudience::everybody,
    // because anybody could register that address first.
    QString administrator = {};
    std::function<CopyProvider()> copyProvider = configuredCopyProvider;
    std::function<OfferedProgram()> offeredProgram = configuredProgram;
    std::function<qint64()> now;    // milliseconds since 1970; the system's clock when empty
};

struct Account;
struct ServiceRequest;

// The state that all requests share. Used from any thread.
class Service {
public:
    static QString databaseFile(const QString& dataFolder);

    // Throws DatabaseError.
    explicit Service(const ServiceSettings& settings);

    Database& database() { return m_database; }
    qint64 now() const { return m_settings.now(); }
    CopyProvider copyProvider() const { return m_settings.copyProvider(); }
    OfferedProgram offeredProgram() const { return m_settings.offeredProgram(); }
    ServiceAudience audience() const { return m_settings.audience; }
    bool isAdministrator(Transaction& transaction, const Account& account) const;
    const QByteArray& formKey() const { return m_formKey; }

    // The address at which programs of this machine reach the service; set before the first
    // request.
    void setAddress(const QString& address) { m_address = address; }
    const QString& address() const { return m_address; }

    // Counts `request`, which hashes a password or adds an account, for its source. Throws Refusal
    // when the source has sent too many.
    void countSource(const ServiceRequest& request);
    Attempts& signInAttempts() { return m_signInAttempts; }
    Attempts& resetAttempts() { return m_resetAttempts; }

    // A subfolder of the data folder. Creates it if it is missing, with access for this user only.
    QDir folder(const QString& name) const;
    const QString& dataFolder() const { return m_settings.dataFolder; }

    // Becomes true when the service ends. Requests that take long check it.
    std::atomic_bool& isEnding() { return m_isEnding; }

private:
    ServiceSettings m_settings;
    Database m_database;
    QByteArray m_formKey;
    QString m_address;
    // Limits per source. The limit of our own user is higher, because all programs of a user are
    // one source.
    Attempts m_sourceAttempts{60, 60 * 60 * 1000}, m_ownAttempts{1200, 60 * 60 * 1000};
    Attempts m_signInAttempts{10, 10 * 60 * 1000};
    Attempts m_resetAttempts{5, 15 * 60 * 1000};
    std::atomic_bool m_isEnding = false;
};
