#include "app/controls/fields/SliderField.h"

#include "app/controls/fields/LineField.h"
#include "app/theme/KeyboardFocus.h"
#include "app/theme/Painting.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QKeyEvent>
#include <QPainterPath>
#include <QRegularExpression>
#include <QStyleHints>

using namespace Qt::StringLiterals;

namespace {

constexpr int sliderHeight = 3, limitHeight = 9, dragStart = 3;
constexpr double sliderPadding = 10, leastPadding = 6, labelGap = 3;
constexpr double fineSpeed = 0.1;

struct UnitRow {
    SliderUnit unit;
    double factor;         // the number shown is the value times this
    int decimals;          // at most this many are shown
    double step, grain;    // `step` of an arrow key, `grain` of a drag
    QStringView suffix;
};
constexpr std::array units{
    UnitRow{SliderUnit::plain, 1, 1, 1, 1, u""},
    UnitRow{SliderUnit::percent, 100, 0, 0.01, 0.01, u" %"},
    UnitRow{SliderUnit::multiplier, 1, 2, 0.05, 0.01, u"×"},
    UnitRow{SliderUnit::degrees, 1, 0, 1, 1, u"°"},
    UnitRow{SliderUnit::pixels, 1, 0, 1, 1, u""},
};
constexpr const UnitRow& row(SliderUnit unit)
{
    return units[std::size_t(unit)];
}
static_assert(std::ranges::all_of(units, [](const auto& r) { return &row(r.unit) == &r; }));

// Clamps a value to its range; NaN becomes the lower bound.
double bounded(double value, SliderRange range)
{
    return value > range.from ? std::min(value, range.to) : range.from;
}

class SliderAccessible : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit SliderAccessible(SliderField* slider) : QAccessibleWidget(slider, QAccessible::Slider)
    {
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ValueInterface ? static_cast<QAccessibleValueInterface*>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Value)
            return slider()->valueText();
        const QString text = QAccessibleWidget::text(kind);
        if (kind != QAccessible::Description || slider()->isBlank())
            return text;
        // The accessibility bus passes the value on without its unit.
        QStringList parts{spokenValue(), text};
        if (text == slider()->accessibleName())    // of the tooltip
            parts.removeLast();
        parts.removeAll(QString());
        return parts.join(u". "_s);
    }
    // The numbers are those that the user sees.
    QVariant currentValue() const override
    {
        return slider()->isBlank() ? QVariant() : QVariant(slider()->value() * factor());
    }
    void setCurrentValue(const QVariant& value) override
    {
        slider()->enter(value.toDouble() / factor());
    }
    QVariant maximumValue() const override { return slider()->range().to * factor(); }
    QVariant minimumValue() const override { return slider()->range().from * factor(); }
    QVariant minimumStepSize() const override { return slider()->step() * factor(); }

private:
    double factor() const { return row(slider()->range().unit).factor; }
    QString spokenValue() const
    {
        const bool arePixels = slider()->range().unit == SliderUnit::pixels;
        return slider()->valueText() + (arePixels ? u" píxeles"_s : QString());
    }
    SliderField* slider() const { return static_cast<SliderField*>(object()); }
};

QAccessibleInterface* accessibleSliderOf(const QString&, QObject* object)
{
    auto* slider = qobject_cast<SliderField*>(object);
    return slider ? new SliderAccessible(slider) : nullptr;
}

}    // namespace

SliderField::SliderField(const QString& label, SliderRange range, QWidget* parent)
    : QWidget(parent), m_label(label), m_range(range), m_value(range.from),
      m_edit(new LineField(label, {}, Icon::none, this))
{
    QAccessible::installFactory(accessibleSliderOf);
    setAccessibleName(label);
    setFixedHeight(32);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setCursor(Qt::SizeHorCursor);
    setProperty("focusRadius", Radius::field);
    m_edit->setFocusPolicy(Qt::ClickFocus);    // Tab stops at the SliderField instead
    m_edit->setAlignment(Qt::AlignRight);
    m_edit->setMaxLength(12);
    m_edit->installEventFilter(this);
    m_edit->hide();
    connect(m_edit, &LineField::edited, this, [this](const QString& text) {
        if (const auto value = read(text))
            enter(*value);
    });
}

void SliderField::setValue(double value)
{
    const double shown = bounded(value, m_range);
    if (shown == m_value)
        return;
    m_value = shown;
    update();
    if (QAccessible::isActive()) {
        QAccessibleValueChangeEvent event(this, shown * row(m_range.unit).factor);
        QAccessible::updateAccessibility(&event);
        QAccessibleEvent words(this, QAccessible::DescriptionChanged);
        QAccessible::updateAccessibility(&words);
    }
}

