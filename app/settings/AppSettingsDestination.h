#pragma once
#include "app/theme/Icons.h"
#include "model/Vocabulary.h"

// The pages of the program's own settings.
enum class AppSettingsDestination { updates, localAI, appearance };

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
        AppSettingsRow{AppSettingsDestination::appearance, u"appearance", u"Apariencia",
                       Icon::appearance},
    };
};
static_assert(rowsAreInOrder<AppSettingsDestination>());
