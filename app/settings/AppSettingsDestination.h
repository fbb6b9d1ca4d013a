#pragma once
#include "app/theme/Icons.h"
#include "model/Vocabulary.h"

// The pages of the program's own settings.
enum class AppSettingsDestination { updates, localAI };

struct AppSettingsRow {
    AppSettingsDestination value;
    QStringView rawValue, title;
    Icon icon;
};

template <>
struct Vocabulary<AppSettingsDestination> {
    static constexpr std::array rows{
        AppSettingsRow{AppSettingsDestination::updates, u"updates", u"Actualizaciones",
                       Icon::updates},
        AppSettingsRow{AppSettingsDestination::localAI, u"localAI", u"IA local", Icon::localEngine},
    };
};
static_assert(rowsAreInOrder<AppSettingsDestination>());
