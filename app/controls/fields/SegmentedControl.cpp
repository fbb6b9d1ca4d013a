#include "app/controls/fields/SegmentedControl.h"

#include "app/controls/PartsAccessible.h"
#include "app/theme/KeyboardFocus.h"

#include <QHoverEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QToolTip>

namespace {
constexpr int trackMargin = 2, iconAir = 2, aloneIconSide = 20, noSegment = -1;
constexpr int segmentLineInset = 10, segmentLine = 2;    // of the line below the chosen segment
constexpr int creditsGap = 8, creditsCoin = 14, creditsCoinGap = 4;

int creditsWidth(const Segment& segment)
{
    if (!segment.credits)
        return 0;
    return creditsGap + creditsCoin + creditsCoinGap +
           qCeil(textWidth(Type::small, QString::number(*segment.credits)));
}

}    // namespace

SegmentedControl::SegmentedControl(const QList<Segment>& segments, QWidget* parent)
    : QWidget(parent), m_segments(segments)
{
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setProperty("focusRadius", Radius::button);
    setCurrent(0);
}

void SegmentedControl::setSize(SegmentSize size)
{
    m_size = size;
    updateGeometry();
    update();
}

void SegmentedControl::setSegments(const QList<Segment>& segments)
{
    Q_ASSERT(segments.size() == m_segments.size());
    if (segments == m_segments)
        return;
    m_segments = segments;
    if (m_current != noSegment)
        setAccessibleName(m_segments[m_current].name);
    updateGeometry();
    update();
}

void SegmentedControl::setLabels(Labels labels)
{
    m_labels = labels;
    updateGeometry();
    update();
}

int SegmentedControl::trackHeight() const
{
    switch (m_size) {
    case SegmentSize::bar:
        return 36;
    case SegmentSize::field:
        return 32;
    case SegmentSize::large:
        return 44;
    }
    Q_UNREACHABLE();
}

void SegmentedControl::setStretched(SegmentSize size)
{
    m_stretched = true;
    setSize(size);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    updateGeometry();
}

void SegmentedControl::setCurrent(std::optional<int> index)
{
    const int current = index.value_or(noSegment);
    if (current < noSegment || current >= m_segments.size())
        return;
    const QString name = index ? m_segments[current].name : accessibleName();
    if (current == m_current && accessibleName() == name)
        return;
    const bool moves = std::exchange(m_current, current) != current;
    setAccessibleName(name);
    if (moves && index && hasFocus())
        tellPart(this, QAccessible::Focus, current);
    update();
}

int SegmentedControl::widthOf(const Segment& segment) const
{
    const int text = isIconAlone(segment)
                         ? 0
                         : qCeil(textWidth(Type::bodyMedium, segment.text)) + creditsWidth(segment);
    if (segment.icon == Icon::none)
        return 2 * segmentPadding() + text;
    return 2 * segmentPadding() + iconSide() + (text ? text + iconGap() - iconAir : 0);
}

QRect SegmentedControl::segmentRect(int index) const
{
    const int height = trackHeight() - 2 * trackMargin;
    if (m_stretched) {
        const auto edge = [&](int i) {
            return trackMargin + (width() - 2 * trackMargin) * i / int(m_segments.size());
        };
        return {edge(index), trackMargin, edge(index + 1) - edge(index), height};
    }
    int left = trackMargin;
    for (int i = 0; i < index; ++i)
        left += widthOf(m_segments[i]);
    return {left, trackMargin, widthOf(m_segments[index]), height};
}

QSize SegmentedControl::sizeHint() const
{
    int width = 2 * trackMargin;
    for (const Segment& segment : m_segments)
        width += widthOf(segment);
    return {width, trackHeight()};
}

QString SegmentedControl::choiceToolTip(int index) const
{
    const Segment& segment = m_segments[index];
    return canBeChosen(index) ? segment.toolTip : segment.refusal;
}

int SegmentedControl::segmentAt(QPoint position) const
{
    for (int i = 0; i < m_segments.size(); ++i) {
        if (segmentRect(i).adjusted(0, -trackMargin, 0, trackMargin).contains(position))
            return i;
    }
    return -1;
}

void SegmentedControl::choose(int index)
{
    if (index < 0 || index >= m_segments.size() || index == m_current || !canBeChosen(index))
        return;
    setCurrent(index);
    Q_EMIT chosen(index);
}

