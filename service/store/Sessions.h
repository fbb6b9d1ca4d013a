#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class Transaction;

inline constexpr const char* sessionCookie = "tallerio_session";
inline constexpr qint64 sessionDays = 30;    // an unused session ends after so many days

// Returns the session's token, of which only the hash is stored.
QByteArray openSession(Transaction& transaction, qint64 account, qint64 now);

// The account of a session that has not ended. Records that the session was used.
std::optional<qint64> sessionAccount(Transaction& transaction, QByteArrayView token, qint64 now);

void endSession(Transaction& transaction, QByteArrayView token);
// Ends all sessions of the account except the one with the token `except`.
void endSessions(Transaction& transaction, qint64 account, QByteArrayView except = {});

// A pass is a token that permits one thing, once, until it expires.
enum class PassPurpose { desktopSignIn, passwordReset, socialConnection };

struct Pass {
    qint64 account = 0;
    QString detail;
};

struct PassTime {
    qint64 now = 0, life = 0;    // ms
};

// Returns the pass's token, of which only the hash is stored.
QByteArray givePass(Transaction& transaction, PassPurpose purpose, qint64 account,
                    const QString& detail, PassTime time);
std::optional<Pass> lookAtPass(Transaction& transaction, PassPurpose purpose, QByteArrayView token,
                               qint64 now);
// Like lookAtPass(), but uses the pass up.
std::optional<Pass> takePass(Transaction& transaction, PassPurpose purpose, QByteArrayView token,
                             qint64 now);
void voidPasses(Transaction& transaction, PassPurpose purpose, qint64 account);
