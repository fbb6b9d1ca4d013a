#include "app/controls/popovers/ColorPopover.h"

#include "app/controls/Button.h"
#include "app/controls/fields/LineField.h"
#include "app/controls/popovers/ColorPlane.h"
#include "model/CodableColor.h"

#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace {

constexpr int colorPopoverContentWidth = 224, shadeHeight = 140, hueHeight = 14,
              colorPopoverGap = 12, hexHeight = 32;
constexpr int offersInRow = 6, offerSide = 30, headingHeight = 18;

// A button that shows an offered colour.
class ColorChip : public Control {
public:
    ColorChip(const QColor& color, QWidget* parent) : Control(parent), m_color(color)
    {
        setAccessibleName(CodableColor(color).hexRGB());
        setToolTip(accessibleName());
        setFixedSize(offerSide, offerSide);
        setProperty("focusRadius", Radius::field);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        fillRounded(painter, rect(), Radius::field, m_color);
        const Theme& theme = themeOf(this);
        strokeRounded(painter, rect(), Radius::field, mixed(theme.line2, theme.text, hovered()));
    }

private:
    QColor m_color;
};

}    // namespace

ColorPopover::ColorPopover(QWidget* owner, const QColor& color, const ColorOffers& offers)
    : Popover(owner),
      m_shade(new ColorPlane(ColorPlaneKind::shade, u"Saturación y brillo"_s, this)),
      m_hueBar(new ColorPlane(ColorPlaneKind::hue, u"Tono"_s, this)),
      m_hex(new LineField(u"Color hexadecimal"_s, {}, Icon::none, this))
{
    setAccessibleName(owner->accessibleName());
    m_height = shadeHeight + colorPopoverGap + hueHeight + colorPopoverGap + hexHeight;
    m_hex->setMaxLength(7);
    connect(m_shade, &ColorPlane::moved, this, [this](QPointF mark, Pace pace) {
        m_saturation = mark.x();
        m_value = 1 - mark.y();
        tell(pace);
    });
    connect(m_hueBar, &ColorPlane::moved, this, [this](QPointF mark, Pace pace) {
        m_hue = mark.x();
        tell(pace);
    });
    connect(m_hex, &LineField::edited, this, [this](const QString& text) {
        if (const auto typed = CodableColor::fromHexRGB(text.trimmed()))
            choose(typed->color());
        else
            showColor();
    });
    connect(this, &Popover::closing, this, [this] {
        if (m_changed)
            Q_EMIT colorUsed(this->color());
    });
    setColor(color);
    addOffers(u"De la foto"_s, offers.photo);
    addOffers(u"Usados hace poco"_s, offers.recent);
}

void ColorPopover::open(Qt::FocusReason reason)
{
    Popover::open({colorPopoverContentWidth, m_height});
    const QPoint origin = content().topLeft();
    for (QObject* child : children()) {
        if (auto* chip = dynamic_cast<ColorChip*>(child))
            chip->move(chip->pos() + origin);
    }
    m_shade->setGeometry(QRect(origin, QSize(colorPopoverContentWidth, shadeHeight)));
    m_hueBar->setGeometry(QRect(origin + QPoint(0, shadeHeight + colorPopoverGap),
                                QSize(colorPopoverContentWidth, hueHeight)));
    const int hexTop = shadeHeight + colorPopoverGap + hueHeight + colorPopoverGap;
    m_hex->setGeometry(QRect(origin + QPoint(hexHeight + 8, hexTop),
                             QSize(colorPopoverContentWidth - hexHeight - 8, 32)));
    if (reason != Qt::MouseFocusReason)
        takeFocus(m_shade, reason);
}

// In the hexadecimal field, Enter accepts the text and the field keeps the focus. Esc drops the
// text, and Popover::eventFilter() then closes the popover.
bool ColorPopover::eventFilter(QObject* object, QEvent* event)
{
    if (object == m_hex && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape)
            m_hex->setText(CodableColor(color()).hexRGB());    // drops the typed text
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            m_hex->clearFocus();
            m_hex->setFocus(Qt::OtherFocusReason);
            m_hex->selectAll();
            return true;
        }
    }
    return Popover::eventFilter(object, event);
}

void ColorPopover::addOffers(const QString& title, const QList<QColor>& colors)
{
    if (colors.isEmpty())
        return;
    m_height += colorPopoverGap;
    m_headings.append({title, m_height});
    m_height += headingHeight + 4;
    const int step = (colorPopoverContentWidth - offerSide) / (offersInRow - 1);
    for (int i = 0; i < std::min<int>(offersInRow, int(colors.size())); ++i) {
        auto* chip = new ColorChip(colors[i], this);
        chip->move(i * step, m_height);
        connect(chip, &ColorChip::clicked, this, [this, color = colors[i]] { choose(color); });
    }
    m_height += offerSide;
}

QColor ColorPopover::color() const
{
    return QColor::fromHsvF(float(m_hue < 1 ? m_hue : 0), float(m_saturation), float(m_value))
        .toRgb();
}

void ColorPopover::setColor(const QColor& color)
{
    if (color.rgb() == this->color().rgb() && !m_hex->text().isEmpty())
        return;    // the same colour: keeps the hue and saturation that black or a grey do not tell
    float hue = 0, saturation = 0, value = 0;
    color.getHsvF(&hue, &saturation, &value);
    if (hue >= 0)
        m_hue = hue;
    m_saturation = saturation;
    m_value = value;
    showColor();
}

void ColorPopover::choose(const QColor& color)
{
    setColor(color);
    tell(Pace::once);
}

void ColorPopover::showColor()
{
    m_shade->setHue(m_hue);
    m_shade->setMark({m_saturation, 1 - m_value});
    m_hueBar->setMark({m_hue, 0.5});
    m_hex->setShown(CodableColor(color()).hexRGB());
    update();
}

void ColorPopover::tell(Pace pace)
{
    m_changed = true;
    showColor();
    Q_EMIT colorChanged(color(), pace);
}

void ColorPopover::paintEvent(QPaintEvent* event)
{
    Popover::paintEvent(event);
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPoint origin = content().topLeft();
    const QRectF now(origin +
                         QPoint(0, shadeHeight + colorPopoverGap + hueHeight + colorPopoverGap),
                     QSizeF(hexHeight, hexHeight));
    fillRounded(painter, now, Radius::field, color());
    strokeRounded(painter, now, Radius::field, theme.line2);
    for (const Heading& heading : m_headings)
        paintText(
            painter,
            QRectF(origin.x(), origin.y() + heading.top, colorPopoverContentWidth, headingHeight),
            Qt::AlignLeft, Type::smallMedium, theme.text2, heading.text);
}
