#include "app/StudioMenu.h"

#include "app/Icons.h"

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

constexpr QStringView file = u"Archivo", edit = u"Edición", view = u"Ver", help = u"Ayuda",
                      shape = u"Edición/Añadir forma", format = u"Ver/Formato", theme = u"Ver/Tema";

constexpr std::array entries{
    Entry{Command::importImages, file, u"Importar imágenes…", u"Ctrl+O", {}, Icon::importImages},
    Entry{
        Command::importFolder, file, u"Importar carpeta…", u"Ctrl+Shift+O", {}, Icon::importFolder},
    Entry{Command::exportCurrent,
          file,
          u"Exportar actual…",
          u"Ctrl+E",
          {},
          Icon::exportCurrent,
          Mark::none,
          true},
    Entry{Command::exportAll, file, u"Exportar todo…", u"Ctrl+Shift+E", {}, Icon::exportAll},
    Entry{Command::stop, file, u"Detener la importación", u"Ctrl+."},
    Entry{.command = Command::importTexts,
          .menu = file,
          .text = u"Importar textos (CSV)…",
          .startsGroup = true},
    Entry{Command::exportTexts, file, u"Exportar textos (CSV)…"},
    Entry{.command = Command::importTemplate,
          .menu = file,
          .text = u"Importar plantilla…",
          .icon = Icon::templates},
    Entry{.command = Command::restoreAside,
          .menu = file,
          .text = u"Recuperar la sesión apartada",
          .startsGroup = true},
    Entry{.command = Command::account,
          .menu = file,
          .text = u"Cuenta…",
          .icon = Icon::account,
          .startsGroup = true},
    Entry{.command = Command::appSettings,
          .menu = file,
          .text = u"Ajustes de Moltiva",
          .keys = u"Ctrl+,",
          .icon = Icon::preferences},
    Entry{
        .command = Command::signOut, .menu = file, .text = u"Cerrar sesión", .icon = Icon::signOut},
    Entry{.command = Command::quit,
          .menu = file,
          .text = u"Salir",
          .keys = u"Ctrl+Q",
          .startsGroup = true},

    Entry{Command::undo, edit, u"Deshacer", u"Ctrl+Z", {}, Icon::undo},
    Entry{Command::redo, edit, u"Rehacer", u"Ctrl+Shift+Z Ctrl+Y", {}, Icon::redo},
    Entry{.command = Command::editText,
          .menu = edit,
          .text = u"Editar el texto",
          .toldKey = u"Intro",
          .startsGroup = true},
    Entry{Command::removeLayer, edit, u"Ocultar texto o eliminar forma", {}, u"Supr"},
    Entry{Command::copyStyle, edit, u"Copiar estilo", u"Ctrl+Alt+C"},
    Entry{Command::pasteStyle, edit, u"Pegar estilo", u"Ctrl+Alt+V"},
    Entry{Command::addRectangle, shape, u"Rectángulo"},
    Entry{Command::addCircle, shape, u"Círculo"},
    Entry{Command::addTriangle, shape, u"Triángulo"},
    Entry{Command::addLine, shape, u"Línea"},
    Entry{Command::saveTemplate, edit, u"Guardar plantilla", {}, {}, Icon::saveTemplate},
    Entry{Command::selectAll,
          edit,
          u"Seleccionar todas las imágenes",
          u"Ctrl+A",
          {},
          Icon::selectAll,
          Mark::none,
          true},
    Entry{Command::discard, edit, u"Descartar imagen", u"Ctrl+Shift+D", {}, Icon::discard},

    Entry{Command::previousImage, view, u"Imagen anterior", u"PgUp", {}, Icon::previous},
    Entry{Command::nextImage, view, u"Imagen siguiente", u"PgDown", {}, Icon::next},
    Entry{.command = Command::storyReel,
          .menu = format,
          .text = u"Story / Reel",
          .keys = u"Ctrl+Alt+1",
          .mark = Mark::check},
    Entry{.command = Command::horizontal,
          .menu = format,
          .text = u"Horizontal",
          .keys = u"Ctrl+Alt+2",
          .mark = Mark::check},
    Entry{.command = Command::carouselPortrait,
          .menu = format,
          .text = u"Carrusel / Post vertical",
          .keys = u"Ctrl+Alt+3",
          .mark = Mark::check},
    Entry{.command = Command::square,
          .menu = format,
          .text = u"Post cuadrado",
          .keys = u"Ctrl+Alt+4",
          .mark = Mark::check},
    Entry{.command = Command::fill,
          .menu = view,
          .text = u"Llenar",
          .mark = Mark::check,
          .startsGroup = true},
    Entry{.command = Command::fit, .menu = view, .text = u"Encajar", .mark = Mark::check},
    Entry{Command::zoomWhole, view, u"Foto al 100 %", u"Ctrl+0"},
    Entry{Command::zoomIn, view, u"Acercar", u"Ctrl++ Ctrl+="},
    Entry{Command::zoomOut, view, u"Alejar", u"Ctrl+-"},
    Entry{Command::centrePhoto, view, u"Centrar foto"},
    Entry{.command = Command::safeZone, .menu = view, .text = u"Zona segura", .mark = Mark::check},
    Entry{.command = Command::textTab,
          .menu = view,
          .text = u"Texto",
          .keys = u"Ctrl+1",
          .startsGroup = true},
    Entry{Command::shapesTab, view, u"Formas", u"Ctrl+2"},
    Entry{Command::templatesTab, view, u"Plantillas", u"Ctrl+3"},
    Entry{.command = Command::batchColumn,
          .menu = view,
          .text = u"Columna del lote",
          .mark = Mark::check,
          .startsGroup = true},
    Entry{
        .command = Command::sidePanel, .menu = view, .text = u"Panel lateral", .mark = Mark::check},
    Entry{Command::nextRegion, view, u"Zona siguiente", u"F6"},
    Entry{Command::previousRegion, view, u"Zona anterior", u"Shift+F6"},
    Entry{.command = Command::darkTheme, .menu = theme, .text = u"Oscuro", .mark = Mark::check},
    Entry{.command = Command::lightTheme, .menu = theme, .text = u"Claro", .mark = Mark::check},

    Entry{Command::showHistory, help, u"Últimos avisos"},
    Entry{Command::checkForUpdates, help, u"Buscar actualizaciones..."},
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
