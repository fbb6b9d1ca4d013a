#include "app/controls/popovers/FontCatalog.h"

#include "canvas/TextFitting.h"

#include <QFontDatabase>
#include <QRawFont>
#include <QSet>

using namespace Qt::StringLiterals;

namespace {

QString joined(const QString& style)
{
    return QString(style).remove(u' ').toCaseFolded();
}

// Removes the foundry that Qt appends in brackets to families of equal name; stored names do not
// contain it.
QString withoutFoundry(const QString& family)
{
    const auto bracket = family.indexOf(" ["_L1);
    return bracket > 0 ? family.left(bracket) : family;
}

QFont drawnFont(const QString& storedName, CopySlot slot)
{
    TextLayer layer;
    layer.slot = slot;
    layer.fontName = storedName;
    return ExportCanvasRenderer::nsFont(layer, 1).face;
}

}    // namespace

QStringList foldFamilies(const QStringList& families,
                         const std::function<QStringList(const QString&)>& stylesOf)
{
    QStringList whole;
    for (const QString& family : families)
        whole.append(withoutFoundry(family));
    whole.removeDuplicates();
    const QSet<QString> known(whole.cbegin(), whole.cend());
    const auto isFace = [&](const QString& family) {
        for (auto space = family.indexOf(u' '); space > 0;
             space = family.indexOf(u' ', space + 1)) {
            const QString base = family.left(space);
            if (!known.contains(base))
                continue;
            const QString rest = joined(family.mid(space));
            const QStringList styles = stylesOf(base);
            if (std::ranges::any_of(styles, [&](const QString& s) { return joined(s) == rest; }))
                return true;
        }
        return false;
    };
    whole.removeIf(isFace);
    whole.sort(Qt::CaseInsensitive);
    return whole;
}

bool isForWords(const QString& family)
{
    return !QFontDatabase::writingSystems(family).contains(QFontDatabase::Symbol) &&
           !family.split(u' ').contains("Math"_L1);
}

const QStringList& FontCatalog::families()
{
    if (m_families.isEmpty()) {
        QStringList all = QFontDatabase::families();
        // Leaves out the system's private fonts, and generic names that stand for some installed
        // font.
        const QStringList stand{u"Monospace"_s, u"Sans Serif"_s, u"Serif"_s};
        all.removeIf([&stand](const QString& family) {
            return QFontDatabase::isPrivateFamily(family) || stand.contains(family);
        });
        m_families =
            foldFamilies(all, [](const QString& family) { return QFontDatabase::styles(family); });
        std::ranges::stable_partition(m_families, &isForWords);
    }
    return m_families;
}

const QList<FontFace>& FontCatalog::faces(const QString& family)
{
    if (const auto known = m_faces.constFind(family); known != m_faces.cend())
        return *known;
    QStringList styles = QFontDatabase::styles(family);
    // Adds the regular face if the list of the system lacks it. QFontDatabase::font() returns
    // another face if there is no regular one, hence the comparison of the style names.
    const QString regular = u"Regular"_s;
    if (!styles.contains(regular) &&
        QRawFont::fromFont(QFontDatabase::font(family, regular, 12)).styleName() == regular)
        styles.append(regular);
    const auto rank = [&family](const QString& style) {
        return std::tuple(QFontDatabase::weight(family, style),
                          QFontDatabase::italic(family, style), style);
    };
    std::ranges::sort(styles, {}, rank);
    QList<FontFace> faces;
    for (const QString& style : styles)
        faces.append({style, family + u' ' + style});
    return *m_faces.insert(family, faces);
}

QString FontCatalog::usualFace(const QString& family)
{
    const QList<FontFace>& all = faces(family);
    for (const QString& usual : {u"Regular"_s, u"Roman"_s, u"Normal"_s, u"Book"_s}) {
        const auto face = std::ranges::find(all, usual, &FontFace::name);
        if (face != all.end())
            return face->storedName;
    }
    return drawnFace(family);
}

QString drawnFace(const QString& storedName)
{
    const QRawFont drawn = QRawFont::fromFont(drawnFont(storedName, CopySlot::subtitle));
    return drawn.styleName().isEmpty()
               ? storedName
               : withoutFoundry(drawn.familyName()) + u' ' + drawn.styleName();
}

QFont fontOfStored(const QString& storedName, int pixels)
{
    QFont font = drawnFont(storedName, CopySlot::subtitle);
    font.setPixelSize(pixels);
    return font;
}
