#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class Transaction;

inline constexpr const char* sessionCookie = "tallerio_session";
inline constexpr qint64 sessionDays = 30;    // unused

// Gives the token, of which only the hash is kept.
QByteArray openSession(Transaction& transaction, qint64 account, qint64 now);

// Whose session it is, if it has not ended; notes that it was used.
std::optional<qint64> sessionAccount(Transaction& transaction, QByteArrayView token, qint64 now);

void endSession(Transaction& transaction, QByteArrayView token);
// All of an account, but for the one with that token.
void endSessions(Transaction& transaction, qint64 account, QByteArrayView except = {});

// A pass opens one thing, once, until it expires.
enum class PassPurpose { desktopSignIn, passwordReset, socialConnection };

struct Pass {
    qint64 account = 0;
    QString detail;
};

struct PassTime {
    qint64 now = 0, life = 0;    // ms
};

// Gives the token, of which only the hash is kept.
QByteArray givePass(Transaction& transaction, PassPurpose purpose, qint64 account,
                    const QString& detail, PassTime time);
std::optional<Pass> lookAtPass(Transaction& transaction, PassPurpose purpose, QByteArrayView token,
                               qint64 now);
// The same, and it is used up.
std::optional<Pass> takePass(Transaction& transaction, PassPurpose purpose, QByteArrayView token,
                             qint64 now);
void voidPasses(Transaction& transaction, PassPurpose purpose, qint64 account);
