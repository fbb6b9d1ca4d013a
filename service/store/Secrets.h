#pragma once

#include <QByteArray>
#include <QString>

// 32 random bytes as 43 characters that an address can hold.
QByteArray newToken();
bool looksLikeToken(QByteArrayView text);

// What is kept of a token. Without salt: nobody guesses 256 random bits.
QByteArray tokenHash(QByteArrayView token);

// Who has no key cannot make the seal of a text.
QByteArray newKey();
QByteArray seal(const QByteArray& key, QByteArrayView text);
bool sealFits(const QByteArray& key, QByteArrayView text, QByteArrayView seal);

// Argon2id: each takes 64 MiB and some 100 ms, so that few run at once. Wait.
QByteArray hashedPassword(const QString& password);
// An empty hash, of an account without password or of none at all, costs the same and never fits.
bool passwordFits(const QByteArray& hash, const QString& password);
