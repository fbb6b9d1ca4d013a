#pragma once

#include <QString>
#include <QStringView>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

// The table of an enum class E, which makes E a closed vocabulary. `rows` has one row for each
// enumerator, in declaration order; a row begins with the enumerator and its raw value. Files
// contain raw values: never rename one.
template <typename E>
struct Vocabulary;

template <typename E>
concept ClosedVocabulary = requires
{
    Vocabulary<E>::rows.front().rawValue;
};

template <ClosedVocabulary E>
constexpr const auto& row(E value)
{
    return Vocabulary<E>::rows[std::size_t(value)];
}

template <ClosedVocabulary E>
constexpr bool rowsAreInOrder()
{
    return std::ranges::all_of(Vocabulary<E>::rows,
                               [](const auto& r) { return &row(r.value) == &r; });
}

template <ClosedVocabulary E>
QString rawValue(E value)
{
    return row(value).rawValue.toString();
}

// The enumerator with the raw value `name`; case-sensitive.
template <ClosedVocabulary E>
std::optional<E> fromRawValue(QStringView name)
{
    for (const auto& r : Vocabulary<E>::rows) {
        if (r.rawValue == name)
            return r.value;
    }
    return std::nullopt;
}

// The enumerator that `name` stands for in a file. Specialised for vocabularies that accept more
// than their raw values.
template <ClosedVocabulary E>
std::optional<E> fromStored(QStringView name)
{
    return fromRawValue<E>(name);
}

// All enumerators in declaration order.
template <ClosedVocabulary E>
constexpr auto allCases()
{
    std::array<E, Vocabulary<E>::rows.size()> cases{};
    std::ranges::transform(Vocabulary<E>::rows, cases.begin(),
                           [](const auto& r) { return r.value; });
    return cases;
}
