#include "app/controls/Button.h"

#include "app/theme/KeyboardFocus.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QStyle>

Control::Control(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    m_glide.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_glide, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_hovered = value.toDouble();
        update();
    });
}

bool Control::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::HoverEnter:
        glideTo(isEnabled() ? 1 : 0);
        break;
    case QEvent::HoverLeave:
        glideTo(0);
        break;
    case QEvent::EnabledChange:
        glideTo(isEnabled() && underMouse() ? 1 : 0);
        break;
    default:
        break;
    }
    return QAbstractButton::event(event);
}

void Control::lookForPointer()
{
    if (!rect().contains(mapFromGlobal(QCursor::pos())))
        glideTo(0);
}

void Control::focusInEvent(QFocusEvent* event)
{
    QAbstractButton::focusInEvent(event);
    KeyboardFocus::entered(this, event);
}

void Control::focusOutEvent(QFocusEvent* event)
{
    QAbstractButton::focusOutEvent(event);
    KeyboardFocus::left(this);
}

void Control::hideEvent(QHideEvent* event)
{
    QAbstractButton::hideEvent(event);
    m_glide.stop();
    m_hovered = 0;
}

void Control::glideTo(double hovered)
{
    m_glide.stop();
    const int time = style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this);
    if (time == 0 || !isVisible()) {
        m_hovered = hovered;
        return update();
    }
    m_glide.setDuration(time);
    m_glide.setStartValue(m_hovered);
    m_glide.setEndValue(hovered);
    m_glide.start();
}

namespace {
constexpr int buttonIconSide = 20;
}    // namespace

PushButton::PushButton(Icon icon, const QString& text, ButtonKind kind, ButtonSize size,
                       QWidget* parent)
    : Control(parent), m_icon(icon), m_kind(kind), m_size(size), m_turn(this)
{
    setText(text);
    setAccessibleName(text);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setProperty("focusRadius", row(size).radius);
}

void PushButton::setStretched()
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void PushButton::setFlush()
{
    m_isFlush = true;
    updateGeometry();
}

void PushButton::setWorking(bool working)
{
    if (working == m_isWorking)
        return;
    m_isWorking = working;
    m_turn.run(working && isVisible());
    if (working)
        m_description = accessibleDescription();
    setAccessibleDescription(working ? QStringLiteral("En curso") : m_description);
    update();
}

void PushButton::showEvent(QShowEvent* event)
{
    Control::showEvent(event);
    m_turn.run(m_isWorking);
}

void PushButton::hideEvent(QHideEvent* event)
{
    Control::hideEvent(event);
    m_turn.run(false);
}

bool PushButton::event(QEvent* event)
{
    const auto isPress = [event] {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
            return true;
        case QEvent::KeyPress:
        case QEvent::KeyRelease: {
            const int key = static_cast<QKeyEvent*>(event)->key();
            return key == Qt::Key_Space || key == Qt::Key_Select;
        }
        default:
            return false;
        }
    };
    if (isWorking() && isPress()) {
        event->accept();
        return true;
    }
    return Control::event(event);
}

void PushButton::setJoined(Joined joined)
{
    m_joined = joined;
    update();
}

void PushButton::setLabels(Labels labels)
{
    m_labels = labels;
    setToolTip(labels == Labels::hidden ? text() : QString());
    updateGeometry();
    update();
}

QSize PushButton::sizeHint() const
{
    const ButtonSizeRow& size = row(m_size);
    if (m_labels == Labels::hidden)
        return {42, size.height};
    const int icon = m_icon == Icon::none ? 0 : 20 + size.gap - 2;
    return {2 * padding() + icon + qCeil(textWidth(textType(), text())), size.height};
}

// Gives a link a small padding, so that its text, which has no background around it, lines up with
// the widgets above and below.
int PushButton::padding() const
{
    if (m_isFlush)
        return 0;
    return m_kind == ButtonKind::link ? 6 : row(m_size).padding;
}

Type PushButton::textType() const
{
    const bool strong = m_kind == ButtonKind::soft || m_kind == ButtonKind::primary;
    return strong ? row(m_size).primaryType : row(m_size).type;
}

