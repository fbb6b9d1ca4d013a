#pragma once

#include <QByteArray>
#include <QString>

// 32 random bytes as 43 characters that may stand in a URL.
QByteArray newToken();
bool looksLikeToken(QByteArrayView text);

// The hash under which a token is stored. It has no salt: nobody guesses 256 random bits.
QByteArray tokenHash(QByteArrayView token);

// A seal proves that the holder of the key wrote the text: it is a keyed hash.
QByteArray newKey();
QByteArray seal(const QByteArray& key, QByteArrayView text);
bool sealFits(const QByteArray& key, QByteArrayView text, QByteArrayView seal);

// A hash by Argon2id. Takes 64 MiB and some 100 ms; two are computed at once, further calls wait.
QByteArray hashedPassword(const QString& password);
// An empty `hash` stands for an account without a password or no account at all: comparing it takes
// as long, so that the time tells nothing, and returns false. Waits as hashedPassword() does.
bool passwordFits(const QByteArray& hash, const QString& password);
