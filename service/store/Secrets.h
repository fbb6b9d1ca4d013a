#pragma once

#include <QByteArray>
#include <QString>

// 32 random bytes as 43 characters that are valid in a URL.
QByteArray newToken();
bool looksLikeToken(QByteArrayView text);

// The hash under which a token is stored. It has no salt: nobody guesses 256 random bits.
QByteArray tokenHash(QByteArrayView token);

// A seal proves that the holder of the key wrote the text: it is a keyed hash.
QByteArray newKey();
QByteArray seal(const QByteArray& key, QByteArrayView text);
bool sealFits(const QByteArray& key, QByteArrayView text, QByteArrayView seal);

// An Argon2id hash. Takes 64 MiB and about 100 ms. At most two are computed at once; further calls
// wait.
QByteArray hashedPassword(const QString& password);
// Whether `password` has the hash `hash`. For an account without a password, or without an account,
// pass an empty `hash`: the result is false, after the same time as for a wrong password, so that
// the time reveals nothing. May wait like hashedPassword().
bool passwordFits(const QByteArray& hash, const QString& password);
