#include "tools/LibraryScreens.h"

#include "app/layers/SidePanel.h"
#include "app/presets/GallerySections.h"
#include "app/presets/TemplateGallery.h"
#include "app/presets/TemplatesBinding.h"
#include "app/presets/TemplatesPanel.h"
#include "app/window/MainWindow.h"
#include "app/window/StudioShell.h"
#include "studio/StudioSession.h"
#include "studio/templates/TemplateLibrary.h"
#include "tools/WindowPictures.h"

#include <QApplication>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace {

class LibraryScreens {
public:
    explicit LibraryScreens(const LibraryStage& stage)
        : m_stage(stage), m_session(stage.session), m_window(stage.window),
          m_panel(stage.window.shell()->sidePanel()->templatesPanel()),
          m_library(stage.window.templates().library())
    {
    }

    bool takeAll()
    {
        m_session.setFormat(SocialFormat::carouselPortrait);
        m_window.shell()->sidePanel()->setTab(SideTab::templates);
        bool reached = m_stage.pictures.waitUntilCalm();
        reached &= take(u"library-none-saved"_s);
        fill();
        m_window.shell()->sidePanel()->setTab(SideTab::templates);
        reached &= m_stage.pictures.waitUntilCalm();
        m_state = usual();
        reached &= takeShown(u"library"_s);
        reached &= takeFilters();
        reached &= takeTeam();
        reached &= takeMenus();
        reached &= takeLarge();
        m_session.setFormat(SocialFormat::storyReel);
        return reached & take(u"library-story"_s);
    }

private:
    bool take(const QString& name) { return m_stage.pictures.take(name); }
    bool takeShown(const QString& name)
    {
        m_panel->setState(m_state);
        return take(name);
    }

    QList<QUuid> program() const
    {
        QList<QUuid> ids;
        for (const LibrarySection& section : m_library.sections(m_session.batch().format)) {
            for (const LibraryDesign& design : section.designs) {
                if (design.origin == DesignOrigin::program)
                    ids.append(design.id);
            }
        }
        return ids;
    }

    void fill()
    {
        SavedTemplates& saved = m_window.templates().saved();
        const QList<QUuid> designs = program();
        for (const auto& [name, design] : {std::pair(u"Precio fijo"_s, 6),
                                           std::pair(u"Terraza"_s, 4), std::pair(u"Cenas"_s, 2)}) {
            const QUuid id = designs[design % designs.size()];
            m_session.applyTemplate(name, m_library.application(id));
            const PublicationItem& item = *m_session.batch().currentItem();
            saved.renameTemplate(saved.saveTemplate(item, m_session.batch().format), name);
        }
        m_library.setFavourite(saved.templates().entries().first().id, true);
        for (const int used : {0, 3, 5, 7, 1})
            m_library.noteUsed(designs[used % designs.size()]);
        m_session.applyTemplate(u"Ladera azul"_s, m_library.application(designs[1]));
    }

    // The state of the panel with a section of the team, for which there is no
    // service here.
    TemplatesPanelState usual() const
    {
        const SocialFormat format = m_session.batch().format;
        TemplatesPanelState state{
            .hasImage = true, .format = format, .tags = m_library.tags(format), .hasOwn = true};
        state.sections = gallerySections(m_library, nullptr, format, {}, {});
        GallerySection team{.key = teamSection.toString(),
                            .title = u"Del equipo"_s,
                            .state = u"Al día"_s,
                            .canRefresh = true};
        GallerySection pack{.key = u"pack:mercado"_s,
                            .title = u"Mercado local"_s,
                            .isFolded = true,
                            .hasMenu = true};
        for (GallerySection& section : state.sections) {
            if (section.key == programSection) {
                section.isFolded = true;
                team.tiles = section.tiles.mid(1, 3);
                pack.tiles = section.tiles.mid(0, 12);
            }
        }
        const QStringList names{u"Ladera azul"_s, u"Cita con foto"_s, u"Revista"_s};
        for (qsizetype i = 0; i < team.tiles.size(); ++i)
            team.tiles[i].name = names[i];
        team.tiles[1].isFavourite = true;
        team.tiles[2].missingFont = u"Bodoni Moda"_s;
        state.sections.insert(2, team);
        state.sections.append(pack);
        return state;
    }

    bool takeFilters()
    {
        auto* search = m_panel->findChild<QLineEdit*>();
        search->setText(u"zzz"_s);
        bool reached = take(u"library-nothing-found"_s);
        search->setText(program().isEmpty() ? QString()
                                            : m_library.find(program().first())->name.left(3));
        reached &= take(u"library-found"_s);
        search->clear();
        return reached;
    }

    bool takeTeam()
    {
        m_state = usual();
        m_state.sections[2].state = u"Sin conexión: copia del 21 nov"_s;
        m_state.sections[2].tiles.clear();
        m_state.sections[2].note = u"Tu equipo aún no ha compartido plantillas de este formato."_s;
        return takeShown(u"library-offline"_s);
    }

    bool takeMenus()
    {
        m_window.resize(1440, 900);
        bool reached = m_stage.pictures.waitUntilCalm();
        TemplateGallery* gallery = m_panel->gallery();
        const QUuid own = m_window.templates().saved().templates().entries().first().id;
        gallery->showMenu(gallery->partOf(own));
        reached &= m_stage.pictures.takeAtThisSize(u"library-menu"_s);
        if (QWidget* menu = QApplication::activePopupWidget())
            menu->close();
        gallery->setFocus(Qt::TabFocusReason);
        reached &= m_stage.pictures.takeAtThisSize(u"library-focus"_s);
        gallery->clearFocus();
        return reached;
    }

    bool takeLarge()
    {
        TemplateGallery* gallery = m_panel->gallery();
        bool reached = true;
        for (const QSize size : WindowPictures::sizes) {
            m_window.resize(size);
            reached &= m_stage.pictures.waitUntilCalm();
            Q_EMIT gallery->largePreviewToggled(program()[2]);
            reached &= m_stage.pictures.takeAtThisSize(u"library-large"_s);
            Q_EMIT gallery->previewEnded();
        }
        return reached;
    }

    LibraryStage m_stage;
    StudioSession& m_session;
    MainWindow& m_window;
    TemplatesPanel* m_panel;
    TemplateLibrary& m_library;
    TemplatesPanelState m_state;
};

}    // namespace

bool takeLibraryScreens(const LibraryStage& stage)
{
    return LibraryScreens(stage).takeAll();
}