void SliderField::setValue(double value, double from, double to)
{
    m_range.from = from;
    m_range.to = to;
    setValue(value);
}

void SliderField::setDefault(double value)
{
    m_default = bounded(value, m_range);
}

void SliderField::setBlank(bool blank)
{
    m_blank = blank;
    update();
}

void SliderField::setLimit(std::optional<double> limit)
{
    if (limit == m_limit)
        return;
    m_limit = limit;
    update();
}

double SliderField::share(double value) const
{
    return (bounded(value, m_range) - m_range.from) / (m_range.to - m_range.from);
}

QString SliderField::valueText() const
{
    if (m_blank)
        return {};
    const UnitRow& unit = row(m_range.unit);
    QString number = QString::number(m_value * unit.factor, 'f', unit.decimals);
    if (m_range.unit == SliderUnit::plain && number.endsWith(".0"_L1))
        number.chop(2);
    return number.replace(u'.', u',').append(unit.suffix);
}

double SliderField::step() const
{
    return row(m_range.unit).step;
}

std::optional<double> SliderField::read(const QString& text) const
{
    static const QRegularExpression pattern(u"[-−]?(\\d+([.,]\\d*)?|[.,]\\d+)"_s);
    const auto match = pattern.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    QString number = match.captured();
    number.replace(u',', u'.').replace(u'−', u'-');
    return number.toDouble() / row(m_range.unit).factor;
}

double SliderField::snapped(double value) const
{
    const double perUnit = std::round(1 / row(m_range.unit).grain);
    return bounded(std::round(value * perUnit) / perUnit, m_range);
}

void SliderField::enter(double value)
{
    const double before = m_value;
    setValue(value);
    if (m_value != before)
        Q_EMIT valueChanged(m_value, Pace::once);
}

void SliderField::hold(double value)
{
    m_holding = true;
    const double before = m_value;
    setValue(value);
    if (m_value != before)
        Q_EMIT valueChanged(m_value, Pace::held);
}

void SliderField::finishGesture()
{
    m_press = Press::none;
    if (!m_holding)
        return;
    m_holding = false;
    update();
    Q_EMIT valueChanged(m_value, Pace::once);
}

void SliderField::restoreDefault()
{
    if (m_default)
        enter(*m_default);
}

void SliderField::openEdit(Qt::FocusReason reason)
{
    m_openedByKey = reason == Qt::TabFocusReason;
    m_edit->setShown(valueText());
    m_edit->show();
    m_edit->setFocus(reason);
    m_edit->selectAll();
    m_opened.start();
}

void SliderField::closeEdit()
{
    if (m_edit->isHidden())
        return;
    m_edit->hide();
    if (m_openedByKey && !window()->focusWidget())
        setFocus(Qt::TabFocusReason);
}

bool SliderField::eventFilter(QObject* object, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonDblClick:
        // The first click of a double click has opened the edit, which therefore gets the second.
        if (m_default &&
            m_opened.elapsed() < QGuiApplication::styleHints()->mouseDoubleClickInterval()) {
            m_edit->setText(valueText());
            m_edit->clearFocus();
            restoreDefault();
            return true;
        }
        break;
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Tab || key == Qt::Key_Backtab) {
            setFocus(Qt::OtherFocusReason);
            focusNextPrevChild(key == Qt::Key_Tab);
            return true;
        }
        break;
    }
    case QEvent::FocusOut:
        // Closes the edit only from the event loop: LineField emits edited() after this event
        // filter.
        QMetaObject::invokeMethod(this, &SliderField::closeEdit, Qt::QueuedConnection);
        break;
    default:
        break;
    }
    return QWidget::eventFilter(object, event);
}

void SliderField::resizeEvent(QResizeEvent*)
{
    m_edit->setGeometry(rect());
}