void SegmentedControl::setHovered(int index)
{
    if (index == m_hovered)
        return;
    m_hovered = index;
    update();
}

bool SegmentedControl::event(QEvent* event)
{
    switch (event->type()) {
    case QEvent::HoverEnter:
    case QEvent::HoverMove:
        setHovered(segmentAt(static_cast<QHoverEvent*>(event)->position().toPoint()));
        break;
    case QEvent::HoverLeave:
        setHovered(-1);
        break;
    case QEvent::ToolTip: {
        const auto* help = static_cast<QHelpEvent*>(event);
        const int index = segmentAt(help->pos());
        // If the disabled control has a tooltip of its own, which says why it is disabled, that one
        // is shown instead.
        if (index >= 0 && (isEnabled() || toolTip().isEmpty())) {
            QToolTip::showText(help->globalPos(), choiceToolTip(index), this, segmentRect(index));
        } else {
            break;
        }
        return true;
    }
    default:
        break;
    }
    return QWidget::event(event);
}

void SegmentedControl::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), Radius::button,
                isEnabled() ? theme.control : mixed(theme.panel, theme.control, 0.65));
    for (int i = 0; i < m_segments.size(); ++i) {
        const Segment& segment = m_segments[i];
        const QRectF box = segmentRect(i);
        const bool chosen = i == m_current;
        const bool isUsable = isEnabled() && canBeChosen(i);
        if (chosen) {
            if (theme.seg == Qt::white)    // a white segment on a light track needs a shadow
                fillRounded(painter, box.translated(0, 0.5).adjusted(-0.5, 0, 0.5, 0.5), 7.5,
                            theme.line2);
            fillRounded(painter, box, 7, theme.seg);
            fillRounded(painter,
                        QRectF(box.left() + segmentLineInset, box.bottom() - segmentLine,
                               box.width() - 2 * segmentLineInset, segmentLine),
                        1, isUsable ? theme.accentText : theme.dis);
        } else if (i == m_hovered && isUsable) {
            fillRounded(painter, box, 7, theme.hover);
        }
        QColor ink = chosen || i == m_hovered ? theme.text : theme.text2;
        if (!isUsable)
            ink = theme.dis;
        double left = box.left() + segmentPadding();
        if (m_stretched)
            left += std::max(0.0, (box.width() - widthOf(segment)) / 2);
        if (isIconAlone(segment)) {
            paintIcon(painter, segment.icon, box, aloneIconSide, ink);
            continue;
        }
        if (segment.icon != Icon::none) {
            left -= iconAir;    // the icon itself has an empty margin
            paintIcon(painter, segment.icon, QRectF(left, box.top(), iconSide(), box.height()),
                      iconSide(), ink);
            left += iconSide() + iconGap();
        }
        paintText(painter, QRectF(left, box.top(), box.right() - left, box.height()), Qt::AlignLeft,
                  Type::bodyMedium, ink, segment.text, Qt::ElideNone);
        if (!segment.credits)
            continue;
        left += std::ceil(textWidth(Type::bodyMedium, segment.text)) + creditsGap;
        const QColor creditsInk = isUsable ? theme.text2 : theme.dis;
        paintIcon(painter, Icon::coin, QRectF(left, box.top(), creditsCoin, box.height()),
                  creditsCoin, creditsInk);
        left += creditsCoin + creditsCoinGap;
        paintText(painter, QRectF(left, box.top(), box.right() - left, box.height()), Qt::AlignLeft,
                  Type::small, creditsInk, QString::number(*segment.credits), Qt::ElideNone);
    }
}

void SegmentedControl::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        choose(segmentAt(event->position().toPoint()));
}

void SegmentedControl::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
        return choose(m_current - 1);
    case Qt::Key_Right:
    case Qt::Key_Down:
        return choose(m_current + 1);
    case Qt::Key_Home:
        return choose(0);
    case Qt::Key_End:
        return choose(int(m_segments.size()) - 1);
    default:
        QWidget::keyPressEvent(event);
    }
}

void SegmentedControl::focusInEvent(QFocusEvent* event)
{
    KeyboardFocus::entered(this, event);
}

void SegmentedControl::focusOutEvent(QFocusEvent*)
{
    KeyboardFocus::left(this);
}
