#include "app/presets/GalleryLayout.h"

#include "app/theme/Painting.h"

#include <algorithm>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

constexpr int galleryGap = 10, galleryRowGap = 12, recentGap = 8;
constexpr int belowHeading = 8, belowSection = 16, belowFolded = 8, galleryBottom = 16;
constexpr int galleryNoteHeight = 84, headingButtonGap = 8;
constexpr int widePanel = 327;     // content without margins, from which a row holds one tile more
constexpr int roomForKey = 270;    // likewise, from which "Otra al azar" shows its key
constexpr double narrowRatio = 0.7, broadRatio = 1.2;

int columnsFor(int inner, double ratio)
{
    if (ratio > broadRatio)
        return 2;
    return (ratio < narrowRatio ? 3 : 2) + (inner >= widePanel ? 1 : 0);
}

QSize pictureSize(int width, double ratio)
{
    return {std::max(1, width), std::max(1, qRound(width / ratio))};
}

// Adds parts below one another.
class GalleryRows {
public:
    GalleryRows(GalleryLayout& layout, const GalleryShape& shape)
        : m_layout(layout), m_left(shape.left), m_inner(shape.width - shape.left - shape.right)
    {
    }

    void addHeading(const GallerySection& section, int index)
    {
        const qsizetype heading = m_layout.parts.size();
        int right = m_left + m_inner;
        add({GalleryPart::Kind::heading, index, -1, {}, {}});
        // From right to left; put in reading order afterwards.
        QList<GalleryPart> buttons;
        const auto take = [&](GalleryPart::Kind kind, int width) {
            const QRect box(right - width, m_top, width, galleryHeadingHeight);
            buttons.prepend({kind, index, -1, box, box});
            right -= width + headingButtonGap;
        };
        if (section.hasMenu)
            take(GalleryPart::Kind::sectionMenu, galleryHeadingHeight);
        if (section.canRefresh)
            take(GalleryPart::Kind::refresh, galleryHeadingHeight);
        if (section.offersRandom)
            take(GalleryPart::Kind::random, randomLinkWidth(m_inner >= roomForKey));
        m_layout.parts += buttons;
        const QRect box(m_left, m_top, std::max(0, right - m_left), galleryHeadingHeight);
        m_layout.parts[heading].rect = m_layout.parts[heading].whole = box;
        m_top += galleryHeadingHeight;
    }

    void addNote(int index)
    {
        m_top += belowHeading;
        const QRect box(m_left, m_top, m_inner, galleryNoteHeight);
        add({GalleryPart::Kind::note, index, -1, box, box});
        m_top += galleryNoteHeight + belowSection;
    }

    void addRecent(const GallerySection& section, int index)
    {
        m_top += belowHeading;
        const QSize size = m_layout.smallTile;
        const int shown = std::min(int(section.tiles.size()), recentTiles);
        for (int i = 0; i < shown; ++i) {
            const QRect box(QPoint(leftOf(i, recentTiles, size.width()), m_top), size);
            add({GalleryPart::Kind::tile, index, i, box, box});
        }
        m_top += size.height() + belowSection;
    }

    void addTiles(const GallerySection& section, int index)
    {
        m_top += belowHeading;
        const QSize size = m_layout.tile;
        const int columns = m_layout.columns;
        for (int first = 0; first < section.tiles.size(); first += columns) {
            const int end = std::min(first + columns, int(section.tiles.size()));
            int caption = galleryCaptionGap + galleryCaptionHeight;
            for (int i = first; i < end; ++i) {
                if (!section.tiles[i].missingFont.isEmpty())
                    caption = galleryCaptionGap + galleryCaptionHeight + galleryMissingHeight;
            }
            for (int i = first; i < end; ++i) {
                const QRect box(QPoint(leftOf(i - first, columns, size.width()), m_top), size);
                const bool isMissing = !section.tiles[i].missingFont.isEmpty();
                const int below = galleryCaptionGap + galleryCaptionHeight +
                                  (isMissing ? galleryMissingHeight : 0);
                add({GalleryPart::Kind::tile, index, i, box, box.adjusted(0, 0, 0, below)});
            }
            m_top += size.height() + caption + galleryRowGap;
        }
        m_top += belowSection - galleryRowGap;
    }

