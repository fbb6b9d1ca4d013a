#include "tools/ContrastCheck.h"

#include "app/controls/fields/SegmentedControl.h"
#include "app/controls/fields/TabStrip.h"
#include "app/controls/popovers/Sheet.h"
#include "app/theme/Theme.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPointer>
#include <QSignalBlocker>

#include <cmath>

namespace {

constexpr int leastGround = 220;    // pixels of one colour side by side that are a ground
constexpr int letterGap = 4;        // pixels between the letters of a text
constexpr int leastInk = 8, leastHeight = 5,
              leastWidth = 4;                   // anything smaller is a point or a line
constexpr double hairline = 1.2;                // pixels, with the smoothed corners
constexpr int largeType = 18, iconSide = 12;    // pixels
constexpr double textRatio = 4.5, iconRatio = 3;
constexpr int ringReach = 16;    // pixels from a control to its ring or the outline of its card
constexpr int leastRing = 24, leastMark = 10;    // pixels of a ring or a mark that must be seen

double luminance(QRgb color)
{
    const auto linear = [](int channel) {
        const double share = channel / 255.0;
        return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(color)) + 0.7152 * linear(qGreen(color)) +
           0.0722 * linear(qBlue(color));
}

double contrast(double a, double b)
{
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

double contrast(QRgb a, QRgb b)
{
    return contrast(luminance(a), luminance(b));
}

// The contrast that at least `count` of the pixels have; 1 if there are fewer.
double reached(QList<double>& ratios, int count)
{
    if (ratios.size() < count)
        return 1;
    std::ranges::nth_element(ratios, ratios.begin() + count - 1, std::greater());
    return ratios[count - 1];
}

bool isCovered(const QWidget& window, const QWidget& control)
{
    const QRect box = control.rect().adjusted(1, 1, -1, -1);
    return std::ranges::any_of(std::array{box.center(), box.topLeft(), box.topRight(),
                                          box.bottomLeft(), box.bottomRight()},
                               [&](QPoint at) {
                                   const QWidget* top = window.childAt(control.mapTo(&window, at));
                                   return top != &control && !control.isAncestorOf(top);
                               });
}

// The window's controls that can be used and are seen whole.
QList<QPointer<QWidget>> usable(const QWidget& window)
{
    const QWidget* reachable = &window;
    for (const auto* sheet : window.findChildren<Sheet*>()) {
        if (sheet->isVisible())
            reachable = sheet;
    }
    QList<QPointer<QWidget>> controls;
    for (QWidget* widget : reachable->findChildren<QWidget*>())
        controls.append(widget);
    controls.removeIf([&window](const QWidget* widget) {
        const bool isOnPhoto = widget->parentWidget()->inherits("PostPreview");
        return isOnPhoto || !widget->isVisible() || !widget->isEnabled() || widget->focusProxy() ||
               widget->visibleRegion().boundingRect() != widget->rect() ||
               !(widget->focusPolicy() & Qt::TabFocus) || isCovered(window, *widget);
    });
    return controls;
}

QImage drawn(QWidget& window, const QRect& at)
{
    return window.grab(at).toImage().convertToFormat(QImage::Format_RGB32);
}

// Compares the pixels that have the colour of the ring with what was there without it.
double ringContrast(QWidget& window, QWidget& control)
{
    const QRect at = QRect(control.mapTo(&window, QPoint()), control.size())
                         .adjusted(-ringReach, -ringReach, ringReach, ringReach);
    if (QWidget* focused = window.focusWidget())
        focused->clearFocus();
    QApplication::processEvents();
    const QImage before = drawn(window, at);
    control.setFocus(Qt::TabFocusReason);
    QApplication::processEvents();
    const QImage after = drawn(window, at);
    const QRgb ring = themeOf(&window).accentLine.rgb();
    QList<double> ratios;
    for (int y = 0; y < after.height(); ++y) {
        for (int x = 0; x < after.width(); ++x) {
            if (after.pixel(x, y) == ring && before.pixel(x, y) != ring)
                ratios.append(contrast(ring, before.pixel(x, y)));
        }
    }
    return reached(ratios, leastRing);
}

// Compares two states of a control with each other, and the mark of each with what is beside it.
double stateContrast(const QImage& one, const QImage& other)
{
    QList<double> changes;
    QRect changed;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            if (one.pixel(x, y) == other.pixel(x, y))
                continue;
            changes.append(contrast(one.pixel(x, y), other.pixel(x, y)));
            changed |= QRect(x, y, 1, 1);
        }
    }
    double least = reached(changes, leastMark);
    constexpr int beside = 2;    // skips the smoothed edge
    changed.adjust(-beside, -beside, 0, 0);
    for (const QImage* picture : {&one, &other}) {
        QList<double> edges;
        const QRect inside = changed & picture->rect().adjusted(0, 0, -beside, -beside);
        for (int y = inside.top(); y <= inside.bottom(); ++y) {
            for (int x = inside.left(); x <= inside.right(); ++x) {
                const QRgb pixel = picture->pixel(x, y);
                edges.append(std::max(contrast(pixel, picture->pixel(x + beside, y)),
                                      contrast(pixel, picture->pixel(x, y + beside))));
            }
        }
        least = std::min(least, reached(edges, leastMark));
    }
    return least;
}

