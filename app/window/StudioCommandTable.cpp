// The functions of StudioCommands that list the commands of the menu.
#include "app/window/StudioCommands.h"

#include "account/AccountSession.h"
#include "app/desktop/Appearance.h"
#include "app/desktop/CheckForUpdatesView.h"
#include "app/desktop/RecentPlaces.h"
#include "app/export/ExportBinding.h"
#include "app/layers/PanelBinding.h"
#include "app/layers/SidePanel.h"
#include "app/layers/TextPanel.h"
#include "app/presets/TemplatesBinding.h"
#include "app/publish/PublishBinding.h"
#include "app/stage/EmptyState.h"
#include "app/stage/StageBinding.h"
#include "app/theme/Icons.h"
#include "app/window/CommandText.h"
#include "app/window/Diagnostics.h"
#include "app/window/FileIntake.h"
#include "app/window/KeptLook.h"
#include "app/window/StatusBinding.h"
#include "app/window/StudioFocus.h"
#include "app/window/StudioMenu.h"
#include "app/window/StudioShell.h"
#include "canvas/interaction/CanvasInteractionView.h"
#include "platform/NotificationCenter.h"
#include "studio/StudioSession.h"
#include "studio/TextTransfer.h"

#include <QAction>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

constexpr double zoomStep = 0.1;

constexpr QStringView fileMenu = u"Archivo", editMenu = u"Edición", viewMenu = u"Ver",
                      helpMenu = u"Ayuda", recentMenu = u"Archivo/Recientes",
                      moveMenu = u"Edición/Mover capa",
                      sizeMenu = u"Edición/Ancho y alto de la capa",
                      shapeMenu = u"Edición/Añadir forma", formatMenu = u"Ver/Formato",
                      themeMenu = u"Ver/Tema";

}    // namespace

QList<MenuCommand> StudioCommands::fileCommands()
{
    const auto canExport = [this] { return refusalOf(m_parts.exports.offer()).isEmpty(); };
    return {
        {.menu = fileMenu,
         .text = CommandText::exportCurrent.toString(),
         .keys = u"Ctrl+E",
         .topic = KeyTopic::output,
         .icon = Icon::exportCurrent,
         .startsGroup = true,
         .run = [this] { m_parts.exports.exportCurrent(); },
         .isPossible = canExport},
        {.menu = fileMenu,
         .text = CommandText::exportAll.toString(),
         .keys = u"Ctrl+Shift+E",
         .topic = KeyTopic::output,
         .keyText = u"Exportar varias",
         .icon = Icon::exportAll,
         .run = [this] { m_parts.exports.exportSeveral(); },
         .isPossible = canExport,
         .wording = [this] { return exportSeveralText(m_parts.exports.offer().selected) + u'…'; }},
        {.menu = fileMenu,
         .text = CommandText::publish.toString(),
         .keys = u"Ctrl+P",
         .topic = KeyTopic::output,
         .icon = Icon::publish,
         .run = [this] { m_parts.publish.open(); },
         .isPossible = [this] { return m_parts.publish.refusal().isEmpty(); },
         .repeats = false},
        {.menu = fileMenu,
         .text = CommandText::generate.toString(),
         .keys = u"Ctrl+Return Ctrl+Enter",
         .topic = KeyTopic::output,
         .icon = Icon::generate,
         .startsGroup = true,
         .run = [this] { m_session.copy().analyzeSelected(); },
         .isPossible = [this] { return canGenerate(); },
         .changesImages = true,
         .repeats = false},
        {.menu = fileMenu,
         .text = CommandText::stop.toString(),
         .keys = u"Ctrl+.",
         .topic = KeyTopic::output,
         .keyText = u"Cancelar lo que está en curso",
         .run = [this] { m_parts.status.stop(); },
         .isPossible = [this] { return m_parts.status.canStop(); },
         .wording = [this] { return m_parts.status.stopText(); }},
        {.menu = fileMenu,
         .text = u"Importar textos (CSV)…"_s,
         .startsGroup = true,
         .run = [this] { importTexts(); }},
        {.menu = fileMenu,
         .text = u"Exportar textos (CSV)…"_s,
         .run = [this] { m_parts.files->chooseTexts(QFileDialog::AcceptSave); },
         .isPossible = [this] { return hasImage(); }},
        {.menu = fileMenu,
         .text = u"Importar plantilla…"_s,
         .icon = Icon::templates,
         .run =
             [this] {
                 m_parts.look->showTab(SideTab::templates);
                 m_parts.templates.chooseDefinition();
             }},
        {.menu = fileMenu,
         .text = u"Recuperar la sesión apartada"_s,
         .startsGroup = true,
         .run = [this] { m_session.restoreWorkspaceAside(); },
         .isPossible = [this] { return m_session.hasWorkspaceAside(); }},
        {.menu = fileMenu,
         .text = u"Cuenta…"_s,
         .icon = Icon::account,
         .startsGroup = true,
         .run = [this] { m_session.setAccountPanel(AccountPanelDestination::account); }},
        {.menu = fileMenu,
         .text = u"Ajustes de Moltiva"_s,
         .keys = u"Ctrl+,",
         .topic = KeyTopic::window,
         .icon = Icon::preferences,
         .run = [this] { m_session.setAppSettingsPresented(true); }},
        {.menu = fileMenu,
         .text = u"Cerrar sesión"_s,
         .icon = Icon::signOut,
         .run =
             [this] {
                 if (!m_parts.account.isWorking())
                     m_parts.account.logout();
             },
         .isPossible = [this] { return !m_parts.account.isWorking(); }},
        {.menu = fileMenu,
         .text = u"Salir"_s,
         .keys = u"Ctrl+Q",
         .topic = KeyTopic::window,
         .startsGroup = true,
         .run = [this] { m_parts.window->close(); },
         .isAlwaysUsable = true},
    };
}

