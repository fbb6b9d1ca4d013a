#pragma once

#include "model/Vocabulary.h"

// The screens of the account.
enum class AccountPanelDestination { account, credits, storage, purchases };

struct AccountPanelRow {
    AccountPanelDestination value;
    QStringView rawValue, title;
};

template <>
struct Vocabulary<AccountPanelDestination> {
    static constexpr std::array rows{
        AccountPanelRow{AccountPanelDestination::account, u"account", u"Cuenta"},
        AccountPanelRow{AccountPanelDestination::credits, u"credits", u"Créditos"},
        AccountPanelRow{AccountPanelDestination::storage, u"storage", u"Almacenamiento"},
        AccountPanelRow{AccountPanelDestination::purchases, u"purchases", u"Historial de compras"},
    };
};
static_assert(rowsAreInOrder<AccountPanelDestination>());