void SliderField::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor ground = theme.control;
    if (!isEnabled())
        ground = mixed(theme.panel, theme.control, 0.65);
    else if (underMouse() || m_press == Press::drag)
        ground = mixed(theme.control, theme.hover, 0.6);
    fillRounded(painter, rect(), Radius::field, ground);

    QPainterPath outline;
    outline.addRoundedRect(rect(), Radius::field, Radius::field);
    const auto fillBar = [&](double width, const QColor& color) {
        QPainterPath bar;
        bar.addRect(0, height() - sliderHeight, width, sliderHeight);
        painter.fillPath(outline.intersected(bar), color);
    };
    const bool lively = hasFocus() || m_press == Press::drag;
    const QColor ink = !isEnabled() ? theme.dis : lively ? theme.accentLine : theme.text3;
    const double reached = m_blank ? 0 : share(m_value);
    const bool hasBar = m_range.unit != SliderUnit::pixels;
    if (hasBar)
        fillBar(width(), isEnabled() ? theme.fill : mixed(theme.panel, theme.fill, 0.5));
    if (hasBar && reached > 0)
        fillBar(std::max(2.0, reached * width()), m_limit ? mixed(theme.fill, ink, 0.4) : ink);
    if (m_limit) {
        const double end = std::clamp(share(*m_limit) * width(), 4.0, width() - 4.0);
        fillBar(end, ink);
        fillRounded(painter, QRectF(end - 1, height() - limitHeight, 2, limitHeight), 1,
                    theme.warn);
    }

    const QString value = valueText();
    const double valueWidth = textWidth(Type::bodyMedium, value);
    // "Opacidad 100 %" does not fit in the narrowest panel with the full padding: shrinks the
    // padding so that the label is not elided.
    const double spare = width() - textWidth(Type::body, m_label) - labelGap - valueWidth;
    const double side = std::clamp(spare / 2, leastPadding, sliderPadding);
    const QRectF line(side, 0, width() - 2 * side, height() - 1);
    paintText(painter, line, Qt::AlignRight, Type::bodyMedium, isEnabled() ? theme.text : theme.dis,
              value, Qt::ElideNone);
    paintText(painter, line.adjusted(0, 0, -valueWidth - labelGap, 0), Qt::AlignLeft, Type::body,
              isEnabled() ? theme.text2 : theme.dis, m_label);
}

void SliderField::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_press = Press::click;
    m_pressX = event->position().x();
}

void SliderField::mouseMoveEvent(QMouseEvent* event)
{
    if (m_press == Press::none)
        return;
    const double x = event->position().x();
    if (m_press == Press::click) {
        if (std::abs(x - m_pressX) < dragStart)
            return;
        m_press = Press::drag;
        m_dragged = m_value;
        m_pressX = x;    // measures from here, so that the value does not jump by dragStart
        m_holding = true;
        update();
        return;
    }
    const double speed = event->modifiers() & Qt::ShiftModifier ? fineSpeed : 1;
    const double perPixel =
        m_range.unit == SliderUnit::pixels ? 1 : (m_range.to - m_range.from) / std::max(1, width());
    m_dragged = bounded(m_dragged + (x - m_pressX) * perPixel * speed, m_range);
    m_pressX = x;
    hold(snapped(m_dragged));
}

void SliderField::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const bool clicked = m_press == Press::click;
    finishGesture();
    if (clicked)
        openEdit(Qt::MouseFocusReason);
}

void SliderField::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        restoreDefault();
}

void SliderField::keyPressEvent(QKeyEvent* event)
{
    const double steps = event->modifiers() & Qt::ShiftModifier ? 10 : 1;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        return hold(snapped(m_value - steps * step()));
    case Qt::Key_Right:
    case Qt::Key_Up:
        return hold(snapped(m_value + steps * step()));
    case Qt::Key_Home:
        return hold(m_range.from);
    case Qt::Key_End:
        return hold(m_range.to);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return openEdit(Qt::TabFocusReason);
    default:
        QWidget::keyPressEvent(event);
    }
}

void SliderField::keyReleaseEvent(QKeyEvent* event)
{
    if (event->isAutoRepeat() || !m_holding || m_press == Press::drag)
        return QWidget::keyReleaseEvent(event);
    finishGesture();
}

void SliderField::focusInEvent(QFocusEvent* event)
{
    KeyboardFocus::entered(this, event);
    update();
}

void SliderField::focusOutEvent(QFocusEvent*)
{
    KeyboardFocus::left(this);
    if (m_press != Press::drag)
        finishGesture();
    update();
}

// Ends a drag or a held key when the field is disabled, as hideEvent() does when it is hidden:
// valueChanged() with Pace::once completes the undo step.
void SliderField::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::EnabledChange) {
        if (!isEnabled())
            finishGesture();
        setCursor(isEnabled() ? Qt::SizeHorCursor : Qt::ArrowCursor);
        update();
    }
    QWidget::changeEvent(event);
}

void SliderField::hideEvent(QHideEvent*)
{
    finishGesture();
}
