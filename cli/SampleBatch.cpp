#include "cli/SampleBatch.h"

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

struct Scene {
    QStringView name;
    QRgb skyTop, skyBottom, sun, farRidge, nearRidge;
    double sunX, sunY;    // fractions of the picture
};

constexpr std::array scenes{
    Scene{u"amanecer", 0xff2b3a67, 0xfff2a97e, 0xffffe3b3, 0xff6c5a7c, 0xff2a2440, 0.68, 0.52},
    Scene{u"costa", 0xff2f7fb8, 0xffd8eef5, 0xfffffbe8, 0xff4f9aa8, 0xff1e5a63, 0.28, 0.30},
    Scene{u"otoño", 0xff7d95a8, 0xfff4ead6, 0xfffff6dd, 0xffc4853f, 0xff6a3b1c, 0.52, 0.38},
};

QPainterPath ridge(QSize size, double height, double wave, double phase)
{
    QPainterPath path(QPointF(0, size.height()));
    for (int x = 0; x <= size.width(); x += 4) {
        const double t = double(x) / size.width() * 6.283;
        const double y =
            height + wave * (std::sin(t * 1.3 + phase) + 0.5 * std::sin(t * 3.1 + phase * 2));
        path.lineTo(x, y * size.height());
    }
    path.lineTo(size.width(), size.height());
    path.closeSubpath();
    return path;
}

QImage painted(const Scene& scene)
{
    const QSize size(1800, 1350);
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, size.height());
    sky.setColorAt(0, QColor(scene.skyTop));
    sky.setColorAt(0.75, QColor(scene.skyBottom));
    painter.fillRect(image.rect(), sky);
    const QPointF sun(scene.sunX * size.width(), scene.sunY * size.height());
    QRadialGradient glow(sun, 420);
    QColor light(scene.sun);
    glow.setColorAt(0, light);
    glow.setColorAt(0.16, light);
    light.setAlpha(90);
    glow.setColorAt(0.17, light);
    light.setAlpha(0);
    glow.setColorAt(1, light);
    painter.fillRect(image.rect(), glow);
    painter.fillPath(ridge(size, 0.66, 0.05, scene.sunX * 5), QColor(scene.farRidge));
    painter.fillPath(ridge(size, 0.82, 0.06, scene.sunY * 9 + 2), QColor(scene.nearRidge));
    return image;
}

}    // namespace

bool paintSampleBatch(const QString& folder)
{
    return std::ranges::all_of(scenes, [&](const Scene& scene) {
        return painted(scene).save(QDir(folder).filePath(scene.name.toString() + u".jpg"_s), "jpg",
                                   92);
    });
}
