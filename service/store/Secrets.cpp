#include "service/store/Secrets.h"

#include "service/store/Turns.h"

#include <sodium.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace {

constexpr int tokenBytes = 32;
constexpr int hashingAtOnce = 2;

void needSodium()
{
    static const bool ready = sodium_init() >= 0;
    if (!ready)
        throw std::runtime_error("no source of random numbers");
}

QByteArray randomBytes(qsizetype count)
{
    needSodium();
    QByteArray bytes(count, Qt::Uninitialized);
    randombytes_buf(bytes.data(), size_t(count));
    return bytes;
}

QByteArray blake2b(QByteArrayView text, const QByteArray& key)
{
    needSodium();
    QByteArray hash(crypto_generichash_BYTES, Qt::Uninitialized);
    crypto_generichash(reinterpret_cast<unsigned char*>(hash.data()), size_t(hash.size()),
                       reinterpret_cast<const unsigned char*>(text.data()), size_t(text.size()),
                       reinterpret_cast<const unsigned char*>(key.data()), size_t(key.size()));
    return hash;
}

QByteArray forAddress(const QByteArray& bytes)
{
    return bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
}

// Normalizes the password, because keyboards may send one letter as different code points.
QByteArray passwordBytes(const QString& password)
{
    return password.normalized(QString::NormalizationForm_C).toUtf8();
}

class HashingTurn {
public:
    HashingTurn() { turns().take(); }
    ~HashingTurn() { turns().giveBack(); }
    HashingTurn(const HashingTurn&) = delete;
    HashingTurn& operator=(const HashingTurn&) = delete;

private:
    static Turns& turns()
    {
        static Turns turns(hashingAtOnce);
        return turns;
    }
};

}    // namespace

QByteArray newToken()
{
    return forAddress(randomBytes(tokenBytes));
}

bool looksLikeToken(QByteArrayView text)
{
    return text.size() == 43 && std::ranges::all_of(text, [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                      c == '-' || c == '_';
           });
}

QByteArray tokenHash(QByteArrayView token)
{
    return blake2b(token, {});
}

QByteArray newKey()
{
    return randomBytes(crypto_generichash_KEYBYTES);
}

QByteArray seal(const QByteArray& key, QByteArrayView text)
{
    return forAddress(blake2b(text, key));
}

bool sealFits(const QByteArray& key, QByteArrayView text, QByteArrayView given)
{
    const QByteArray expected = seal(key, text);
    return given.size() == expected.size() &&
           sodium_memcmp(expected.constData(), given.data(), size_t(expected.size())) == 0;
}

QByteArray hashedPassword(const QString& password)
{
    needSodium();
    const HashingTurn turn;
    const QByteArray text = passwordBytes(password);
    std::array<char, crypto_pwhash_STRBYTES> hash{};
    if (crypto_pwhash_str(hash.data(), text.constData(), size_t(text.size()),
                          crypto_pwhash_OPSLIMIT_INTERACTIVE,
                          crypto_pwhash_MEMLIMIT_INTERACTIVE) != 0)
        throw std::bad_alloc();
    return QByteArray(hash.data());
}

bool passwordFits(const QByteArray& hash, const QString& password)
{
    static const QByteArray nobodys = hashedPassword(QString::fromLatin1(newToken()));
    const HashingTurn turn;
    const QByteArray text = passwordBytes(password);
    const QByteArray& compared = hash.isEmpty() ? nobodys : hash;
    const bool fits =
        crypto_pwhash_str_verify(compared.constData(), text.constData(), size_t(text.size())) == 0;
    return fits && !hash.isEmpty();
}
