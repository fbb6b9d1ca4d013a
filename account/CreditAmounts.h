#pragma once

#include "account/AccountChecks.h"

#include <QString>

#include <array>
#include <optional>

// Numbers of credits: the packages on sale, the limits and the step of any other amount to buy, and
// the price of an exported image.
inline constexpr std::array creditPackages{10'000, 20'000, 50'000, 100'000};
inline constexpr int minCredits = 1'000, maxCredits = 1'000'000, creditBlock = 1'000;
inline constexpr int creditsOfAnExport = 50;

// The credits to buy for a typed amount: clamped to the limits and rounded to whole blocks. Nothing
// if it is no whole number. Points or spaces may separate the thousands.
std::optional<int> effectiveCredits(const QString& typed);
CheckResult checkAmount(const QString& typed);

int eurosOf(int credits);
QString groupedThousands(qint64 number);    // "10.000"
