#pragma once
#include "account/AccountPanelDestination.h"
#include "app/Icons.h"

constexpr Icon destinationIcon(AccountPanelDestination destination)
{
    switch (destination) {
    case AccountPanelDestination::account:
        return Icon::settings;
    case AccountPanelDestination::credits:
        return Icon::credits;
    case AccountPanelDestination::storage:
        return Icon::storage;
    case AccountPanelDestination::purchases:
        return Icon::purchases;
    }
    Q_UNREACHABLE();
}
