#include "studio/batch/StepName.h"

#include <QStringList>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QString textName(const TextLayer& layer)
{
    switch (layer.slot) {
    case CopySlot::title:
        return u"del título"_s;
    case CopySlot::subtitle:
        return u"del subtítulo"_s;
    case CopySlot::tagline:
        return u"del párrafo"_s;
    case CopySlot::callToAction:
        return u"del CTA"_s;
    }
    Q_UNREACHABLE();
}

QString shapeName(const ShapeLayer& shape)
{
    const QString kind = rawValue(shape.kind).toLower();
    return (shape.kind == ShapeKind::line ? u"de la %1"_s : u"del %1"_s).arg(kind);
}

QString frameChange(const CodableRect& before, const CodableRect& after)
{
    const bool isMoved = before.width == after.width && before.height == after.height;
    return isMoved ? u"posición"_s : u"ancho y alto"_s;
}

// Whether any of `members` differs between `a` and `b`.
template <typename Record, typename... Members>
bool differ(const Record& a, const Record& b, Members... members)
{
    return (... || (a.*members != b.*members));
}

QStringList changesOf(const TextLayer& before, const TextLayer& after)
{
    QStringList changes;
    // Typing into a hidden text also shows it: that is named as a change of the text only.
    if (before.text != after.text)
        changes.append(u"texto"_s);
    else if (before.isVisible != after.isVisible)
        changes.append(u"visibilidad"_s);
    if (before.frame != after.frame)
        changes.append(frameChange(before.frame, after.frame));
    if (before.alignment != after.alignment)
        changes.append(u"alineación"_s);
    if (before.foreground != after.foreground)
        changes.append(u"color"_s);
    if (before.fontName != after.fontName)
        changes.append(u"fuente"_s);
    if (before.fontScale != after.fontScale)
        changes.append(u"tamaño"_s);
    if (differ(before, after, &TextLayer::hasBox, &TextLayer::background,
               &TextLayer::backgroundOpacity, &TextLayer::cornerRadius))
        changes.append(u"caja"_s);
    if (differ(before, after, &TextLayer::shadowOpacity, &TextLayer::shadowRadius,
               &TextLayer::shadowDistance, &TextLayer::shadowAngle, &TextLayer::shadowColor))
        changes.append(u"sombra"_s);
    return changes;
}

QStringList changesOf(const ShapeLayer& before, const ShapeLayer& after)
{
    QStringList changes;
    if (before.frame != after.frame)
        changes.append(frameChange(before.frame, after.frame));
    if (differ(before, after, &ShapeLayer::fill, &ShapeLayer::fillOpacity))
        changes.append(u"relleno"_s);
    if (differ(before, after, &ShapeLayer::stroke, &ShapeLayer::strokeOpacity,
               &ShapeLayer::strokeWidth))
        changes.append(u"trazo"_s);
    if (differ(before, after, &ShapeLayer::kind, &ShapeLayer::cornerRadius))
        changes.append(u"contorno"_s);
    return changes;
}

// Names the changed layer with its only change, as in "tamaño del título", or with "cambios" if
// several things changed.
QString layerChange(const QStringList& changes, const QString& layer)
{
    return (changes.size() == 1 ? changes.first() : u"cambios"_s) + u' ' + layer;
}

// Names what changed in an item; empty if nothing did that the user would notice.
QString itemChange(const PublicationItem& before, const PublicationItem& after)
{
    QStringList found;
    const qsizetype added = after.shapeLayers.size() - before.shapeLayers.size();
    if (added == 1 || added == -1)
        found.append(added > 0 ? u"forma añadida"_s : u"forma eliminada"_s);
    else if (added != 0)
        found.append(u"formas"_s);
    if (before.placement != after.placement)
        found.append(u"encuadre de la foto"_s);
    for (qsizetype i = 0; i < std::min(before.layers.size(), after.layers.size()); ++i) {
        if (before.layers[i] != after.layers[i])
            found.append(layerChange(changesOf(before.layers[i], after.layers[i]),
                                     textName(after.layers[i])));
    }
    for (qsizetype i = 0; added == 0 && i < after.shapeLayers.size(); ++i) {
        if (before.shapeLayers[i] != after.shapeLayers[i])
            found.append(layerChange(changesOf(before.shapeLayers[i], after.shapeLayers[i]),
                                     shapeName(after.shapeLayers[i])));
    }
    if (found.isEmpty())
        return before.analysis == after.analysis ? QString() : u"texto de la publicación"_s;
    if (found.size() == 1)
        return found.first();
    const bool isText = std::ranges::all_of(
        found, [](const QString& change) { return change.startsWith(u"texto "_s); });
    return isText ? u"textos"_s : u"cambios de diseño"_s;
}

// File names of the items in `of` that are not in `other`.
QStringList missingFrom(const PublicationItems& other, const PublicationItems& of)
{
    QSet<QUuid> ids;
    for (const PublicationItem& item : other)
        ids.insert(item.id);
    QStringList names;
    for (const PublicationItem& item : of) {
        if (!ids.contains(item.id))
            names.append(item.filename());
    }
    return names;
}

}    // namespace

QString stepName(const StudioHistorySnapshot& before, const StudioHistorySnapshot& after)
{
    if (!missingFrom(before.items, after.items).isEmpty())
        return before.items.isEmpty() ? u"importación"_s : u"cambio de lote"_s;
    const QStringList discarded = missingFrom(after.items, before.items);
    if (!discarded.isEmpty()) {
        return discarded.size() == 1 ? u"descarte de %1"_s.arg(discarded.first())
                                     : u"descarte de %1 imágenes"_s.arg(discarded.size());
    }
    if (before.format != after.format)
        return u"cambio de formato"_s;
    if (before.objective != after.objective)
        return u"objetivo"_s;
    QString name;
    qsizetype images = 0;
    for (qsizetype i = 0; i < after.items.size(); ++i) {
        if (before.items[i] == after.items[i])
            continue;
        const QString change = itemChange(before.items[i], after.items[i]);
        if (change.isEmpty())
            continue;
        // An edit of the current item copies the whole style of a layer to the other selected
        // items, so more may change in those than the user edited: the name comes from the current
        // item.
        if (++images == 1 || i == after.selectedIndex)
            name = change;
    }
    if (images == 0)
        return u"último cambio"_s;
    return images == 1 ? name : u"%1 en %2 imágenes"_s.arg(name, QString::number(images));
}
