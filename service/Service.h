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
    ownUser,    // nobody but programs of the user that we run as, on this machine
};

struct ServiceSettings {
    QString dataFolder;                                           // exists
    Database::History history = Database::History::perhapsNew;    // of the database in it
    ServiceAudience audience = ServiceAudience::everybody;
    // Of a service for its own user: whoever registers this e-mail address; may be empty. Elsewhere
    // anybody could do so first.
    QString administrator = {};
    std::function<CopyProvider()> copyProvider = configuredCopyProvider;
    std::function<qint64()> now;    // milliseconds since 1970; the system's clock when empty
};

struct Account;
struct ServiceRequest;

// What all requests share. Any thread.
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

    // Where programs of this machine find the service; before the first request comes.
    void setAddress(const QString& address) { m_address = address; }
    const QString& address() const { return m_address; }

    // Counts what costs a password's hash, or an account, by who asks for it. Throws Refusal when
    // it is too much.
    void countSource(const ServiceRequest& request);
    Attempts& signInAttempts() { return m_signInAttempts; }
    Attempts& resetAttempts() { return m_resetAttempts; }

    // Made when it is missing, and then only the user may enter.
    QDir folder(const QString& name) const;
    const QString& dataFolder() const { return m_settings.dataFolder; }

    // Requests that take long look at it.
    std::atomic_bool& isEnding() { return m_isEnding; }

private:
    ServiceSettings m_settings;
    Database m_database;
    QByteArray m_formKey;
    QString m_address;
    // The second limit is high because one user runs many programs.
    Attempts m_sourceAttempts{60, 60 * 60 * 1000}, m_ownAttempts{1200, 60 * 60 * 1000};
    Attempts m_signInAttempts{10, 10 * 60 * 1000};
    Attempts m_resetAttempts{5, 15 * 60 * 1000};
    std::atomic_bool m_isEnding = false;
};
