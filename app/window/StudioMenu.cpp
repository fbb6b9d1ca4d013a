#include "app/window/StudioMenu.h"

#include "app/theme/Icons.h"

#include <QAction>
#include <QMenu>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

enum class Mark { none, check };

// Keys of which the text fields have their own use are told, not registered: the window hears of
// them only when whatever has the focus did not take them.
struct Entry {
    Command command;
    QStringView menu, text;
    QStringView keys = {};    // several are split by spaces; the first is shown
    QStringView toldKey = {};
    Icon icon = Icon::none;
    Mark mark = Mark::none;
    bool startsGroup = false;
};

constexpr QStringView fileMenu = u"Archivo", editMenu = u"Edición", viewMenu = u"Ver",
                      helpMenu = u"Ayuda", shapeMenu = u"Edición/Añadir forma",
                      formatMenu = u"Ver/Formato", themeMenu = u"Ver/Tema";

constexpr std::array entries{
    Entry{
        Command::importImages, fileMenu, u"Importar imágenes…", u"Ctrl+O", {}, Icon::importImages},
    Entry{Command::importFolder,
          fileMenu,
          u"Importar carpeta…",
          u"Ctrl+Shift+O",
          {},
          Icon::importFolder},
    Entry{Command::exportCurrent,
          fileMenu,
          u"Exportar actual…",
          u"Ctrl+E",
          {},
          Icon::exportCurrent,
          Mark::none,
          true},
    Entry{Command::exportAll, fileMenu, u"Exportar todo…", u"Ctrl+Shift+E", {}, Icon::exportAll},
    Entry{Command::stop, fileMenu, u"Detener la importación", u"Ctrl+."},
    Entry{.command = Command::importTexts,
          .menu = fileMenu,
          .text = u"Importar textos (CSV)…",
          .startsGroup = true},
    Entry{Command::exportTexts, fileMenu, u"Exportar textos (CSV)…"},
    Entry{.command = Command::importTemplate,
          .menu = fileMenu,
          .text = u"Importar plantilla…",
          .icon = Icon::templates},
    Entry{.command = Command::restoreAside,
          .menu = fileMenu,
          .text = u"Recuperar la sesión apartada",
          .startsGroup = true},
    Entry{.command = Command::account,
          .menu = fileMenu,
          .text = u"Cuenta…",
          .icon = Icon::account,
          .startsGroup = true},
    Entry{.command = Command::appSettings,
          .menu = fileMenu,
          .text = u"Ajustes de Moltiva",
          .keys = u"Ctrl+,",
          .icon = Icon::preferences},
    Entry{.command = Command::signOut,
          .menu = fileMenu,
          .text = u"Cerrar sesión",
          .icon = Icon::signOut},
    Entry{.command = Command::quit,
          .menu = fileMenu,
          .text = u"Salir",
          .keys = u"Ctrl+Q",
          .startsGroup = true},

    Entry{Command::undo, editMenu, u"Deshacer", u"Ctrl+Z", {}, Icon::undo},
    Entry{Command::redo, editMenu, u"Rehacer", u"Ctrl+Shift+Z Ctrl+Y", {}, Icon::redo},
    Entry{.command = Command::editText,
          .menu = editMenu,
          .text = u"Editar el texto",
          .toldKey = u"Intro",
          .startsGroup = true},
    Entry{Command::removeLayer, editMenu, u"Ocultar texto o eliminar forma", {}, u"Supr"},
    Entry{Command::copyStyle, editMenu, u"Copiar estilo", u"Ctrl+Alt+C"},
    Entry{Command::pasteStyle, editMenu, u"Pegar estilo", u"Ctrl+Alt+V"},
    Entry{Command::addRectangle, shapeMenu, u"Rectángulo"},
    Entry{Command::addCircle, shapeMenu, u"Círculo"},
    Entry{Command::addTriangle, shapeMenu, u"Triángulo"},
    Entry{Command::addLine, shapeMenu, u"Línea"},
    Entry{Command::saveTemplate, editMenu, u"Guardar plantilla", {}, {}, Icon::saveTemplate},
    Entry{Command::selectAll,
          editMenu,
          u"Seleccionar todas las imágenes",
          u"Ctrl+A",
          {},
          Icon::selectAll,
          Mark::none,
          true},
    Entry{Command::discard, editMenu, u"Descartar imagen", u"Ctrl+Shift+D", {}, Icon::discard},

    Entry{Command::previousImage, viewMenu, u"Imagen anterior", u"PgUp", {}, Icon::previous},
    Entry{Command::nextImage, viewMenu, u"Imagen siguiente", u"PgDown", {}, Icon::next},
    Entry{.command = Command::storyReel,
          .menu = formatMenu,
          .text = u"Story / Reel",
          .keys = u"Ctrl+Alt+1",
          .mark = Mark::check},
    Entry{.command = Command::horizontal,
          .menu = formatMenu,
          .text = u"Horizontal",
          .keys = u"Ctrl+Alt+2",
          .mark = Mark::check},
    Entry{.command = Command::carouselPortrait,
          .menu = formatMenu,
          .text = u"Carrusel / Post vertical",
          .keys = u"Ctrl+Alt+3",
          .mark = Mark::check},
    Entry{.command = Command::square,
          .menu = formatMenu,
          .text = u"Post cuadrado",
          .keys = u"Ctrl+Alt+4",
          .mark = Mark::check},
    Entry{.command = Command::fill,
          .menu = viewMenu,
          .text = u"Llenar",
          .mark = Mark::check,
          .startsGroup = true},
    Entry{.command = Command::fit, .menu = viewMenu, .text = u"Encajar", .mark = Mark::check},
    Entry{Command::zoomWhole, viewMenu, u"Foto al 100 %", u"Ctrl+0"},
    Entry{Command::zoomIn, viewMenu, u"Acercar", u"Ctrl++ Ctrl+="},
    Entry{Command::zoomOut, viewMenu, u"Alejar", u"Ctrl+-"},
    Entry{Command::centrePhoto, viewMenu, u"Centrar foto"},
    Entry{.command = Command::safeZone,
          .menu = viewMenu,
          .text = u"Zona segura",
          .mark = Mark::check},
    Entry{.command = Command::textTab,
          .menu = viewMenu,
          .text = u"Texto",
          .keys = u"Ctrl+1",
          .startsGroup = true},
    Entry{Command::shapesTab, viewMenu, u"Formas", u"Ctrl+2"},
    Entry{Command::templatesTab, viewMenu, u"Plantillas", u"Ctrl+3"},
    Entry{.command = Command::batchColumn,
          .menu = viewMenu,
          .text = u"Columna del lote",
          .mark = Mark::check,
          .startsGroup = true},
    Entry{.command = Command::sidePanel,
          .menu = viewMenu,
          .text = u"Panel lateral",
          .mark = Mark::check},
    Entry{Command::nextRegion, viewMenu, u"Zona siguiente", u"F6"},
    Entry{Command::previousRegion, viewMenu, u"Zona anterior", u"Shift+F6"},
    Entry{.command = Command::darkTheme, .menu = themeMenu, .text = u"Oscuro", .mark = Mark::check},
    Entry{.command = Command::lightTheme, .menu = themeMenu, .text = u"Claro", .mark = Mark::check},

    Entry{Command::showHistory, helpMenu, u"Últimos avisos"},
    Entry{Command::checkForUpdates, helpMenu, u"Buscar actualizaciones..."},
};

