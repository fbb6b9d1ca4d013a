#include "app/presets/GallerySections.h"

#include "studio/templates/SharedTemplates.h"
#include "studio/templates/TemplateLibrary.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

QString teamState(const SharedTemplates& shared)
{
    const QString copy = shared.copied().isValid()
                             ? u"copia del %1"_s.arg(QLocale().toString(
                                   shared.copied().toLocalTime().date(), u"d MMM"_s))
                             : QString();
    switch (shared.state()) {
    case CatalogueState::none:
        return {};
    case CatalogueState::upToDate:
        return u"Al día"_s;
    case CatalogueState::asking:
        return u"Comprobando…"_s;
    case CatalogueState::offline:
        return copy.isEmpty() ? u"Sin conexión"_s : u"Sin conexión: %1"_s.arg(copy);
    case CatalogueState::refused:
        return copy.isEmpty() ? u"Sin actualizar"_s : u"Sin actualizar: %1"_s.arg(copy);
    }
    Q_UNREACHABLE();
}

class SectionMaker {
public:
    SectionMaker(const TemplateLibrary& library, const SharedTemplates* shared, SocialFormat format,
                 const GalleryFilter& filter)
        : m_library(library), m_shared(shared), m_format(format), m_isFiltered(!filter.isEmpty())
    {
        if (!m_isFiltered)
            return;
        const QList<QUuid> found =
            library.found(filter.search, filter.tag, filter.favourites, format);
        m_found = QSet<QUuid>(found.begin(), found.end());
    }

    GallerySection recent() const
    {
        GallerySection made{.key = recentSection.toString(),
                            .title = u"Usadas hace poco"_s,
                            .look = GalleryLook::recent};
        for (const QUuid& id : m_library.recent(m_format)) {
            if (const LibraryDesign* design = m_library.find(id))
                made.tiles.append(tileOf(*design));
        }
        return made;
    }

    GallerySection made(const LibrarySection& section) const
    {
        GallerySection made{.key = section.key, .title = section.title};
        for (const LibraryDesign& design : section.designs) {
            if (!m_isFiltered || m_found.contains(design.id))
                made.tiles.append(tileOf(design));
        }
        switch (section.origin) {
        case DesignOrigin::user:
            if (!m_isFiltered && made.tiles.isEmpty())
                made.note = u"Guarda esta composición para reutilizarla en otras fotos."_s;
            break;
        case DesignOrigin::team:
            made.canRefresh = true;
            made.state = teamState(*m_shared);
            made.stateTip = m_shared->problem();
            if (!m_isFiltered && made.tiles.isEmpty())
                made.note = m_shared->isAdministrator()
                                ? u"Comparte con el equipo una plantilla tuya desde su menú."_s
                                : u"Tu equipo aún no ha compartido plantillas de este formato."_s;
            break;
        case DesignOrigin::program:
            made.badge = rawValue(m_format);
            break;
        case DesignOrigin::pack:
            made.hasMenu = true;
            break;
        }
        return made;
    }

private:
    GalleryTile tileOf(const LibraryDesign& design) const
    {
        const bool isOwn = design.origin == DesignOrigin::user;
        const bool isTeam = design.origin == DesignOrigin::team;
        return {.id = design.id,
                .name = design.name,
                .isFavourite = m_library.isFavourite(design.id),
                .canRename = isOwn || (isTeam && m_shared && m_shared->isAdministrator()),
                .canRemove = isOwn,
                .missingFont = design.missingFont};
    }

    const TemplateLibrary& m_library;
    const SharedTemplates* m_shared;
    SocialFormat m_format;
    bool m_isFiltered;
    QSet<QUuid> m_found;
};

}    // namespace

QList<GallerySection> gallerySections(const TemplateLibrary& library, const SharedTemplates* shared,
                                      SocialFormat format, const GalleryFilter& filter,
                                      const QSet<QString>& foldedFound)
{
    const SectionMaker maker(library, shared, format, filter);
    QList<GallerySection> shown;
    const auto show = [&](GallerySection section) {
        if (section.tiles.isEmpty() && section.note.isEmpty())
            return;
        section.isFolded =
            filter.isEmpty() ? library.isFolded(section.key) : foldedFound.contains(section.key);
        section.offersRandom = shown.isEmpty();
        shown.append(section);
    };
    if (filter.isEmpty())
        show(maker.recent());
    for (const LibrarySection& section : library.sections(format))
        show(maker.made(section));
    return shown;
}
