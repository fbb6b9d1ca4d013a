#include "app/CreditAmounts.h"

#include <algorithm>

using namespace Qt::StringLiterals;

std::optional<int> effectiveCredits(const QString& typed)
{
    QString digits = typed.simplified();
    digits.removeIf([](QChar c) { return c == u'.' || c.isSpace(); });
    const bool isNegative = digits.startsWith(u'-');
    if (isNegative || digits.startsWith(u'+'))
        digits.remove(0, 1);
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    if (digits.isEmpty() || !std::ranges::all_of(digits, isDigit))
        return std::nullopt;
    bool fits = false;
    const qint64 read = digits.toLongLong(&fits);
    // What is too long to be read is beyond the limit too.
    const qint64 amount = std::clamp<qint64>(isNegative ? 0 : (fits ? read : qint64(maxCredits)),
                                             minCredits, maxCredits);
    return int((amount + creditBlock / 2) / creditBlock * creditBlock);
}

int eurosOf(int credits)
{
    return credits / creditBlock;
}

// The locale's own grouping leaves four digits together.
QString groupedThousands(qint64 number)
{
    QString text = QString::number(number);
    for (qsizetype at = text.size() - 3; at > (number < 0 ? 1 : 0); at -= 3)
        text.insert(at, u'.');
    return text;
}
