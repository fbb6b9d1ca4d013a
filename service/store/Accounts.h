#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class Transaction;

struct Account {
    qint64 id = 0;
    QString publicId, email, fullName;
    QByteArray passwordHash;    // empty: signs in with Google only
};

// Trimmed and in small letters; nothing when it cannot be an address.
std::optional<QString> normalizedEmail(const QString& email);
bool isAcceptablePassword(const QString& password);

std::optional<Account> accountWithEmail(Transaction& transaction, const QString& email);
std::optional<Account> accountWithId(Transaction& transaction, qint64 id);

// With its welcome balance. Throws Refusal when the address has an account.
Account addAccount(Transaction& transaction, const QString& email, const QByteArray& passwordHash,
                   qint64 now);

// Throws Refusal for a name that is too long or holds control characters.
void setFullName(Transaction& transaction, qint64 account, const QString& fullName);
void setPassword(Transaction& transaction, qint64 account, const QByteArray& passwordHash);
// The one account that may share templates, as whoever runs the service has named it.
void nameAdministrator(Transaction& transaction, const Account& account);
bool isNamedAdministrator(Transaction& transaction, const Account& account);

// A password's hash was looked at outside of the transaction, for that takes long. Throws Refusal
// when it is another one by now.
void needUnchanged(Transaction& transaction, const Account& account);
