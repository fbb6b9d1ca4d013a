#include "service/store/Sessions.h"

#include "service/store/Database.h"
#include "service/store/Secrets.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 hour = 60 * 60 * 1000, sessionLife = sessionDays * 24 * hour;

QString storedName(PassPurpose purpose)
{
    switch (purpose) {
    case PassPurpose::desktopSignIn:
        return u"desktop"_s;
    case PassPurpose::passwordReset:
        return u"reset"_s;
    case PassPurpose::socialConnection:
        return u"social"_s;
    }
    return {};
}

}    // namespace

QByteArray openSession(Transaction& transaction, qint64 account, qint64 now)
{
    transaction.run("DELETE FROM session WHERE last_used < ?", {now - sessionLife});
    QByteArray token = newToken();
    transaction.run("INSERT INTO session (hash, account, created, last_used) VALUES (?, ?, ?, ?)",
                    {tokenHash(token), account, now, now});
    return token;
}

std::optional<qint64> sessionAccount(Transaction& transaction, QByteArrayView token, qint64 now)
{
    const QByteArray hash = tokenHash(token);
    Rows found = transaction.rows("SELECT account, last_used FROM session WHERE hash = ?", {hash});
    if (!found.next() || found.number(1) < now - sessionLife)
        return std::nullopt;
    // Records the use once an hour at most, because each update writes to the disk.
    if (found.number(1) < now - hour)
        transaction.run("UPDATE session SET last_used = ? WHERE hash = ?", {now, hash});
    return found.number(0);
}

void endSession(Transaction& transaction, QByteArrayView token)
{
    transaction.run("DELETE FROM session WHERE hash = ?", {tokenHash(token)});
}

void endSessions(Transaction& transaction, qint64 account, QByteArrayView except)
{
    transaction.run("DELETE FROM session WHERE account = ? AND hash <> ?",
                    {account, tokenHash(except)});
}

QByteArray givePass(Transaction& transaction, PassPurpose purpose, qint64 account,
                    const QString& detail, PassTime time)
{
    transaction.run("DELETE FROM pass WHERE expires <= ?", {time.now});
    QByteArray token = newToken();
    transaction.run(
        "INSERT INTO pass (hash, purpose, account, detail, expires) VALUES (?, ?, ?, ?, ?)",
        {tokenHash(token), storedName(purpose), account, detail, time.now + time.life});
    return token;
}

std::optional<Pass> lookAtPass(Transaction& transaction, PassPurpose purpose, QByteArrayView token,
                               qint64 now)
{
    Rows found = transaction.rows("SELECT account, detail FROM pass WHERE hash = ? AND purpose = ?"
                                  " AND expires > ?",
                                  {tokenHash(token), storedName(purpose), now});
    if (!found.next())
        return std::nullopt;
    return Pass{found.number(0), found.text(1)};
}

std::optional<Pass> takePass(Transaction& transaction, PassPurpose purpose, QByteArrayView token,
                             qint64 now)
{
    auto pass = lookAtPass(transaction, purpose, token, now);
    if (pass)
        transaction.run("DELETE FROM pass WHERE hash = ?", {tokenHash(token)});
    return pass;
}

void voidPasses(Transaction& transaction, PassPurpose purpose, qint64 account)
{
    transaction.run("DELETE FROM pass WHERE purpose = ? AND account = ?",
                    {storedName(purpose), account});
}
