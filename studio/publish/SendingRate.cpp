#include "studio/publish/SendingRate.h"

#include "platform/PreferencesStore.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QString sendingRateKey = u"moltiva.publishRate"_s;

}    // namespace

std::optional<double> lastSendingRate(const PreferencesStore& preferences)
{
    const double rate = preferences.value(sendingRateKey).value_or(QByteArray()).toDouble();
    return std::isfinite(rate) && rate > 0 ? std::optional(rate) : std::nullopt;
}

void storeSendingRate(PreferencesStore& preferences, double rate)
{
    preferences.setValue(sendingRateKey, QByteArray::number(rate));
}
