#pragma once

// The one mapping between records and JSON. A record lists its fields once:
//
//     template <> struct JsonFields<CodableRect> {
//         static constexpr auto fields = std::tuple{required("x", &CodableRect::x), …};
//     };
//
// and both directions follow. Reading never throws: a record with a missing required field or a
// wrong type does not read (nothing), and in a list it is dropped alone. Only source files that
// read or write JSON include this header.

#include "model/Vocabulary.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>
#include <QUrl>
#include <QUuid>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <concepts>
#include <functional>
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

// Readers say whether the value had the right type; `out` is only then of use.

inline bool read(const Value& value, bool& out)
{
    return value.is_boolean() && (out = value.get<bool>(), true);
}

inline bool read(const Value& value, double& out)
{
    return value.is_number() && (out = value.get<double>(), true);
}

// Whole numbers of the int range; 3.0 counts as one.
inline bool read(const Value& value, int& out)
{
    const double number = value.is_number() ? value.get<double>() : 0.5;
    if (number != std::trunc(number) || std::abs(number) > 2147483647.0)
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

inline Value write(bool value)
{
    return value;
}
inline Value write(double value)
{
    return value;
}
inline Value write(int value)
{
    return value;
}
inline Value write(const QString& value)
{
    return value.toStdString();
}
inline Value write(const QUuid& value)
{
    return write(value.toString(QUuid::WithoutBraces).toUpper());
}
inline Value write(const QUrl& value)
{
    return write(value.toString(QUrl::FullyEncoded));
}
inline Value write(const QByteArray& value)
{
    return value.toBase64().toStdString();
}

template <ClosedVocabulary E>
Value write(E value)
{
    return write(rawValue(value));
}

template <Mapped Record>
Value write(const Record& record);

template <typename T>
Value write(const QList<T>& values)
{
    Value list = Value::array();
    for (const T& value : values)
        list.push_back(write(value));
    return list;
}

// In order, so that equal sets give equal bytes.
template <typename T>
Value write(const QSet<T>& values)
{
    QList<T> list = values.values();
    std::ranges::sort(list);
    return write(list);
}

enum class Presence { required, optional };

// One field: its key, how to reach it in a record, and what absence or an unknown word do.
template <typename Access, typename Fallback>
struct Field {
    const char* key;
    Access access;
    Presence presence;
    Fallback fallback;    // std::nullopt_t, or the case that an unknown string stands for

    template <typename Record>
    bool readInto(const Value& object, Record& record) const
    {
        const auto found = object.find(key);
        if (found == object.end() || found->is_null())
            return presence == Presence::optional;
        auto& target = std::invoke(access, record);
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

// Keeps the record's default when absent.
template <typename Access>
constexpr auto optional(const char* key, Access access)
{
    return Field<Access, std::nullopt_t>{key, access, Presence::optional, std::nullopt};
}

// A required word of a vocabulary; an unknown one reads as `fallback`.
template <typename Access, ClosedVocabulary E>
constexpr auto required(const char* key, Access access, E fallback)
{
    return Field<Access, E>{key, access, Presence::required, fallback};
}

// The fields of a base or a member, after those of the record itself.
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

template <typename T>
Value write(const std::optional<T>& value)
{
    return write(*value);
}

template <Mapped Record>
bool read(const Value& value, Record& out)
{
    if (!value.is_object())
        return false;
    const bool complete =
        std::apply([&](const auto&... field) { return (field.readInto(value, out) && ...); },
                   JsonFields<Record>::fields);
    // The place for an invariant that a file could break.
    if constexpr (requires { JsonFields<Record>::settle(out); })
        JsonFields<Record>::settle(out);
    return complete;
}

template <Mapped Record>
Value write(const Record& record)
{
    Value object = Value::object();
    std::apply(
        [&](const auto&... field) {
            const auto add = [&](const auto& one) {
                const auto& value = std::invoke(one.access, record);
                if (!isAbsent(value))
                    object.emplace(one.key, write(value));
            };
            (add(field), ...);
        },
        JsonFields<Record>::fields);
    return object;
}

}    // namespace json
