#include "app/publish/MenuButton.h"

#include <QMenu>

namespace {
constexpr int menuButtonHeight = 32, menuButtonPadding = 12, barePadding = 6;
constexpr int chevronSide = 16, chevronGap = 8, menuGap = 4;
}    // namespace

MenuButton::MenuButton(const QString& text, Look look, QWidget* parent)
    : Control(parent), m_look(look)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setProperty("focusRadius", Radius::field);
    setShown(text);
    connect(this, &Control::clicked, this, &MenuButton::open);
}

void MenuButton::setShown(const QString& text)
{
    if (text == this->text())
        return;
    setText(text);
    setAccessibleName(text);
    updateGeometry();
    update();
}

QSize MenuButton::sizeHint() const
{
    const int padding = m_look == Look::bare ? barePadding : menuButtonPadding;
    return {2 * padding + qCeil(textWidth(Type::bodyMedium, text())) + chevronGap + chevronSide,
            m_look == Look::bare ? 28 : menuButtonHeight};
}

void MenuButton::open()
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    Q_EMIT menuWanted(menu);
    connect(menu, &QMenu::aboutToHide, this, &Control::lookForPointer);
    menu->popup(mapToGlobal(QPoint(0, height() + menuGap)));
}

void MenuButton::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isBare = m_look == Look::bare;
    const QColor ground =
        isBare ? withOpacity(theme.hover, hovered()) : mixed(theme.control, theme.hover, hovered());
    if (isEnabled())
        fillRounded(painter, rect(), Radius::field, isDown() ? theme.seg : ground);
    const QColor ink = !isEnabled() ? theme.dis
                       : isBare     ? mixed(theme.text2, theme.text, hovered())
                                    : theme.text;
    const int padding = isBare ? barePadding : menuButtonPadding;
    const QRectF inside = QRectF(rect()).adjusted(padding, 0, -padding, 0);
    paintIcon(painter, Icon::unfold, QRectF(inside.right() - chevronSide, 0, chevronSide, height()),
              chevronSide, ink);
    paintText(painter, inside.adjusted(0, 0, -chevronSide - chevronGap + 1, 0), Qt::AlignLeft,
              Type::bodyMedium, ink, text());
}