// A check box, switch or choice, checked and unchecked.
double buttonContrast(QWidget& window, QAbstractButton& button)
{
    const QSignalBlocker quiet(button);
    const QRect at(button.mapTo(&window, QPoint()), button.size());
    const bool wasExclusive = button.autoExclusive(), wasChecked = button.isChecked();
    button.setAutoExclusive(false);
    const QImage before = drawn(window, at);
    button.setChecked(!wasChecked);
    const QImage after = drawn(window, at);
    button.setChecked(wasChecked);
    button.setAutoExclusive(wasExclusive);
    return stateContrast(before, after);
}

// The chosen one of several choices, and the same when another is chosen.
template <typename Control>
double choiceContrast(QWidget& window, Control& control)
{
    const int chosen = control.current();
    const QRect at(control.mapTo(&window, control.choiceRect(chosen).topLeft()),
                   control.choiceRect(chosen).size());
    const QImage before = drawn(window, at);
    control.setCurrent(chosen == 0 ? 1 : 0);
    const QImage after = drawn(window, at);
    control.setCurrent(chosen);
    return stateContrast(before, after);
}

// The picture with each pixel's ground: the index of a flat area of one colour, or -1 for ink.
class Grounds {
public:
    explicit Grounds(const QImage& picture)
        : m_picture(picture), m_of(std::size_t(picture.width()) * picture.height(), unknown)
    {
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if (of({x, y}) == unknown)
                    fill({x, y});
            }
        }
    }
    static constexpr int ink = -1, unknown = -2;
    int& of(QPoint at) { return m_of[std::size_t(at.y()) * m_picture.width() + at.x()]; }
    bool holds(QPoint at) const { return m_picture.rect().contains(at); }
    QRgb color(int ground) const { return m_colors[ground]; }

private:
    void fill(QPoint start)
    {
        const QRgb color = m_picture.pixel(start);
        const int ground = int(m_colors.size());
        QList<QPoint> area{start};
        of(start) = ground;
        for (qsizetype i = 0; i < area.size(); ++i) {
            for (const QPoint step : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
                const QPoint next = area[i] + step;
                if (holds(next) && of(next) == unknown && m_picture.pixel(next) == color) {
                    of(next) = ground;
                    area.append(next);
                }
            }
        }
        if (area.size() >= leastGround)
            return m_colors.append(color);
        for (const QPoint at : area)
            of(at) = ink;
    }

    const QImage& m_picture;
    std::vector<int> m_of;
    QList<QRgb> m_colors;
};

}    // namespace

