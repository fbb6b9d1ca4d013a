#include "account/CreditAmounts.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

std::optional<int> effectiveCredits(const QString& typed)
{
    // Accepts a point or a space only before a group of three digits: elsewhere a point may mark
    // decimals.
    static const QRegularExpression whole(u"^[+-]?(\\d{1,3}([. ]\\d{3})+|\\d+)$"_s);
    QString digits = typed.simplified();
    if (!whole.match(digits).hasMatch())
        return std::nullopt;
    digits.removeIf([](QChar c) { return c == u'.' || c == u' '; });
    const bool isNegative = digits.startsWith(u'-');
    if (isNegative || digits.startsWith(u'+'))
        digits.remove(0, 1);
    bool fits = false;
    const qint64 read = digits.toLongLong(&fits);
    // A number too long for qint64 is above the limit anyway.
    const qint64 amount = std::clamp<qint64>(isNegative ? 0 : (fits ? read : qint64(maxCredits)),
                                             minCredits, maxCredits);
    return int((amount + creditBlock / 2) / creditBlock * creditBlock);
}

CheckResult checkAmount(const QString& typed)
{
    if (!effectiveCredits(typed))
        return CheckFailure{CheckedField::amount, u"Escribe la cantidad en números."_s};
    return std::nullopt;
}

int eurosOf(int credits)
{
    return credits / creditBlock;
}

// Does not use QLocale, because the Spanish locale does not group the digits of 1000 to 9999.
QString groupedThousands(qint64 number)
{
    QString text = QString::number(number);
    for (qsizetype at = text.size() - 3; at > (number < 0 ? 1 : 0); at -= 3)
        text.insert(at, u'.');
    return text;
}