QList<MenuCommand> StudioCommands::importCommands()
{
    return {
        {.menu = fileMenu,
         .text = CommandText::importImages.toString(),
         .keys = u"Ctrl+O",
         .topic = KeyTopic::images,
         .icon = Icon::importImages,
         .run = [this] { m_parts.files->choosePhotos(); }},
        {.menu = fileMenu,
         .text = CommandText::importFolder.toString(),
         .keys = u"Ctrl+Shift+O",
         .topic = KeyTopic::images,
         .icon = Icon::importFolder,
         .run = [this] { m_parts.files->chooseFolder(); }},
    };
}

QList<MenuCommand> StudioCommands::recentCommands()
{
    QList<MenuCommand> commands;
    for (qsizetype i = 0; i < RecentPlaces::most; ++i) {
        const auto place = [this, i] { return m_parts.files->recent().places().value(i); };
        commands.append({.menu = recentMenu,
                         .text = u"Reciente %1"_s.arg(i + 1),
                         .run = [this, place] { m_parts.files->openRecent(place().path); },
                         .isPossible = [place] { return !place().path.isEmpty(); },
                         .wording = [place] { return inMenu(place().name()); }});
    }
    return commands;
}

QList<MenuCommand> StudioCommands::editCommands()
{
    const auto isLayerSelected = [this] { return isTextSelected() || isShapeSelected(); };
    QList<MenuCommand> commands{
        {.menu = editMenu,
         .text = CommandText::undo.toString(),
         .keys = u"Ctrl+Z",
         .topic = KeyTopic::edit,
         .icon = Icon::undo,
         .run = [this] { m_session.undo(); },
         .notification = Notification::undoRequested,
         .isPossible = [this] { return m_session.canUndo(); },
         .changesImages = true},
        {.menu = editMenu,
         .text = CommandText::redo.toString(),
         .keys = u"Ctrl+Shift+Z Ctrl+Y",
         .topic = KeyTopic::edit,
         .icon = Icon::redo,
         .run = [this] { m_session.redo(); },
         .notification = Notification::redoRequested,
         .isPossible = [this] { return m_session.canRedo(); },
         .changesImages = true},
        {.menu = editMenu,
         .text = u"Editar el texto"_s,
         .shownKey = u"Intro",
         .topic = KeyTopic::layers,
         .startsGroup = true,
         .run = [this] { editSelected(); },
         .isPossible = [this] { return isTextSelected(); },
         .changesImages = true,
         .keepsTyping = true},
        {.menu = {},
         .text = u"Editar el texto, otra tecla"_s,
         .shownKey = u"o F2",
         .topic = KeyTopic::layers,
         .keyText = u"Editar el texto"},
        {.menu = editMenu,
         .text = u"Otra propuesta"_s,
         .icon = Icon::refresh,
         .run = [this] { m_parts.panel.proposeAnother(); },
         .isPossible = [this] { return isTextSelected() && canGenerate(); },
         .changesImages = true,
         .keepsTyping = true},
        {.menu = editMenu,
         .text = u"Ocultar texto o eliminar forma"_s,
         .shownKey = u"Supr",
         .topic = KeyTopic::layers,
         .keyText = u"Ocultar texto, eliminar forma",
         .run = [this] { removeLayer(); },
         .isPossible = isLayerSelected,
         .changesImages = true},
        {.menu = editMenu,
         .text = CommandText::copyStyle.toString(),
         .keys = u"Ctrl+Alt+C",
         .topic = KeyTopic::layers,
         .run = [this] { m_session.copyStyle(); },
         .isPossible = isLayerSelected,
         .changesImages = true},
        {.menu = editMenu,
         .text = CommandText::pasteStyle.toString(),
         .keys = u"Ctrl+Alt+V",
         .topic = KeyTopic::layers,
         .run = [this] { m_session.pasteStyle(); },
         .isPossible = [this] { return m_session.canPasteStyle(); },
         .changesImages = true},
    };
    for (const auto& [text, kind] :
         {std::pair(u"Rectángulo"_s, ShapeKind::rectangle),
          std::pair(u"Círculo"_s, ShapeKind::circle),
          std::pair(u"Triángulo"_s, ShapeKind::triangle), std::pair(u"Línea"_s, ShapeKind::line)}) {
        commands.append({.menu = shapeMenu,
                         .text = text,
                         .run = [this, kind = kind] { addShape(kind); },
                         .isPossible = [this] { return hasImage(); },
                         .changesImages = true});
    }
    return commands + QList<MenuCommand>{{.menu = editMenu,
                                          .text = u"Guardar plantilla"_s,
                                          .icon = Icon::saveTemplate,
                                          .run =
                                              [this] {
                                                  m_parts.look->showTab(SideTab::templates);
                                                  m_parts.templates.saveTemplate();
                                              },
                                          .isPossible = [this] { return hasImage(); },
                                          .changesImages = true},
                                         {.menu = editMenu,
                                          .text = u"Otra al azar"_s,
                                          .keys = u"R",
                                          .topic = KeyTopic::edit,
                                          .keyText = u"Otra plantilla al azar",
                                          .icon = Icon::random,
                                          .run = [this] { m_parts.templates.tryAnother(); },
                                          .isPossible = [this] { return hasImage(); },
                                          .changesImages = true,
                                          .repeats = false},
                                         {.menu = editMenu,
                                          .text = CommandText::selectAll.toString(),
                                          .keys = u"Ctrl+A",
                                          .topic = KeyTopic::images,
                                          .keyText = u"Seleccionar todas",
                                          .icon = Icon::selectAll,
                                          .startsGroup = true,
                                          .run = [this] { selectAll(); },
                                          .isPossible = [this] { return hasImage(); }},
                                         {.menu = editMenu,
                                          .text = CommandText::discard.toString(),
                                          .keys = u"Ctrl+Shift+D",
                                          .topic = KeyTopic::images,
                                          .keyText = u"Descartar la actual",
                                          .icon = Icon::discard,
                                          .run = [this] { discardCurrent(); },
                                          .isPossible = [this] { return hasImage(); },
                                          .repeats = false}};
}

