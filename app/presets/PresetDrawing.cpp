#include "app/presets/PresetDrawing.h"

#include "app/theme/Theme.h"
#include "canvas/ExportCanvasRenderer.h"
#include "canvas/TextWarnings.h"
#include "platform/photo/PhotoCache.h"

#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

QImage drawnItem(const PublicationItem& item, SocialFormat format, QSize pixels, PhotoCache& photos)
{
    return paintedItem(layOut(item, exportSize(format), designSize(format)), pixels,
                       photos.thumbnail({item.image.path, item.image.digest}));
}

QImage drawnLarge(const PublicationItem& item, SocialFormat format, QSize pixels,
                  PhotoCache& photos)
{
    const QSizeF canvas = exportSize(format);
    const PhotoId photo{item.image.path, item.image.digest};
    const double shown = pixels.width() / canvas.width();
    return paintedItem(layOut(item, canvas, designSize(format)), pixels,
                       photos.proxy(photo, ExportCanvasRenderer::photoLevel(
                                               item.image, item.placement, canvas, shown)));
}

QImage drawnStyle(const PhotoHandle& photo, const TextLayerDesign& style, QSize pixels,
                  PhotoCache& photos)
{
    // `tileWidth` is in design units. `letterScale` replaces the font scale of `style`.
    constexpr double tileWidth = 150, letterScale = 4;
    const QSizeF tile(tileWidth, tileWidth * pixels.height() / std::max(1, pixels.width()));
    PublicationItem item;
    item.image = photo;
    TextLayer letters(QUuid(), CopySlot::title, u"Aa"_s, true, {0.1, 0.1, 0.8, 0.8});
    style.apply(letters);
    letters.fontScale = letterScale;
    item.layers = {letters};
    const ItemLayout layout = layOut(item, QSizeF(pixels), tile);
    // Covers the photo with more and more of a plain colour while the letters lack contrast.
    const QColor ground = letters.foreground.color().lightnessF() > 0.5F ? Qt::black : Qt::white;
    QImage picture = photos.thumbnail({photo.path, photo.digest});
    JudgedPicture judged = judgedItem(layout, pixels, picture);
    for (const double veil : {0.35, 0.5, 0.7}) {
        if (std::ranges::none_of(judged.warnings,
                                 [](const auto& w) { return w.contrast.has_value(); }))
            break;
        QPainter(&picture).fillRect(picture.rect(), withOpacity(ground, veil));
        judged = judgedItem(layout, pixels, picture);
    }
    return judged.picture;
}
