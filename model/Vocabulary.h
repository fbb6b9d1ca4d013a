#pragma once

#include <QString>
#include <QStringView>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

// A closed vocabulary is an enum class and one table: `Vocabulary<E>::rows`, in declaration order,
// whose rows begin with the case and its raw value. The raw value is what files hold: never rename
// one.
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

// Exact and case-sensitive.
template <ClosedVocabulary E>
std::optional<E> fromRawValue(QStringView name)
{
    for (const auto& r : Vocabulary<E>::rows) {
        if (r.rawValue == name)
            return r.value;
    }
    return std::nullopt;
}

// What a file's word stands for; a vocabulary that accepts more than its raw values specialises it.
template <ClosedVocabulary E>
std::optional<E> fromStored(QStringView name)
{
    return fromRawValue<E>(name);
}

// In declaration order, for pickers.
template <ClosedVocabulary E>
constexpr auto allCases()
{
    std::array<E, Vocabulary<E>::rows.size()> cases{};
    std::ranges::transform(Vocabulary<E>::rows, cases.begin(),
                           [](const auto& r) { return r.value; });
    return cases;
}
