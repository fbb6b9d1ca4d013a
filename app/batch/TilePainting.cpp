#include "app/batch/TilePainting.h"

#include "app/theme/Icons.h"
#include "app/theme/Painting.h"

#include <QFontMetricsF>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QColor darkDisc(12, 13, 15, 220), lightDisc(250, 250, 251);    // behind icons on a picture
constexpr int narrowestNamed = 70;    // pixels; a narrower tile shows its number alone

// Elides the middle of `text`. Qt keeps equally many letters on both sides of the ellipsis, which
// may waste the width of a letter: adds one before the ellipsis if it fits.
QString middleElided(Type type, const QString& text, double width)
{
    const QString elided =
        QFontMetricsF(fontOf(type)).elidedText(text, Qt::ElideMiddle, std::max(0.0, width));
    const auto gap = elided.indexOf(u'…');
    if (elided == text || gap < 0 || text.at(gap).isSurrogate())
        return elided;
    const QString longer = text.left(gap + 1) + elided.mid(gap);
    return textWidth(type, longer) <= width ? longer : elided;
}

void paintPicture(QPainter& painter, const Theme& theme, const TileLook& look)
{
    if (look.picture.isNull()) {
        fillRounded(painter, look.box, Radius::thumbnail, theme.empty);
        strokeRounded(painter, look.box, Radius::thumbnail, theme.line);
    } else {
        painter.setRenderHint(QPainter::SmoothPixmapTransform, !look.isExact);
        painter.drawImage(look.box, look.picture);
    }
}

QRectF cornerOf(const QRect& box)
{
    return {box.right() + 1 - 22.0, box.top() + 3.5, 19, 19};
}

// Paints an icon on a disc in the corner where the tick of a selected tile would be.
void paintCorner(QPainter& painter, const TileLook& look, Icon icon, const QColor& ink,
                 const QColor& ground)
{
    const QRectF corner = cornerOf(look.box);
    fillRounded(painter, corner.adjusted(0.5, 0.5, -0.5, -0.5), 9, ground);
    paintIcon(painter, icon, corner, 14, ink);
}

bool hasOwnCorner(TileState state)
{
    return state == TileState::queued || state == TileState::generated ||
           state == TileState::waiting;
}

void paintState(QPainter& painter, const TileLook& look)
{
    const QRect& box = look.box;
    switch (look.tile.state) {
    case TileState::generating:
        fillRounded(painter, box, Radius::thumbnail, QColor(5, 6, 8, 158));
        paintSpinner(painter, QRectF(box.center().x() - 10, box.center().y() - 10, 20, 20),
                     QColor(255, 255, 255, 70), Qt::white, look.turn, 2.2);
        return;
    case TileState::queued:
        fillRounded(painter, box, Radius::thumbnail, QColor(5, 6, 8, 97));
        return paintCorner(painter, look, Icon::queued, Qt::white, darkDisc);
    case TileState::generated:
        paintCorner(painter, look, Icon::done, darkTheme().ok, darkDisc);
        break;
    case TileState::waiting:
        paintCorner(painter, look, Icon::slotTitle, lightTheme().accentText, lightDisc);
        break;
    case TileState::normal:
    case TileState::unanswered:
    case TileState::missing:
        break;
    }
    if (look.isHovered)
        strokeRounded(painter, box, Radius::thumbnail, QColor(255, 255, 255, 61));
}

void paintSelection(QPainter& painter, const Theme& theme, const TileLook& look)
{
    const QRectF box(look.box);
    if (look.tile.current) {
        strokeRounded(painter, box.adjusted(-4.5, -4.5, 4.5, 4.5), 10, theme.accentLine, 2.5);
    } else if (look.tile.selected) {
        strokeRounded(painter, box.adjusted(-3.5, -3.5, 3.5, 3.5), 9.5,
                      withOpacity(theme.accentLine, 0.62), 1.5);
    }
    const bool isFree = look.tile.state != TileState::generating && !hasOwnCorner(look.tile.state);
    if (look.isOneOfSeveral && isFree) {
        const QRectF corner = cornerOf(look.box);
        fillRounded(painter, corner, 9.5, Qt::white);
        fillRounded(painter, corner.adjusted(1.5, 1.5, -1.5, -1.5), 8, theme.accentLine);
        paintIcon(painter, Icon::check, corner, 14, Qt::white);
    }
}

