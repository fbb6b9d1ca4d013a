#include "account/PurchaseTexts.h"

#include <QDateTime>
#include <QLocale>

using namespace Qt::StringLiterals;

QString purchaseKind(const PurchaseHistoryItem& purchase)
{
    return purchase.kind == u"credits"_s ? u"Créditos"_s : u"Almacenamiento"_s;
}

QString purchaseAmount(const PurchaseHistoryItem& purchase)
{
    return QLocale(u"es_ES"_s).toString(purchase.amountCents / 100.0, 'f', 2) + u" €"_s;
}

QString purchaseDate(const PurchaseHistoryItem& purchase)
{
    constexpr qsizetype longest = 30;
    const QString written = purchase.createdAt.value_or(QString()).simplified();
    const QDateTime moment = QDateTime::fromString(written, Qt::ISODateWithMs);
    if (!moment.isValid())
        return written.left(longest);
    return QLocale(u"es_ES"_s).toString(moment.toLocalTime().date(), u"d MMM yyyy"_s);
}