QList<MenuCommand> StudioCommands::layerCommands()
{
    struct LayerKey {
        QStringView move, size;    // texts of the commands
        QStringView moveKey, sizeKey;
        int right, down;    // pixels of the exported picture
        bool startsGroup = false;
    };
    static constexpr std::array layerKeys{
        LayerKey{u"Mover a la izquierda 1 px", u"Estrechar 1 px", u"Alt+Left", u"Ctrl+Shift+Left",
                 -1, 0},
        LayerKey{u"Mover a la derecha 1 px", u"Ensanchar 1 px", u"Alt+Right", u"Ctrl+Shift+Right",
                 1, 0},
        LayerKey{u"Mover hacia arriba 1 px", u"Acortar 1 px", u"Alt+Up", u"Ctrl+Shift+Up", 0, -1},
        LayerKey{u"Mover hacia abajo 1 px", u"Alargar 1 px", u"Alt+Down", u"Ctrl+Shift+Down", 0, 1},
        LayerKey{u"Mover a la izquierda 10 px", u"Estrechar 10 px", u"Alt+Shift+Left",
                 u"Ctrl+Alt+Shift+Left", -10, 0, true},
        LayerKey{u"Mover a la derecha 10 px", u"Ensanchar 10 px", u"Alt+Shift+Right",
                 u"Ctrl+Alt+Shift+Right", 10, 0},
        LayerKey{u"Mover hacia arriba 10 px", u"Acortar 10 px", u"Alt+Shift+Up",
                 u"Ctrl+Alt+Shift+Up", 0, -10},
        LayerKey{u"Mover hacia abajo 10 px", u"Alargar 10 px", u"Alt+Shift+Down",
                 u"Ctrl+Alt+Shift+Down", 0, 10},
    };
    const auto isPossible = [this] { return isTextSelected() || isShapeSelected(); };
    QList<MenuCommand> moves, sizes;
    for (const LayerKey& row : layerKeys) {
        const int right = row.right, down = row.down, pixels = std::abs(right + down);
        moves.append({.menu = moveMenu,
                      .text = row.move.toString(),
                      .keys = row.moveKey,
                      .topic = KeyTopic::layers,
                      .keyText = pixels == 1 ? u"Mover 1 px" : u"Mover 10 px",
                      .startsGroup = row.startsGroup,
                      .run = [this, right, down] { m_session.moveLayer(right, down); },
                      .isPossible = isPossible,
                      .place = m_parts.stage.canvas(),
                      .changesImages = true});
        sizes.append({.menu = sizeMenu,
                      .text = row.size.toString(),
                      .keys = row.sizeKey,
                      .topic = KeyTopic::layers,
                      .keyText = pixels == 1 ? u"Cambiar tamaño 1 px" : u"Cambiar tamaño 10 px",
                      .startsGroup = row.startsGroup,
                      .run = [this, right, down] { m_session.resizeLayer(right, down); },
                      .isPossible = isPossible,
                      .place = m_parts.stage.canvas(),
                      .changesImages = true});
    }
    return moves + sizes;
}