void PushButton::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor fill = mixed(theme.control, theme.hover, hovered());
    QColor ink = theme.text;
    if (m_kind == ButtonKind::raised) {
        fill = mixed(theme.raised, theme.hover, hovered() * 0.8);
    } else if (m_kind == ButtonKind::primary) {
        fill = mixed(theme.accent, theme.accentHover, hovered());
        ink = Qt::white;
    } else if (m_kind == ButtonKind::soft) {
        fill = mixed(theme.accentSoft, mixed(theme.accentSoft, theme.accent, 0.14), hovered());
        ink = theme.accentText;
    } else if (m_kind == ButtonKind::outlined) {
        fill = withOpacity(theme.hover, hovered());
    } else if (m_kind == ButtonKind::link) {
        fill = withOpacity(theme.hover, m_isFlush ? 0 : hovered());
        ink = m_isFlush ? mixed(theme.accentText, theme.text, hovered()) : theme.accentText;
    }
    if (!isEnabled()) {
        fill =
            m_kind == ButtonKind::link ? Qt::transparent : mixed(theme.panel, theme.control, 0.65);
        ink = theme.dis;
    } else if (isDown()) {
        painter.setOpacity(0.86);
    }
    const ButtonSizeRow& size = row(m_size);
    const double inner = 2;
    fillRounded(
        painter, rect(),
        Corners{m_joined == Joined::right || m_joined == Joined::middle ? inner : size.radius,
                m_joined == Joined::left || m_joined == Joined::middle ? inner : size.radius},
        fill);
    if (m_kind == ButtonKind::outlined)
        strokeRounded(painter, rect(), size.radius, theme.line2);
    if (m_labels == Labels::hidden)
        return paintIcon(painter, m_icon, rect(), 20, ink);
    const int spare = std::max(0, width() - sizeHint().width()) / 2;
    double left = padding() + spare;
    const bool hasPlace = m_icon != Icon::none;
    if (isWorking()) {
        const QRectF spinner(hasPlace ? left : (width() - 16) / 2.0, (height() - 16) / 2.0, 16, 16);
        paintSpinner(painter, spinner, withOpacity(ink, 0.25), ink, m_turn.value(), 1.8);
        if (!hasPlace)
            return;
    } else if (hasPlace) {
        paintIcon(painter, m_icon, QRectF(left - 2, 0, buttonIconSide, height()), buttonIconSide,
                  ink);
    }
    if (hasPlace)
        left += buttonIconSide + size.gap - 2;
    paintText(painter, QRectF(left, 0, width() - left - padding() + 1, height()), Qt::AlignLeft,
              textType(), ink, text());
}

IconButton::IconButton(Icon icon, const QString& name, int side, QWidget* parent)
    : Control(parent), m_icon(icon), m_side(side)
{
    setAccessibleName(name);
    setToolTip(name);
    setFixedSize(side, side);
    setProperty("focusRadius", Radius::button);
}

void IconButton::setMeaning(Icon icon, const QString& name)
{
    if (icon == m_icon && name == accessibleName())
        return;
    m_icon = icon;
    setAccessibleName(name);
    setToolTip(name);
    update();
}

void IconButton::setIconSize(int size)
{
    m_iconSize = size;
    update();
}

void IconButton::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isEnabled() && (isDown() || hovered() > 0)) {
        fillRounded(painter, rect(), Radius::button,
                    isDown() ? theme.seg : withOpacity(theme.hover, hovered()));
    }
    const QColor ink = isEnabled() ? mixed(theme.text2, theme.text, hovered()) : theme.dis;
    paintIcon(painter, m_icon, rect(), m_iconSize, ink);
}

JoinedButtons::JoinedButtons(const QList<PushButton*>& buttons, QWidget* parent)
    : QWidget(parent), m_buttons(buttons)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(1);
    for (PushButton* button : buttons) {
        layout->addWidget(button);
        button->setJoined(Joined::middle);
    }
    buttons.first()->setJoined(Joined::left);
    buttons.last()->setJoined(Joined::right);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void JoinedButtons::setLabels(Labels labels)
{
    for (PushButton* button : m_buttons)
        button->setLabels(labels);
}

void JoinedButtons::setStretched()
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    for (PushButton* button : m_buttons)
        button->setStretched();
}
