#include "app/stage/ViewBar.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/fields/SegmentedControl.h"
#include "app/controls/fields/ToggleButton.h"
#include "app/controls/fields/ZoomSlider.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int viewBarHeight = 52, compactViewBarHeight = 44, viewBarSide = 12, buttonSide = 32,
              numberGap = 8;
constexpr int modesGap = 14, sliderGap = 8, percentGap = 6, groupGap = 16;
constexpr int smallestPercent = 100, largestPercent = 300, percentStep = 10;

QList<Segment> modeSegments()
{
    QList<Segment> segments;
    for (const auto& [mode, icon] : {std::pair(ImageFitMode::fill, Icon::fitFill),
                                     std::pair(ImageFitMode::fit, Icon::fitInside)}) {
        const QString name = rawValue(mode);
        segments.append({.icon = icon, .text = name, .toolTip = {}, .name = name});
    }
    return segments;
}

}    // namespace

ViewBar::ViewBar(QWidget* parent)
    : QWidget(parent),
      m_previous(new IconButton(Icon::previous, u"Imagen anterior"_qs, buttonSide, this)),
      m_next(new IconButton(Icon::next, u"Imagen siguiente"_qs, buttonSide, this)),
      m_modes(new SegmentedControl(modeSegments(), this)),
      m_zoomOut(new IconButton(Icon::zoomOut, u"Alejar"_qs, buttonSide, this)),
      m_zoom(new ZoomSlider(smallestPercent, largestPercent, this)),
      m_zoomIn(new IconButton(Icon::zoomIn, u"Acercar"_qs, buttonSide, this)),
      m_centre(new IconButton(Icon::centerPhoto, u"Centrar foto"_qs, buttonSide, this)),
      m_safeZone(new ToggleButton(Icon::safeZone, u"Zona segura"_qs, this))
{
    setAccessibleRole(this, QAccessible::ToolBar);
    setFixedHeight(viewBarHeight);
    m_modes->setSize(SegmentSize::field);
    m_zoom->setAccessibleName(u"Zoom de la foto"_qs);
    connect(m_previous, &IconButton::clicked, this, &ViewBar::previousRequested);
    connect(m_next, &IconButton::clicked, this, &ViewBar::nextRequested);
    connect(m_modes, &SegmentedControl::chosen, this,
            [this](int index) { Q_EMIT fitModeChosen(ImageFitMode(index)); });
    connect(m_zoomOut, &IconButton::clicked, this,
            [this] { requestZoom(m_percent - percentStep); });
    connect(m_zoomIn, &IconButton::clicked, this, [this] { requestZoom(m_percent + percentStep); });
    connect(m_zoom, &ZoomSlider::moved, this,
            [this](int percent, bool held) { Q_EMIT zoomRequested(percent / 100.0, held); });
    connect(m_centre, &IconButton::clicked, this, &ViewBar::centreRequested);
    connect(m_safeZone, &ToggleButton::clicked, this, &ViewBar::safeZoneToggled);
    setPosition(0, 0);
}

void ViewBar::setPosition(int current, int count)
{
    if (current == m_current && count == m_count && m_hasPosition)
        return;
    m_hasPosition = true;
    m_current = current;
    m_count = count;
    setAccessibleName(count > 0 ? u"Imagen %1 de %2"_qs.arg(current + 1).arg(count) : QString());
    enable();
    place();
    update();
}

void ViewBar::setPlacement(const ImagePlacement& placement)
{
    // `enlarged` is false for NaN, too.
    const bool enlarged = placement.zoom * 100 > smallestPercent;
    const int percent =
        enlarged ? int(std::lround(std::min(placement.zoom * 100, double(largestPercent))))
                 : smallestPercent;
    m_modes->setCurrent(int(placement.mode));
    if (percent == m_percent)
        return;
    m_percent = percent;
    m_zoom->setShownValue(m_percent);
    enable();
    update();
}

void ViewBar::setFormat(SocialFormat format)
{
    if (format == m_format)
        return;
    m_format = format;
    enable();
}

void ViewBar::setSafeZone(bool shown)
{
    m_safeZone->setChecked(shown);
}

void ViewBar::endEdits()
{
    m_zoom->endGesture();
}

void ViewBar::setLabels(Labels labels)
{
    m_labels = labels;
    place();
}

void ViewBar::setClass(WindowClass windowClass)
{
    m_class = windowClass;
    const bool isCompact = windowClass == WindowClass::compact;
    setFixedHeight(isCompact ? compactViewBarHeight : viewBarHeight);
    m_modes->setLabels(isCompact ? Labels::hidden : Labels::shown);
    place();
}

