#pragma once

#include "account/AccountRecords.h"

// Fields of a purchase as the purchase list shows them, in Spanish and on one line.
QString purchaseKind(const PurchaseHistoryItem& purchase);      // "Créditos", "Almacenamiento"
QString purchaseAmount(const PurchaseHistoryItem& purchase);    // "10,00 €"
// "22 nov 2026"; if the date cannot be read, the service's own text.
QString purchaseDate(const PurchaseHistoryItem& purchase);
