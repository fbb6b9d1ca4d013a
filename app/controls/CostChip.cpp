#include "app/controls/CostChip.h"

#include "account/AccountTexts.h"
#include "app/controls/AccessibleRole.h"
#include "app/theme/Icons.h"
#include "app/theme/Painting.h"

using namespace Qt::StringLiterals;

namespace {
constexpr int costChipHeight = 20, chipCoin = 14, chipCoinGap = 4;
constexpr Type numberType = Type::small;

int digitsOf(qint64 number)
{
    return int(QString::number(number).size());
}
}    // namespace

CostChip::CostChip(int digits, QWidget* parent) : QWidget(parent), m_digits(digits)
{
    setAccessibleRole(this, QAccessible::StaticText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleName(spoken());
}

void CostChip::setCost(const Cost& cost)
{
    if (cost == m_cost)
        return;
    m_cost = cost;
    m_digits = std::max(m_digits, shownDigits());
    setAccessibleName(spoken());
    update();
}

void CostChip::setOnAccent()
{
    m_isOnAccent = true;
    update();
}

QString CostChip::spoken() const
{
    if (!m_cost.credits)
        return u"se está calculando el coste"_s;
    const QString costs = u"cuesta "_s + creditsText(*m_cost.credits);
    return m_cost.isShort() ? u"%1 y tienes %2"_s.arg(costs).arg(m_cost.balance) : costs;
}

int CostChip::shownDigits() const
{
    return digitsOf(std::max(m_cost.most, m_cost.credits.value_or(qint64(0))));
}

QSize CostChip::sizeHint() const
{
    return {chipCoin + chipCoinGap + qCeil(digitsWidth(numberType, m_digits)), costChipHeight};
}

QColor CostChip::ink() const
{
    const Theme& theme = themeOf(this);
    if (!isEnabled())
        return theme.dis;
    if (m_isOnAccent)
        return Qt::white;
    if (m_cost.isShort())
        return theme.warn;
    return m_cost.credits == 0 ? theme.ok : theme.text2;
}

void CostChip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const double number = std::ceil(digitsWidth(numberType, shownDigits()));
    const double left = width() - number;
    // Without colours a sign tells that the balance is too low.
    const Icon icon = m_isOnAccent && m_cost.isShort() ? Icon::alert : Icon::coin;
    paintIcon(painter, icon, QRectF(left - chipCoinGap - chipCoin, 0, chipCoin, height()), chipCoin,
              ink());
    paintText(painter, QRectF(left, 0, number + 1, height()), Qt::AlignLeft, numberType, ink(),
              m_cost.credits ? QString::number(*m_cost.credits) : u"…"_s, Qt::ElideNone);
}
