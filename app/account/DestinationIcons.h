#pragma once
#include "account/AccountPanelDestination.h"
#include "app/theme/Icons.h"

struct DestinationIconRow {
    AccountPanelDestination destination;
    Icon icon;
};
inline constexpr std::array destinationIcons{
    DestinationIconRow{AccountPanelDestination::account, Icon::settings},
    DestinationIconRow{AccountPanelDestination::credits, Icon::credits},
    DestinationIconRow{AccountPanelDestination::storage, Icon::storage},
    DestinationIconRow{AccountPanelDestination::purchases, Icon::purchases},
};
constexpr Icon destinationIcon(AccountPanelDestination destination)
{
    return destinationIcons[std::size_t(destination)].icon;
}
static_assert(std::ranges::all_of(destinationIcons, [](const auto& r) {
    return &destinationIcons[std::size_t(r.destination)] == &r;
}));