QList<FaintInk> faintInks(const QImage& picture, const QRegion& excepted)
{
    const QImage pixels = picture.convertToFormat(QImage::Format_RGB32);
    Grounds grounds(pixels);
    std::vector<bool> seen(std::size_t(pixels.width()) * pixels.height());
    const auto mark = [&](QPoint at) -> std::vector<bool>::reference {
        return seen[std::size_t(at.y()) * pixels.width() + at.x()];
    };
    QList<FaintInk> faint;
    for (int y = 0; y < pixels.height(); ++y) {
        for (int x = 0; x < pixels.width(); ++x) {
            if (grounds.of({x, y}) != Grounds::ink || mark({x, y}))
                continue;
            QList<QPoint> inks{{x, y}};
            mark({x, y}) = true;
            QRect box(x, y, 1, 1);
            QSet<QRgb> around;
            int touched = 0;
            for (qsizetype i = 0; i < inks.size(); ++i) {
                box |= QRect(inks[i], QSize(1, 1));
                for (int dy = -1; dy <= 1; ++dy) {
                    for (int dx = -letterGap; dx <= letterGap; ++dx) {
                        const QPoint next = inks[i] + QPoint(dx, dy);
                        if (!grounds.holds(next))
                            continue;
                        const int ground = grounds.of(next);
                        if (ground != Grounds::ink && std::abs(dx) <= 1) {
                            around.insert(grounds.color(ground));
                            touched = ground;
                        } else if (ground == Grounds::ink && !mark(next)) {
                            mark(next) = true;
                            inks.append(next);
                        }
                    }
                }
            }
            // What borders on two grounds is the edge of an area.
            if (around.size() != 1 || inks.size() < leastInk || box.height() < leastHeight ||
                box.width() < leastWidth || excepted.intersects(box))
                continue;
            const double ground = luminance(grounds.color(touched));
            double strongest = 1;
            for (const QPoint at : std::as_const(inks))
                strongest = std::max(strongest, contrast(luminance(pixels.pixel(at)), ground));
            const bool isFrame = std::min(box.width(), box.height()) > largeType &&
                                 inks.size() < hairline * 2 * (box.width() + box.height());
            if (isFrame)
                continue;
            const double shape = double(box.width()) / box.height();
            const bool isIcon = box.height() >= iconSide && shape > 0.6 && shape < 1.7;
            const double needed = isIcon || box.height() > largeType ? iconRatio : textRatio;
            if (strongest < needed)
                faint.append({box, strongest, needed});
        }
    }
    return faint;
}

QList<FaintMark> faintMarks(QWidget& window)
{
    QList<FaintMark> faint;
    const auto note = [&](const char* kind, const QWidget* control, double ratio) {
        if (ratio < iconRatio)
            faint.append(
                {QStringLiteral("%1 of \"%2\"").arg(QLatin1String(kind), control->accessibleName()),
                 {control->mapTo(&window, QPoint()), control->size()},
                 ratio});
    };
    for (const auto* widget : window.findChildren<QWidget*>()) {
        if (widget->isVisible() && widget->inherits("DropVeil"))
            return {};    // nothing below the veil can be used
    }
    window.activateWindow();
    const QPointer<QWidget> focused = window.focusWidget();
    for (const QPointer<QWidget>& control : usable(window)) {
        const auto isThere = [&control] { return control && control->isVisible(); };
        if (!isThere())
            continue;
        const double ring = ringContrast(window, *control);
        if (!isThere())    // some controls are there only while another has the focus
            continue;
        note("focus ring", control, ring);
        auto* button = qobject_cast<QAbstractButton*>(control.data());
        if (button && button->isCheckable())
            note("state", control, buttonContrast(window, *button));
        if (auto* segments = qobject_cast<SegmentedControl*>(control.data());
            segments && segments->current() >= 0 && segments->choiceCount() > 1)
            note("chosen segment", control, choiceContrast(window, *segments));
        if (auto* tabs = qobject_cast<TabStrip*>(control.data()))
            note("chosen tab", control, choiceContrast(window, *tabs));
    }
    if (focused)
        focused->setFocus(Qt::OtherFocusReason);
    else if (QWidget* last = window.focusWidget())
        last->clearFocus();
    return faint;
}

QRegion exceptedFromContrast(const QWidget& window)
{
    constexpr std::array pictures{"CanvasInteractionView",
                                  "TileGrid",
                                  "PresetGrid",
                                  "TemplateGallery",
                                  "SignInWall",
                                  "PostPreview",
                                  "PostStrip",
                                  "EmptyState",
                                  "ColorPlane",
                                  "ShapeRow",
                                  "QScrollBar",
                                  "Swatch",
                                  "Mark"};
    QRegion excepted;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisible())
            continue;
        const bool isPicture = std::ranges::any_of(
            pictures, [widget](const char* name) { return widget->inherits(name); });
        // What a sheet or the veil over the window leaves behind it cannot be used either.
        if (const auto* sheet = qobject_cast<const Sheet*>(widget)) {
            const QRect box(sheet->box()->mapTo(&window, QPoint()), sheet->box()->size());
            excepted += QRegion(window.rect()) - box;
        }
        if (widget->inherits("DropVeil"))
            excepted += window.rect();
        if (isPicture || !widget->isEnabled())
            excepted += QRect(widget->mapTo(&window, QPoint()), widget->size());
    }
    return excepted;
}