void ViewBar::enable()
{
    const bool any = m_count > 0;
    m_previous->setEnabled(any && m_current > 0);
    m_next->setEnabled(any && m_current < m_count - 1);
    m_modes->setEnabled(any);
    m_zoomOut->setEnabled(any && m_percent > smallestPercent);
    m_zoom->setEnabled(any);
    m_zoomIn->setEnabled(any && m_percent < largestPercent);
    m_centre->setEnabled(any);
    const bool story = m_format == SocialFormat::storyReel;
    m_safeZone->setReason(story ? QString() : u"Solo en Story / Reel"_qs);
    m_safeZone->setEnabled(any && story);
}

void ViewBar::requestZoom(int percent)
{
    Q_EMIT zoomRequested(std::clamp(percent, smallestPercent, largestPercent) / 100.0, false);
}

QList<QWidget*> ViewBar::focusOrder() const
{
    return {m_previous, m_next, m_modes, m_zoomOut, m_zoom, m_zoomIn, m_centre, m_safeZone};
}

double ViewBar::numberWidth() const
{
    return digitsWidth(Type::heading, int(QString::number(m_count).size()));
}

void ViewBar::resizeEvent(QResizeEvent*)
{
    place();
}

void ViewBar::place()
{
    const auto top = [this](int part) { return (height() - part) / 2 + 1; };
    m_previous->move(viewBarSide, top(buttonSide));
    const double label = numberWidth() + textWidth(Type::body, u" de "_qs) +
                         digitsWidth(Type::body, int(QString::number(m_count).size()));
    m_next->move(viewBarSide + buttonSide + 2 * numberGap + qCeil(label), top(buttonSide));

    const int percent = digitsWidth(Type::body, 3) + qCeil(textWidth(Type::body, u" %"_qs));
    const QSize slider = m_zoom->sizeHint(), modes = m_modes->sizeHint();
    const int plain = modes.width() + modesGap + 3 * buttonSide;
    const int withNumber = plain + percent + 2 * percentGap;
    const int whole = withNumber + slider.width() + 2 * sliderGap;
    const int left = m_next->geometry().right() + 1 + groupGap;
    const auto roomBeside = [&](Labels labels) {
        m_safeZone->setLabels(labels);
        return width() - viewBarSide - m_safeZone->sizeHint().width() - groupGap - left;
    };
    int room = roomBeside(m_class == WindowClass::compact ? Labels::hidden : m_labels);
    if (whole > room)
        room = roomBeside(Labels::hidden);
    m_safeZone->resize(m_safeZone->sizeHint());
    m_safeZone->move(width() - viewBarSide - m_safeZone->width(), top(m_safeZone->height()));

    // Centres the photo's controls while there is enough space. If they do not fit even without the
    // safe zone's label, the slider is hidden, then the percentage too.
    const bool showsSlider = whole <= room, showsNumber = withNumber <= room;
    const int needed = showsSlider ? whole : showsNumber ? withNumber : plain;

    int x = std::max(left, std::min((width() - needed) / 2, left + room - needed));
    const auto put = [&](QWidget* widget, QSize size, int gap) {
        widget->setGeometry(x, top(size.height()), size.width(), size.height());
        x += size.width() + gap;
    };
    const QSize button(buttonSide, buttonSide);
    put(m_modes, modes, modesGap);
    put(m_zoomOut, button, showsSlider ? sliderGap : 0);
    m_zoom->setVisible(showsSlider);
    if (showsSlider)
        put(m_zoom, slider, sliderGap);
    put(m_zoomIn, button, showsNumber ? percentGap : 0);
    m_percentBox = showsNumber ? QRect(x, 1, percent, height() - 1) : QRect();
    if (showsNumber)
        x += percent + percentGap;
    put(m_centre, button, 0);
    update();
}

void ViewBar::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), theme.panel);
    painter.fillRect(0, 0, width(), 1, theme.line);
    if (m_count == 0)
        return;
    const QRectF number(viewBarSide + buttonSide + numberGap, 1, numberWidth(), height() - 1);
    paintText(painter, number, Qt::AlignRight, Type::heading, theme.text,
              QString::number(m_current + 1), Qt::ElideNone);
    paintText(painter, QRectF(number.right(), 1, 200, height() - 1), Qt::AlignLeft, Type::body,
              theme.text2, u" de %1"_qs.arg(m_count), Qt::ElideNone);
    if (!m_percentBox.isEmpty())
        paintText(painter, m_percentBox, Qt::AlignRight, Type::body, theme.text,
                  u"%1 %"_qs.arg(m_percent), Qt::ElideNone);
}
