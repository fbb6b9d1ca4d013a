#include "service/store/Accounts.h"

#include "service/store/Database.h"
#include "service/store/Ledger.h"
#include "service/store/Refusal.h"
#include "service/store/Texts.h"

#include <QUuid>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestEmail = 254, longestMailbox = 64;
constexpr qsizetype shortestPassword = 8, longestPassword = 1000;
constexpr qsizetype longestFullName = 120;

std::optional<Account> firstOf(Rows rows)
{
    if (!rows.next())
        return std::nullopt;
    return Account{rows.number(0), rows.text(1), rows.text(2), rows.text(3), rows.bytes(4)};
}

}    // namespace

std::optional<QString> normalizedEmail(const QString& email)
{
    const QString lower = email.trimmed().toLower().normalized(QString::NormalizationForm_C);
    const qsizetype at = lower.indexOf(u'@');
    const bool isWhole = at > 0 && at <= longestMailbox && at < lower.size() - 1 &&
                         lower.lastIndexOf(u'@') == at && lower.size() <= longestEmail;
    const auto isOdd = [](QChar c) {
        return c.isSpace() || QStringView(u"<>,;:\"\\()[]").contains(c);
    };
    if (!isWhole || !isPrintable(lower) || std::ranges::any_of(lower, isOdd))
        return std::nullopt;
    return lower;
}

bool isAcceptablePassword(const QString& password)
{
    return password.size() >= shortestPassword && password.size() <= longestPassword;
}

std::optional<Account> accountWithEmail(Transaction& transaction, const QString& email)
{
    return firstOf(transaction.rows(
        "SELECT id, public_id, email, full_name, password FROM account WHERE email = ?", {email}));
}

std::optional<Account> accountWithId(Transaction& transaction, qint64 id)
{
    return firstOf(transaction.rows(
        "SELECT id, public_id, email, full_name, password FROM account WHERE id = ?", {id}));
}

Account addAccount(Transaction& transaction, const QString& email, const QByteArray& passwordHash,
                   qint64 now)
{
    if (accountWithEmail(transaction, email))
        throw Refusal(409, "email_exists");
    const QString publicId = QUuid::createUuid().toString(QUuid::WithoutBraces);
    transaction.run(
        "INSERT INTO account (public_id, email, password, created) VALUES (?, ?, ?, ?)",
        {publicId, email,
         passwordHash.isEmpty() ? SqlValue() : SqlValue(QString::fromLatin1(passwordHash)), now});
    const qint64 id = transaction.lastId();
    addWelcome(transaction, id, now);
    return {id, publicId, email, {}, passwordHash};
}

void setFullName(Transaction& transaction, qint64 account, const QString& fullName)
{
    const auto name = lineOfText(fullName, longestFullName);
    if (!name)
        throw Refusal(400, "invalid_profile", u"fullName must be at most 120 characters"_s);
    transaction.run("UPDATE account SET full_name = ? WHERE id = ?", {*name, account});
}

void setPassword(Transaction& transaction, qint64 account, const QByteArray& passwordHash)
{
    transaction.run("UPDATE account SET password = ? WHERE id = ?",
                    {QString::fromLatin1(passwordHash), account});
}

void nameAdministrator(Transaction& transaction, const Account& account)
{
    transaction.run("INSERT OR REPLACE INTO setting (name, value) VALUES ('administrator', ?)",
                    {account.publicId.toLatin1()});
}

bool isNamedAdministrator(Transaction& transaction, const Account& account)
{
    Rows found = transaction.rows("SELECT value FROM setting WHERE name = 'administrator'");
    return found.next() && found.bytes(0) == account.publicId.toLatin1();
}

void needUnchanged(Transaction& transaction, const Account& account)
{
    const auto now = accountWithId(transaction, account.id);
    if (!now || now->passwordHash != account.passwordHash)
        throw Refusal(400, "invalid_credentials");
}
