#include "app/controls/KeyHint.h"

#include "app/controls/AccessibleRole.h"
#include "app/theme/Painting.h"

namespace {

constexpr int capHeight = 18, capPadding = 5, capGap = 6, hintGap = 14;

double capWidth(const QString& key)
{
    return std::max(18.0, std::ceil(textWidth(Type::caption, key)) + 2 * capPadding);
}

double widthOf(const KeyHint& hint)
{
    double width = std::ceil(textWidth(Type::small, hint.meaning));
    for (const QString& key : hint.keys)
        width += capWidth(key) + capGap;
    return width;
}

}    // namespace

KeyHints::KeyHints(const QList<KeyHint>& hints, QWidget* parent) : QWidget(parent)
{
    setAccessibleRole(this, QAccessible::StaticText);
    setHints(hints);
}

void KeyHints::setHints(const QList<KeyHint>& hints)
{
    if (m_hints == hints && !accessibleName().isEmpty())
        return;
    m_hints = hints;
    QStringList spoken;
    for (const KeyHint& hint : hints)
        spoken.append(hint.keys.join(u'+') + u' ' + hint.meaning);
    setAccessibleName(spoken.join(QStringLiteral(", ")));
    updateGeometry();
    update();
}

QSize KeyHints::sizeHint() const
{
    double width = 0;
    for (const KeyHint& hint : m_hints)
        width += (width > 0 ? hintGap : 0) + widthOf(hint);
    return {qCeil(width), 20};
}

void KeyHints::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    double left = 0;
    for (const KeyHint& hint : m_hints) {
        for (const QString& key : hint.keys) {
            const QRectF cap(left, (height() - capHeight) / 2.0, capWidth(key), capHeight);
            fillRounded(painter, cap, 5, theme.control);
            paintText(painter, cap, Qt::AlignHCenter, Type::caption, theme.text2, key,
                      Qt::ElideNone);
            left += cap.width() + capGap;
        }
        paintText(painter, QRectF(left, 0, widthOf(hint), height()), Qt::AlignLeft, Type::small,
                  theme.text3, hint.meaning, Qt::ElideNone);
        left += std::ceil(textWidth(Type::small, hint.meaning)) + hintGap;
    }
}
