#pragma once

#include "account/AccountRecords.h"

// How a purchase is shown, in Spanish; all of it on one line.
QString purchaseKind(const PurchaseHistoryItem& purchase);      // "Créditos", "Almacenamiento"
QString purchaseAmount(const PurchaseHistoryItem& purchase);    // "10,00 €"
// "22 nov 2026" where the date can be read, else what the service wrote.
QString purchaseDate(const PurchaseHistoryItem& purchase);
