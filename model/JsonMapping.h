#pragma once

// The only mapping between records and JSON. A record lists its fields once:
//
//     template <> struct JsonFields<CodableRect> {
//         static constexpr auto fields = std::tuple{required("x", &CodableRect::x), …};
//     };
//
// That list serves for reading and for writing. Reading never throws: a record with a missing
// required field or a value of the wrong type cannot be read, and a list drops only that record.
// Only source files that read or write JSON include this header.

#include "model/Vocabulary.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <concepts>
#include <functional>
#include <limits>
#include <optional>
#include <tuple>

namespace json {

using Value = nlohmann::ordered_json;

template <typename Record>
struct JsonFields;

template <typename T>
concept Mapped = requires
{
    JsonFields<T>::fields;
};

// The read() functions return whether the value had the right type. If not, `out` must not be used.

inline bool read(const Value& value, bool& out)
{
    return value.is_boolean() && (out = value.get<bool>(), true);
}

inline bool read(const Value& value, double& out)
{
    return value.is_number() && (out = value.get<double>(), true);
}

// Reads whole numbers in the range of qint64; 3.0 counts as whole.
inline bool read(const Value& value, qint64& out)
{
    if (value.is_number_unsigned()) {
        const auto number = value.get<quint64>();
        out = qint64(number);
        return number <= quint64(std::numeric_limits<qint64>::max());
    }
    if (value.is_number_integer()) {
        out = value.get<qint64>();
        return true;
    }
    constexpr double beyond = 9'223'372'036'854'775'808.0;
    const double number = value.is_number() ? value.get<double>() : beyond;
    if (number != std::trunc(number) || std::abs(number) >= beyond)
        return false;
    out = qint64(number);
    return true;
}

inline bool read(const Value& value, int& out)
{
    qint64 number = 0;
    if (!read(value, number) || number != qint64(int(number)))
        return false;
    out = int(number);
    return true;
}

inline bool read(const Value& value, QString& out)
{
    if (!value.is_string())
        return false;
    const auto& text = value.get_ref<const std::string&>();
    out = QString::fromUtf8(text.data(), qsizetype(text.size()));
    return true;
}

inline bool read(const Value& value, QUuid& out)
{
    QString text;
    out = read(value, text) ? QUuid::fromString(text) : QUuid();
    return !out.isNull();
}

inline bool read(const Value& value, QUrl& out)
{
    QString text;
    if (!read(value, text))
        return false;
    out = QUrl(text, QUrl::StrictMode);
    return out.isValid() && !out.isRelative();
}

inline bool read(const Value& value, QByteArray& out)
{
    QString text;
    if (!read(value, text))
        return false;
    const auto decoded =
        QByteArray::fromBase64Encoding(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    out = decoded.decoded;
    return decoded.decodingStatus == QByteArray::Base64DecodingStatus::Ok;
}

template <ClosedVocabulary E>
bool read(const Value& value, E& out)
{
    QString name;
    const auto found = read(value, name) ? fromStored<E>(name) : std::nullopt;
    out = found.value_or(out);
    return found.has_value();
}

template <Mapped Record>
bool read(const Value& value, Record& out);
template <typename T>
bool read(const Value& value, QList<T>& out);

template <typename T>
bool read(const Value& value, std::optional<T>& out)
{
    return read(value, out.emplace());
}

template <typename T>
bool read(const Value& value, QList<T>& out)
{
    out.clear();
    if (!value.is_array())
        return false;
    for (const Value& element : value) {
        if (T entry{}; read(element, entry))
            out.append(std::move(entry));
    }
    return true;
}

template <typename T>
bool read(const Value& value, QSet<T>& out)
{
    QList<T> entries;
    const bool isList = read(value, entries);
    out = QSet<T>(entries.cbegin(), entries.cend());
    return isList;
}

// The append() functions write directly to the text: a batch is written at every change, and first
// building a tree of values would take ten times as long.

inline void append(QByteArray& text, bool value)
{
    text.append(value ? "true" : "false");
}

template <typename Number>
requires std::same_as<Number, double> || std::same_as<Number, qint64>
void appendNumber(QByteArray& text, Number value)
{
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    text.append(digits.data(), qsizetype(end - digits.data()));
}

inline void append(QByteArray& text, qint64 value)
{
    appendNumber(text, value);
}

inline void append(QByteArray& text, int value)
{
    append(text, qint64(value));
}

inline void append(QByteArray& text, double value)
{
    if (!std::isfinite(value))
        value = 0;    // JSON has no NaN; without the key, the record would be unreadable
    // Writes the shortest digits that read back as the same number. Below 1e15, whole numbers are
    // written without an exponent.
    if (value == std::trunc(value) && std::abs(value) < 1e15)
        appendNumber(text, qint64(value));
    else
        appendNumber(text, value);
}

// `utf8` must contain nothing that needs an escape.
inline void appendQuoted(QByteArray& text, const QByteArray& utf8)
{
    text.append('"').append(utf8).append('"');
}

inline void append(QByteArray& text, const QString& value)
{
    const QByteArray utf8 = value.toUtf8();
    const auto needsEscape = [](char c) { return (uchar(c) < 0x20) || c == '"' || c == '\\'; };
    if (std::ranges::none_of(utf8, needsEscape))
        appendQuoted(text, utf8);
    else
        text.append(QByteArray::fromStdString(Value(utf8.toStdString()).dump()));
}

inline void append(QByteArray& text, const QUuid& value)
{
    appendQuoted(text, value.toByteArray(QUuid::WithoutBraces).toUpper());
}

inline void append(QByteArray& text, const QUrl& value)
{
    append(text, value.toString(QUrl::FullyEncoded));
}

inline void append(QByteArray& text, const QByteArray& value)
{
    appendQuoted(text, value.toBase64());
}

template <ClosedVocabulary E>
void append(QByteArray& text, E value)
{
    append(text, rawValue(value));
}

template <Mapped Record>
void append(QByteArray& text, const Record& record);
template <typename T>
void append(QByteArray& text, const QList<T>& values);

template <typename T>
void append(QByteArray& text, const std::optional<T>& value)
{
    append(text, *value);
}

template <typename T>
void append(QByteArray& text, const QList<T>& values)
{
    text.append('[');
    for (qsizetype i = 0; i < values.size(); ++i) {
        if (i > 0)
            text.append(',');
        append(text, values[i]);
    }
    text.append(']');
}

// Sorts the values, so that equal sets give equal bytes.
template <typename T>
void append(QByteArray& text, const QSet<T>& values)
{
    QList<T> list = values.values();
    std::ranges::sort(list);
    append(text, list);
}

enum class Presence { required, optional, lenient };

// One field of a record: its JSON key, how to access it, and what to do if it is absent or contains
// an unknown word.
template <typename Access, typename Fallback>
struct Field {
    const char* key;
    Access access;
    Presence presence;
    Fallback fallback;    // std::nullopt, or the value to use for an unknown word

    template <typename Record>
    bool readInto(const Value& object, Record& record) const
    {
        const auto found = object.find(key);
        if (found == object.end() || found->is_null())
            return presence != Presence::required;
        auto& target = std::invoke(access, record);
        if (presence == Presence::lenient) {
            if (auto value = target; read(*found, value))
                target = std::move(value);
            return true;
        }
        if (read(*found, target))
            return true;
        if constexpr (!std::same_as<Fallback, std::nullopt_t>) {
            target = fallback;
            return found->is_string();
        }
        return false;
    }
};

template <typename Access>
constexpr auto required(const char* key, Access access)
{
    return Field<Access, std::nullopt_t>{key, access, Presence::required, std::nullopt};
}

// A field that may be absent; the record then keeps its default.
template <typename Access>
constexpr auto optional(const char* key, Access access)
{
    return Field<Access, std::nullopt_t>{key, access, Presence::optional, std::nullopt};
}

// A field that may be absent or unreadable; the record then keeps its default.
template <typename Access>
constexpr auto lenient(const char* key, Access access)
{
    return Field<Access, std::nullopt_t>{key, access, Presence::lenient, std::nullopt};
}

// A required field that contains a word of a vocabulary. An unknown word is read as `fallback`.
template <typename Access, ClosedVocabulary E>
constexpr auto required(const char* key, Access access, E fallback)
{
    return Field<Access, E>{key, access, Presence::required, fallback};
}

template <typename... Fields, typename... More>
constexpr auto operator+(const std::tuple<Fields...>& fields, const std::tuple<More...>& more)
{
    return std::tuple_cat(fields, more);
}

template <typename T>
bool isAbsent(const T&)
{
    return false;
}

template <typename T>
bool isAbsent(const std::optional<T>& value)
{
    return !value;
}

template <Mapped Record>
bool read(const Value& value, Record& out)
{
    if (!value.is_object())
        return false;
    const bool complete =
        std::apply([&](const auto&... field) { return (field.readInto(value, out) && ...); },
                   JsonFields<Record>::fields);
    // Calls repair(), if the record has one, which restores invariants that a file may break.
    if constexpr (requires { JsonFields<Record>::repair(out); })
        JsonFields<Record>::repair(out);
    else if constexpr (requires { JsonFields<Record>::repair(out, value); })
        JsonFields<Record>::repair(out, value);
    return complete;
}

template <Mapped Record>
void append(QByteArray& text, const Record& record)
{
    char separator = '{';
    std::apply(
        [&](const auto&... field) {
            [[maybe_unused]] const auto add = [&](const auto& one) {
                const auto& value = std::invoke(one.access, record);
                if (isAbsent(value))
                    return;
                text.append(separator).append('"').append(one.key).append("\":");
                append(text, value);
                separator = ',';
            };
            (add(field), ...);
        },
        JsonFields<Record>::fields);
    text.append(separator == '{' ? "{}" : "}");
}

template <typename T>
QByteArray written(const T& value)
{
    QByteArray text;
    append(text, value);
    return text;
}

}    // namespace json