QList<MenuCommand> StudioCommands::viewCommands()
{
    const auto possible = [this] { return hasImage(); };
    QList<MenuCommand> commands{
        {.menu = viewMenu,
         .text = u"Imagen anterior"_s,
         .keys = u"PgUp",
         .topic = KeyTopic::images,
         .keyText = u"Desde cualquier sitio",
         .leadsTopic = true,
         .icon = Icon::previous,
         .run = [this] { step(-1); },
         .isPossible = [this] { return m_session.batch().selectedIndex > 0; },
         .changesImages = true,
         .keepsTyping = true},
        {.menu = viewMenu,
         .text = u"Imagen siguiente"_s,
         .keys = u"PgDown",
         .topic = KeyTopic::images,
         .keyText = u"Desde cualquier sitio",
         .leadsTopic = true,
         .icon = Icon::next,
         .run = [this] { step(1); },
         .isPossible =
             [this] {
                 return m_session.batch().selectedIndex + 1 < m_session.batch().items.size();
             },
         .changesImages = true,
         .keepsTyping = true},
    };
    for (const SocialFormat format : allCases<SocialFormat>()) {
        static constexpr std::array keys{u"Ctrl+Alt+1", u"Ctrl+Alt+2", u"Ctrl+Alt+3",
                                         u"Ctrl+Alt+4"};
        commands.append(
            {.menu = formatMenu,
             .text = rawValue(format),
             .keys = keys[std::size_t(format)],
             .topic = KeyTopic::places,
             .keyText = u"Formato",
             .run = [this, format] { m_session.setFormat(format); },
             .isChecked = [this, format] { return m_session.batch().format == format; }});
    }
    for (const auto& [text, mode] :
         {std::pair(u"Llenar"_s, ImageFitMode::fill), std::pair(u"Encajar"_s, ImageFitMode::fit)}) {
        commands.append({.menu = viewMenu,
                         .text = text,
                         .startsGroup = mode == ImageFitMode::fill,
                         .run = [this, mode = mode] { m_parts.stage.setFitMode(mode); },
                         .isPossible = possible,
                         .isChecked =
                             [this, mode = mode] {
                                 const auto* item = m_session.batch().currentItem();
                                 return item && item->placement.mode == mode;
                             },
                         .changesImages = true});
    }
    commands += {
        {.menu = viewMenu,
         .text = u"Foto al 100 %"_s,
         .keys = u"Ctrl+0",
         .topic = KeyTopic::photo,
         .keyText = u"Zoom 100 %",
         .run = [this] { m_parts.stage.setZoom(1); },
         .isPossible = possible},
        {.menu = viewMenu,
         .text = u"Acercar"_s,
         .keys = u"Ctrl++ Ctrl+=",
         .topic = KeyTopic::photo,
         .run = [this] { m_parts.stage.zoomBy(zoomStep); },
         .isPossible = possible},
        {.menu = viewMenu,
         .text = u"Alejar"_s,
         .keys = u"Ctrl+-",
         .topic = KeyTopic::photo,
         .run = [this] { m_parts.stage.zoomBy(-zoomStep); },
         .isPossible = possible},
        {.menu = viewMenu,
         .text = u"Centrar foto"_s,
         .run = [this] { m_parts.stage.centrePhoto(); },
         .isPossible = possible,
         .changesImages = true},
        {.menu = viewMenu,
         .text = u"Zona segura"_s,
         .run = [this] { m_parts.stage.setSafeZoneShown(!m_parts.stage.isSafeZoneShown()); },
         .isPossible = [this] { return m_session.batch().format == SocialFormat::storyReel; },
         .isChecked = [this] { return m_parts.stage.isSafeZoneShown(); }},
    };
    for (const auto& [text, keys, tab] :
         {std::tuple(u"Texto"_s, QStringView(u"Ctrl+1"), SideTab::text),
          std::tuple(u"Formas"_s, QStringView(u"Ctrl+2"), SideTab::shapes),
          std::tuple(u"Plantillas"_s, QStringView(u"Ctrl+3"), SideTab::templates)}) {
        commands.append({.menu = viewMenu,
                         .text = text,
                         .keys = keys,
                         .topic = KeyTopic::places,
                         .keyText = u"Texto, Formas, Plantillas",
                         .startsGroup = tab == SideTab::text,
                         .run = [this, tab = tab] { m_parts.look->showTab(tab); }});
    }
    KeptLook* const look = m_parts.look;
    commands += {
        {.menu = viewMenu,
         .text = u"Columna del lote"_s,
         .startsGroup = true,
         .run = [look] { look->setBatchColumnSeen(!look->isBatchColumnSeen()); },
         .isChecked = [look] { return look->isBatchColumnSeen(); }},
        {.menu = viewMenu,
         .text = u"Panel lateral"_s,
         .run = [look] { look->setSidePanelSeen(!look->isSidePanelSeen()); },
         .isChecked = [look] { return look->isSidePanelSeen(); }},
        {.menu = viewMenu,
         .text = u"Zona siguiente"_s,
         .keys = u"F6",
         .topic = KeyTopic::window,
         .keyText = u"Región siguiente",
         .run = [this] { m_parts.focus->goToRegion(1); }},
        {.menu = viewMenu,
         .text = u"Zona anterior"_s,
         .keys = u"Shift+F6",
         .topic = KeyTopic::window,
         .keyText = u"Región anterior",
         .run = [this] { m_parts.focus->goToRegion(-1); }},
    };
    Appearance& appearance = m_parts.appearance;
    for (const ThemeChoiceRow& theme : Vocabulary<ThemeChoice>::rows) {
        commands.append(
            {.menu = themeMenu,
             .text = theme.title.toString(),
             .run = [&appearance, choice = theme.value] { appearance.choose(choice); },
             .isChecked = [&appearance,
                           choice = theme.value] { return appearance.choice() == choice; },
             .isAlwaysUsable = true});
    }
    return commands;
}