// Whatever lies over the studio.
constexpr std::array alwaysUsable{Command::quit, Command::darkTheme, Command::lightTheme};

QList<QKeySequence> sequencesOf(QStringView keys)
{
    QList<QKeySequence> sequences;
    for (const QStringView key : keys.split(u' ', Qt::SkipEmptyParts))
        sequences.append(QKeySequence(key.toString(), QKeySequence::PortableText));
    return sequences;
}

}    // namespace

StudioMenu::StudioMenu(QWidget* window) : QObject(window), m_menu(new QMenu(window))
{
    QHash<QString, QMenu*> menus;
    const auto menuAt = [&](QStringView path) {
        QMenu* parent = m_menu;
        QString known;
        for (const QStringView part : path.split(u'/')) {
            known += u'/' + part.toString();
            QMenu*& menu = menus[known];
            if (!menu)
                menu = parent->addMenu(part.toString());
            parent = menu;
        }
        return parent;
    };
    for (const Entry& entry : entries) {
        QMenu* menu = menuAt(entry.menu);
        if (entry.startsGroup)
            menu->addSeparator();
        QString text = entry.text.toString();
        if (!entry.toldKey.isEmpty())
            text += u'\t' + entry.toldKey.toString();
        auto* action = new QAction(text, menu);
        if (entry.icon != Icon::none)
            action->setIcon(menuIcon(entry.icon));
        action->setCheckable(entry.mark == Mark::check);
        action->setShortcuts(sequencesOf(entry.keys));
        action->setAutoRepeat(entry.command != Command::discard);
        connect(action, &QAction::triggered, this,
                [this, command = entry.command] { Q_EMIT chosen(command); });
        menu->addAction(action);
        window->addAction(action);    // its key acts with the menu closed
        m_actions.insert(entry.command, action);
    }
    connect(m_menu, &QMenu::aboutToShow, this, &StudioMenu::aboutToShow);
    // What is disabled is so for who looks at the menu; a key always asks anew.
    connect(m_menu, &QMenu::aboutToHide, this, &StudioMenu::enableAll);
}

void StudioMenu::enableAll()
{
    for (auto each = m_actions.cbegin(); each != m_actions.cend(); ++each)
        each.value()->setEnabled(!m_isLocked ||
                                 std::ranges::find(alwaysUsable, each.key()) != alwaysUsable.end());
}

void StudioMenu::setLocked(bool locked)
{
    m_isLocked = locked;
    enableAll();
}

void StudioMenu::setEnabled(std::initializer_list<Command> commands, bool enabled)
{
    for (const Command command : commands)
        action(command)->setEnabled(enabled);
}
