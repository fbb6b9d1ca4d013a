#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

class Transaction;

struct Account {
    qint64 id = 0;
    QString publicId, email, fullName;
    QByteArray passwordHash;    // empty if the user signs in with Google only
};

// The address trimmed and in lower case; nothing when it cannot be an email address.
std::optional<QString> normalizedEmail(const QString& email);
bool isAcceptablePassword(const QString& password);

std::optional<Account> accountWithEmail(Transaction& transaction, const QString& email);
std::optional<Account> accountWithId(Transaction& transaction, qint64 id);

// Adds an account with its welcome balance. Throws Refusal when the address has an account already.
Account addAccount(Transaction& transaction, const QString& email, const QByteArray& passwordHash,
                   qint64 now);

// Throws Refusal for a name that is too long or holds control characters.
void setFullName(Transaction& transaction, qint64 account, const QString& fullName);
void setPassword(Transaction& transaction, qint64 account, const QByteArray& passwordHash);
// Makes `account` the administrator, who may upload templates, in place of any earlier one. Only
// the person who runs the service can do this, with an option of the program.
void nameAdministrator(Transaction& transaction, const Account& account);
bool isNamedAdministrator(Transaction& transaction, const Account& account);

// Throws Refusal when the password has changed since `account` was read. Passwords are compared
// outside of transactions, because hashing takes long.
void needUnchanged(Transaction& transaction, const Account& account);