    void addFoldedGap() { m_top += belowFolded; }
    int bottomOf() const { return m_top + galleryBottom - belowFolded; }

private:
    void add(const GalleryPart& part) { m_layout.parts.append(part); }
    // Spreads the rounding of the tile width over all gaps between the columns.
    int leftOf(int column, int columns, int width) const
    {
        return m_left + (columns == 1 ? 0 : column * (m_inner - width) / (columns - 1));
    }

    GalleryLayout& m_layout;
    int m_left, m_inner;
    int m_top = 4;
};

bool isStop(const GalleryPart& part)
{
    return part.kind != GalleryPart::Kind::note;
}

// The next stop above or below, as near as possible to the middle of `from`. Of a heading's row it
// is the heading.
int stopInRow(const GalleryLayout& layout, int from, bool isDown)
{
    const QList<GalleryPart>& parts = layout.parts;
    const QRect& start = parts[from].rect;
    int row = -1;
    for (int i = 0; i < parts.size(); ++i) {
        const int top = parts[i].rect.top();
        const bool isBeyond = isDown ? top > start.top() : top < start.top();
        const bool isNearer =
            row < 0 || (isDown ? top < parts[row].rect.top() : top > parts[row].rect.top());
        if (isStop(parts[i]) && isBeyond && isNearer)
            row = i;
    }
    int nearest = row;
    for (int i = std::max(row, 0); row >= 0 && i < parts.size(); ++i) {
        if (parts[i].rect.top() != parts[row].rect.top() ||
            parts[row].kind != GalleryPart::Kind::tile)
            break;
        const auto distance = [&](int part) {
            return std::abs(parts[part].rect.center().x() - start.center().x());
        };
        if (distance(i) < distance(nearest))
            nearest = i;
    }
    return nearest < 0 ? from : nearest;
}

}    // namespace

GalleryLayout laidOut(const QList<GallerySection>& sections, const GalleryShape& shape)
{
    GalleryLayout layout;
    const int inner = std::max(1, shape.width - shape.left - shape.right);
    layout.columns = columnsFor(inner, shape.ratio);
    layout.tile =
        pictureSize((inner - (layout.columns - 1) * galleryGap) / layout.columns, shape.ratio);
    layout.smallTile =
        pictureSize((inner - (recentTiles - 1) * recentGap) / recentTiles, shape.ratio);
    GalleryRows rows(layout, shape);
    for (int i = 0; i < sections.size(); ++i) {
        const GallerySection& section = sections[i];
        rows.addHeading(section, i);
        if (section.isFolded)
            rows.addFoldedGap();
        else if (section.tiles.isEmpty())
            rows.addNote(i);
        else if (section.look == GalleryLook::recent)
            rows.addRecent(section, i);
        else
            rows.addTiles(section, i);
    }
    layout.height = rows.bottomOf();
    return layout;
}

int randomLinkWidth(bool withKey)
{
    constexpr int icon = 16 + 6, key = 6 + 18;
    return icon + qCeil(textWidth(Type::body, u"Otra al azar"_s)) + (withKey ? key : 0);
}

QRect captionOf(const GalleryPart& tile)
{
    return {tile.rect.left(), tile.rect.bottom() + 1 + galleryCaptionGap, tile.rect.width(),
            galleryCaptionHeight};
}

QRect moreOf(const GalleryPart& tile)
{
    const QRect caption = captionOf(tile);
    return {caption.right() + 1 - galleryMoreSide, caption.top(), galleryMoreSide,
            galleryCaptionHeight};
}

QRect discOf(const GalleryPart& tile)
{
    return {tile.rect.right() + 1 - discInset - discSide, tile.rect.top() + discInset, discSide,
            discSide};
}

int partByKey(const GalleryLayout& layout, int from, int key)
{
    const QList<GalleryPart>& parts = layout.parts;
    if (parts.isEmpty())
        return -1;
    const auto along = [&](int start, int step) {
        for (int i = start; i >= 0 && i < parts.size(); i += step) {
            if (isStop(parts[i]))
                return i;
        }
        return from;
    };
    switch (key) {
    case Qt::Key_Left:
        return along(from - 1, -1);
    case Qt::Key_Right:
        return along(from + 1, 1);
    case Qt::Key_Up:
        return stopInRow(layout, from, false);
    case Qt::Key_Down:
        return stopInRow(layout, from, true);
    case Qt::Key_Home:
        return along(0, 1);
    case Qt::Key_End:
        return along(int(parts.size()) - 1, -1);
    default:
        return -1;
    }
}
