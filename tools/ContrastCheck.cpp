#include "tools/ContrastCheck.h"

#include "app/controls/popovers/Sheet.h"

#include <QWidget>

#include <cmath>

namespace {

constexpr int leastGround = 220;    // pixels of one colour side by side that are a ground
constexpr int letterGap = 4;        // pixels between the letters of a text
constexpr int leastInk = 8, leastHeight = 5,
              leastWidth = 4;                   // anything smaller is a point or a line
constexpr int largeType = 18, iconSide = 12;    // pixels
constexpr double textRatio = 4.5, iconRatio = 3;

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
            const double shape = double(box.width()) / box.height();
            const bool isIcon = box.height() >= iconSide && shape > 0.6 && shape < 1.7;
            const double needed = isIcon || box.height() > largeType ? iconRatio : textRatio;
            if (strongest < needed)
                faint.append({box, strongest, needed});
        }
    }
    return faint;
}

QRegion exceptedFromContrast(const QWidget& window)
{
    constexpr std::array pictures{"CanvasInteractionView",
                                  "TileGrid",
                                  "PresetGrid",
                                  "SignInWall",
                                  "PostPreview",
                                  "PostStrip",
                                  "EmptyState",
                                  "ColorPlane",
                                  "ShapeRow",
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
