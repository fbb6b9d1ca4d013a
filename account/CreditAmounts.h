#pragma once

#include "account/AccountChecks.h"

#include <QString>

#include <array>
#include <optional>

// Amounts of credits on offer.
inline constexpr std::array creditPackages{10'000, 20'000, 50'000, 100'000};
inline constexpr int minCredits = 1'000, maxCredits = 1'000'000, creditBlock = 1'000;
inline constexpr int creditsOfAnExport = 50;

// The credits to buy for a typed amount: within the limits, rounded to whole blocks. Empty if it is
// not a whole number; ignores points and spaces between thousands.
std::optional<int> effectiveCredits(const QString& typed);
CheckResult checkAmount(const QString& typed);

int eurosOf(int credits);
QString groupedThousands(qint64 number);    // 10.000
