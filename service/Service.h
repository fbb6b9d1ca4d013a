#pragma once

#include "service/Attempts.h"
#include "service/CopyForwarding.h"
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
    Database::History history = Database::History::perhapsNew;    // of the database in it
    ServiceAudience audience = ServiceAudience::everybody;
    // E-mail address of the administrator; may be empty. Counts only with ServiceAudience::ownUser:
    // elsewhere anybody could register that address first.
    QString administrator = {};
    std::function<CopyProvider()> copyProvider = configuredCopyProvider;
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
    ServiceAudience audience() const { return m_settings.audience; }
    bool isAdministrator(Transaction& transaction, const Account& account) const;
    const QByteArray& formKey() const { return m_formKey; }

    // The address at which programs of this machine reach the service; set before the first
    // request.
    void setAddress(const QString& address) { m_address = address; }
    const QString& address() const { return m_address; }

    // Counts a request that hashes a password or adds an account, by the client's source. Throws
    // Refusal when there are too many.
    void countSource(const ServiceRequest& request);
    Attempts& signInAttempts() { return m_signInAttempts; }
    Attempts& resetAttempts() { return m_resetAttempts; }

    // A sub-folder of the data folder; created, for this user only, when it is missing.
    QDir folder(const QString& name) const;
    const QString& dataFolder() const { return m_settings.dataFolder; }

    // True once the service is ending; requests that take long look at it.
    std::atomic_bool& isEnding() { return m_isEnding; }

private:
    ServiceSettings m_settings;
    Database m_database;
    QByteArray m_formKey;
    QString m_address;
    // By source. Programs of our own user have the higher limit, because one user runs many.
    Attempts m_sourceAttempts{60, 60 * 60 * 1000}, m_ownAttempts{1200, 60 * 60 * 1000};
    Attempts m_signInAttempts{10, 10 * 60 * 1000};
    Attempts m_resetAttempts{5, 15 * 60 * 1000};
    std::atomic_bool m_isEnding = false;
};