// Paints one sign for all problems, in the colour of the worst. The sign lies on the picture
// because the caption has no space for it, in the corner that designs leave free most often.
void paintSign(QPainter& painter, const TileLook& look)
{
    const bool isMissing = look.tile.state == TileState::missing;
    const bool isUnanswered = look.tile.state == TileState::unanswered;
    if (!isMissing && !isUnanswered && look.tile.warnings.isEmpty())
        return;
    const QRectF sign(look.box.right() + 1 - 22, look.box.bottom() + 1 - 22.5, 19, 19);
    const Theme& onDark = darkTheme();
    fillRounded(painter, sign.adjusted(0.5, 0.5, -0.5, -0.5), 9, darkDisc);
    paintIcon(painter, Icon::alert, sign, 14, isMissing ? onDark.err : onDark.warn);
}

void paintCaption(QPainter& painter, const Theme& theme, const TileLook& look)
{
    const Tile& tile = look.tile;
    QRectF line(look.box.left(), look.box.bottom() + 1 + tileCaptionGap, look.box.width(),
                tileCaptionHeight);
    if (tile.paid) {
        paintIcon(painter, Icon::done, QRectF(line.right() - 14, line.top(), 14, tileCaptionHeight),
                  14, theme.ok);
        line.setRight(line.right() - 18);
    }
    const QString number = QString::number(look.number);
    paintText(painter, line, Qt::AlignLeft, Type::captionSemibold,
              tile.current ? theme.text : theme.text2, number, Qt::ElideNone);
    if (look.box.width() < narrowestNamed)
        return;
    line.setLeft(line.left() + std::ceil(textWidth(Type::captionSemibold, number)) + 5);
    paintText(painter, line, Qt::AlignLeft, Type::caption, tile.current ? theme.text : theme.text3,
              middleElided(Type::caption, tile.name, line.width()), Qt::ElideNone);
}

}    // namespace

void paintTile(QPainter& painter, const Theme& theme, const TileLook& look)
{
    paintPicture(painter, theme, look);
    paintState(painter, look);
    paintSelection(painter, theme, look);
    paintSign(painter, look);
    paintCaption(painter, theme, look);
}

void paintEmptyTile(QPainter& painter, const Theme& theme, const QRectF& box)
{
    fillRounded(painter, box, Radius::thumbnail, theme.empty);
    strokeRounded(painter, box, Radius::thumbnail, theme.line);
    fillRounded(painter, QRectF(box.left(), box.bottom() + 10, std::min(44.0, box.width()), 6), 3,
                theme.empty);
}

QString spokenTile(const Tile& tile)
{
    QStringList parts{tile.name};
    if (tile.current)
        parts.append(u"actual"_qs);
    if (tile.selected)
        parts.append(u"seleccionada"_qs);
    switch (tile.state) {
    case TileState::generating:
        parts.append(u"generando"_qs);
        break;
    case TileState::queued:
        parts.append(u"en cola"_qs);
        break;
    case TileState::missing:
        parts.append(u"no se puede leer la foto"_qs);
        break;
    case TileState::generated:
        parts.append(u"textos generados"_qs);
        break;
    case TileState::waiting:
        parts.append(u"texto en espera"_qs);
        break;
    case TileState::unanswered:
        parts.append(u"sin respuesta"_qs);
        break;
    case TileState::normal:
        break;
    }
    if (tile.paid)
        parts.append(u"pagada"_qs);
    if (!tile.warnings.isEmpty())
        parts.append(u"con avisos"_qs);
    return parts.join(u", "_qs);
}

QString toolTipOf(const Tile& tile)
{
    QString text = tile.name;
    if (tile.paid)
        text += u"\nPagada: volver a exportarla no descuenta créditos."_qs;
    if (tile.state == TileState::missing)
        text += u"\nNo se puede leer la foto. ¿Se ha movido o borrado?"_qs;
    if (tile.state == TileState::waiting)
        text += u"\nTexto en espera"_qs;
    if (!tile.answer.isEmpty())
        text += u'\n' + tile.answer;
    for (const QString& warning : tile.warnings)
        text += u'\n' + warning;
    return text;
}
