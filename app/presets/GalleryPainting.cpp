#include "app/presets/GalleryPainting.h"

#include "app/theme/Icons.h"
#include "app/theme/Painting.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int foldSide = 16, foldGap = 6, headingTitleGap = 8, headingBadgeHeight = 20,
              headingBadgeSide = 6;
constexpr int galleryIcon = 16, randomLinkGap = 6, randomKeyCap = 18, gallerySign = 16,
              roomForGalleryMore = 80;
constexpr double ringGap = 1, ringLine = 2, markGap = 2;
constexpr int previewChipHeight = 18, previewChipPadding = 6, previewChipInset = 5,
              narrowGalleryTile = 88;
const QColor overPhoto(15, 16, 20, 200);    // the ground of a star over any photo

bool isRecent(const GallerySection& section)
{
    return section.look == GalleryLook::recent;
}

// In a narrow tile the name needs the width: the menu button is visible only under the pointer.
bool showsGalleryMore(const GalleryPart& part, const GalleryPartLook& look)
{
    return part.rect.width() >= roomForGalleryMore || look.hovered != GallerySpot::none;
}

int galleryCaptionRoom(const GallerySection& section, const GalleryPart& part,
                       const GalleryPartLook& look)
{
    const bool isMissing = !section.tiles[part.tile].missingFont.isEmpty();
    return part.rect.width() - (showsGalleryMore(part, look) ? galleryMoreSide + 2 : 0) -
           (look.isApplied ? gallerySign + 2 : 0) - (isMissing ? gallerySign + 2 : 0);
}

// Paints a badge whose right edge, or with Qt::AlignLeft left edge, is at `x`. Returns its width.
int paintBadge(QPainter& painter, const Theme& theme, const QRect& heading, int x,
               Qt::Alignment side, const QString& text)
{
    const int width = 2 * headingBadgeSide + qCeil(textWidth(Type::smallMedium, text));
    const QRectF box(side == Qt::AlignLeft ? x : x - width,
                     heading.top() + (heading.height() - headingBadgeHeight) / 2, width,
                     headingBadgeHeight);
    fillRounded(painter, box, Radius::chip, theme.control);
    paintText(painter, box, Qt::AlignHCenter, Type::smallMedium, theme.text2, text, Qt::ElideNone);
    return width;
}

void paintHeading(QPainter& painter, const Theme& theme, const GallerySection& section,
                  const QRect& box, bool isHovered)
{
    paintIcon(painter, section.isFolded ? Icon::next : Icon::unfold,
              QRectF(box.left() - 2, box.top(), foldSide, box.height()), galleryIcon,
              isHovered ? theme.text : theme.text2);
    int right = box.right() + 1;
    if (!section.badge.isEmpty())
        right -=
            paintBadge(painter, theme, box, right, Qt::AlignRight, section.badge) + headingTitleGap;
    if (!section.state.isEmpty()) {
        const int width = qCeil(textWidth(Type::caption, section.state));
        paintText(painter, QRectF(right - width, box.top(), width, box.height()), Qt::AlignRight,
                  Type::caption, theme.text3, section.state, Qt::ElideNone);
        right -= width + headingTitleGap;
    }
    const int left = box.left() + foldSide - 2 + foldGap;
    const QString count = section.tiles.isEmpty() || isRecent(section)
                              ? QString()
                              : QString::number(section.tiles.size());
    const int countWidth =
        count.isEmpty()
            ? 0
            : 2 * headingBadgeSide + qCeil(textWidth(Type::smallMedium, count)) + headingTitleGap;
    const int width =
        std::min(qCeil(textWidth(Type::heading, section.title)), right - left - countWidth);
    paintText(painter, QRectF(left, box.top(), std::max(0, width), box.height()), Qt::AlignLeft,
              Type::heading, theme.text, section.title);
    if (!count.isEmpty())
        paintBadge(painter, theme, box, left + width + headingTitleGap, Qt::AlignLeft, count);
}

void paintRandomLink(QPainter& painter, const Theme& theme, const QRect& box, bool isHovered)
{
    const QColor ink = isHovered ? theme.accentLine : theme.accentText;
    paintIcon(painter, Icon::random, QRectF(box.left(), box.top(), galleryIcon, box.height()),
              galleryIcon, ink);
    paintText(painter, QRectF(box).adjusted(galleryIcon + randomLinkGap, 0, 0, 0), Qt::AlignLeft,
              Type::body, ink, u"Otra al azar"_s, Qt::ElideNone);
    if (box.width() < randomLinkWidth(true))
        return;
    const QRectF cap(box.right() + 1 - randomKeyCap, box.center().y() - randomKeyCap / 2 + 1,
                     randomKeyCap, randomKeyCap);
    fillRounded(painter, cap, 5, theme.control);
    paintText(painter, cap, Qt::AlignHCenter, Type::caption, theme.text2, u"R"_s, Qt::ElideNone);
}

void paintHeadingButton(QPainter& painter, const Theme& theme, Icon icon, const QRect& box,
                        bool isHovered)
{
    if (isHovered)
        fillRounded(painter, box, Radius::field, theme.hover);
    paintIcon(painter, icon, box, galleryIcon, isHovered ? theme.text : theme.text2);
}

