#include "app/PresetDrawing.h"

#include "canvas/ItemPainter.h"
#include "platform/PhotoCache.h"

using namespace Qt::StringLiterals;

QImage drawnItem(const PublicationItem& item, SocialFormat format, QSize pixels, PhotoCache& photos)
{
    return paintedItem(layOut(item, exportSize(format), designSize(format)), pixels,
                       photos.thumbnail({item.image.path, item.image.digest}));
}

QImage drawnStyle(const PhotoHandle& photo, const TextLayerDesign& style, QSize pixels,
                  PhotoCache& photos)
{
    // The tile in design units, and how large the letters come out there, whatever the size of the
    // style's own text.
    constexpr double tileWidth = 150, letterScale = 3;
    const QSizeF tile(tileWidth, tileWidth * pixels.height() / std::max(1, pixels.width()));
    PublicationItem item;
    item.image = photo;
    TextLayer letters(QUuid(), CopySlot::title, u"Aa"_s, true, {0.19, 0.16, 0.62, 0.68});
    style.apply(letters);
    letters.fontScale = letterScale;
    item.layers = {letters};
    return paintedItem(layOut(item, QSizeF(pixels), tile), pixels,
                       photos.thumbnail({photo.path, photo.digest}));
}