// Keys of the whole window and of its text editors, which are no commands of the menu.
QList<MenuCommand> StudioCommands::otherKeys()
{
    return {
        {.menu = {},
         .text = u"Imagen anterior, siguiente"_s,
         .shownKey = u"← →",
         .topic = KeyTopic::images,
         .leadsTopic = true},
        {.menu = {},
         .text = u"Volver al lienzo, deseleccionar"_s,
         .shownKey = u"Esc",
         .topic = KeyTopic::layers},
        {.menu = {},
         .text = u"Cerrar diálogo o menú"_s,
         .shownKey = u"Esc",
         .topic = KeyTopic::window},
    };
}

QList<MenuCommand> StudioCommands::helpCommands()
{
    return {
        {.menu = helpMenu,
         .text = CommandText::keys.toString(),
         .keys = u"Ctrl+?",
         .topic = KeyTopic::window,
         .icon = Icon::keyboard,
         .run = [this] { Q_EMIT keysRequested(); }},
        {.menu = helpMenu,
         .text = u"Últimos avisos"_s,
         .run = [this] { m_parts.status.showHistory(); }},
        {.menu = helpMenu,
         .text = u"Copiar diagnóstico"_s,
         .run =
             [this] {
                 m_session.setStatus(u"Preparando el diagnóstico…"_s);
                 m_diagnostics->gather();
             },
         .isAlwaysUsable = true},
        {.menu = helpMenu,
         .text = CheckForUpdatesView::title.toString(),
         .run = [this] { CheckForUpdatesView{m_parts.updates}.press(); },
         .isPossible = [this] { return CheckForUpdatesView{m_parts.updates}.isEnabled(); }},
    };
}