void paintPicture(QPainter& painter, const Theme& theme, const QRect& box,
                  const GalleryPartLook& look)
{
    if (look.picture.isNull())
        fillRounded(painter, box, Radius::thumbnail, theme.empty);
    else
        painter.drawImage(QRectF(box), look.picture);    // its corners are transparent
    strokeRounded(painter, box, Radius::thumbnail, theme.line);
    if (look.hovered != GallerySpot::none)
        strokeRounded(painter, box, Radius::thumbnail, QColor(255, 255, 255, 61));
    if (look.isApplied) {
        const double reach = ringGap + ringLine;
        strokeRounded(painter, QRectF(box).adjusted(-reach, -reach, reach, reach),
                      Radius::thumbnail + reach, theme.accentLine, ringLine);
    }
}

void paintPreviewed(QPainter& painter, const Theme& theme, const QRectF& box)
{
    const QString label = box.width() < narrowGalleryTile ? u"Previa"_s : u"Vista previa"_s;
    const QSizeF chip(textWidth(Type::captionSemibold, label) + 2 * previewChipPadding,
                      previewChipHeight);
    const QRectF at(
        QPointF(box.left() + previewChipInset, box.bottom() - previewChipInset - previewChipHeight),
        chip);
    strokeRounded(painter, box, Radius::thumbnail, theme.accentLine, 1.5);
    fillRounded(painter, at, Radius::chip, theme.accent);
    paintText(painter, at, Qt::AlignHCenter, Type::captionSemibold, Qt::white, label,
              Qt::ElideNone);
}

void paintStar(QPainter& painter, const QRect& disc, const GalleryTile& tile,
               const GalleryPartLook& look)
{
    if (!tile.isFavourite && look.hovered == GallerySpot::none)
        return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(look.hovered == GallerySpot::disc ? QColor(Qt::black) : overPhoto);
    painter.drawEllipse(disc);
    paintIcon(painter, tile.isFavourite ? Icon::starFilled : Icon::star, disc, 14, Qt::white);
}

void paintCaption(QPainter& painter, const Theme& theme, const GallerySection& section,
                  const GalleryPart& part, const GalleryPartLook& look)
{
    const GalleryTile& tile = section.tiles[part.tile];
    const QRect caption = captionOf(part);
    QRectF name = caption;
    name.setWidth(galleryCaptionRoom(section, part, look));
    paintText(painter, name, Qt::AlignLeft, Type::small, theme.text, tile.name);
    double left = name.right() + 2;
    const auto sign = [&](Icon icon, const QColor& ink) {
        paintIcon(painter, icon, QRectF(left, caption.top(), gallerySign, galleryCaptionHeight),
                  gallerySign, ink);
        left += gallerySign + 2;
    };
    if (look.isApplied)
        sign(Icon::check, theme.accentText);
    if (!tile.missingFont.isEmpty()) {
        sign(Icon::alert, theme.warn);
        paintText(
            painter,
            QRectF(caption.left(), caption.bottom() + 1, caption.width(), galleryMissingHeight),
            Qt::AlignLeft, Type::caption, theme.warn, u"Falta %1"_s.arg(tile.missingFont));
    }
    if (showsGalleryMore(part, look)) {
        const QRect more = moreOf(part);
        if (look.hovered == GallerySpot::more)
            fillRounded(painter, more, Radius::chip, theme.hover);
        paintIcon(painter, Icon::more, more, galleryIcon, theme.text2);
    }
}

void paintGalleryTile(QPainter& painter, const Theme& theme, const GallerySection& section,
                      const GalleryPart& part, const GalleryPartLook& look)
{
    paintPicture(painter, theme, part.rect, look);
    if (look.isPreviewed && !look.isApplied)
        paintPreviewed(painter, theme, part.rect);
    if (isRecent(section))
        return;
    paintStar(painter, discOf(part), section.tiles[part.tile], look);
    if (!look.isRenamed)
        paintCaption(painter, theme, section, part, look);
}

void paintGalleryNote(QPainter& painter, const Theme& theme, const QRect& box, const QString& note)
{
    painter.setFont(fontOf(Type::small));
    painter.setPen(theme.text2);
    painter.drawText(box.adjusted(Space::large, 0, -Space::large, 0),
                     Qt::AlignCenter | Qt::TextWordWrap, note);
}

}    // namespace

void paintPart(QPainter& painter, const Theme& theme, const GallerySection& section,
               const GalleryPart& part, const GalleryPartLook& look)
{
    const bool isHovered = look.hovered != GallerySpot::none;
    switch (part.kind) {
    case GalleryPart::Kind::heading:
        paintHeading(painter, theme, section, part.rect, isHovered);
        break;
    case GalleryPart::Kind::random:
        paintRandomLink(painter, theme, part.rect, isHovered);
        break;
    case GalleryPart::Kind::refresh:
        paintHeadingButton(painter, theme, Icon::refresh, part.rect, isHovered);
        break;
    case GalleryPart::Kind::sectionMenu:
        paintHeadingButton(painter, theme, Icon::more, part.rect, isHovered);
        break;
    case GalleryPart::Kind::note:
        paintGalleryNote(painter, theme, part.rect, section.note);
        break;
    case GalleryPart::Kind::tile:
        paintGalleryTile(painter, theme, section, part, look);
        break;
    }
    if (look.isMarked) {
        const double reach = markGap + ringLine;
        strokeRounded(painter, QRectF(part.whole).adjusted(-reach, -reach, reach, reach),
                      Radius::thumbnail + reach, theme.accentLine, ringLine);
    }
}

bool isNameCut(const GallerySection& section, const GalleryPart& part, const GalleryPartLook& look)
{
    return isRecent(section) || textWidth(Type::small, section.tiles[part.tile].name) >
                                    galleryCaptionRoom(section, part, look);
}
