#include "app/window/StudioCommands.h"

#include "account/AccountSession.h"
#include "app/batch/BatchBinding.h"
#include "app/batch/BatchColumn.h"
#include "app/controls/StatusLine.h"
#include "app/copy/ComposeBar.h"
#include "app/export/ExportBinding.h"
#include "app/layers/PanelBinding.h"
#include "app/layers/SidePanel.h"
#include "app/layers/TextPanel.h"
#include "app/presets/TemplatesBinding.h"
#include "app/stage/EmptyState.h"
#include "app/stage/StageBinding.h"
#include "app/theme/Icons.h"
#include "app/window/FileIntake.h"
#include "app/window/KeptLook.h"
#include "app/window/StudioFocus.h"
#include "app/window/StudioMenu.h"
#include "app/window/StudioShell.h"
#include "canvas/interaction/CanvasInteractionView.h"
#include "studio/StudioSession.h"
#include "studio/TextTransfer.h"

#include <QAction>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

constexpr double zoomStep = 0.1;

constexpr QStringView fileMenu = u"Archivo", editMenu = u"Edición", viewMenu = u"Ver",
                      helpMenu = u"Ayuda", shapeMenu = u"Edición/Añadir forma",
                      formatMenu = u"Ver/Formato", themeMenu = u"Ver/Tema";

// Texts of commands that the tile's menu has as well.
const QString copyStyleText = u"Copiar estilo"_s, pasteStyleText = u"Pegar estilo"_s,
              exportCurrentText = u"Exportar actual…"_s,
              selectAllText = u"Seleccionar todas las imágenes"_s,
              discardText = u"Descartar imagen"_s;
// Texts of commands that buttons have as well.
const QString importImagesText = u"Importar imágenes…"_s, importFolderText = u"Importar carpeta…"_s,
              exportAllText = u"Exportar todo…"_s, undoText = u"Deshacer"_s,
              redoText = u"Rehacer"_s;

}    // namespace

StudioCommands::StudioCommands(const CommandParts& parts)
    : QObject(parts.window), m_parts(parts), m_session(parts.session),
      m_menu(new StudioMenu(table(), parts.window))
{
    connect(m_menu, &StudioMenu::chosen, this,
            [this](const MenuCommand& command) { run(command); });
    connect(m_parts.look, &KeptLook::changed, m_menu, &StudioMenu::showChecks);
    connectButtons();
}

void StudioCommands::connectButtons()
{
    const auto runs = [this](const QString& text) {
        return [this, text] { m_menu->action(text)->trigger(); };
    };
    const TopBar* top = m_parts.shell->topBar();
    connect(top, &TopBar::importImagesRequested, this, runs(importImagesText));
    connect(top, &TopBar::importFolderRequested, this, runs(importFolderText));
    connect(top, &TopBar::undoRequested, this, runs(undoText));
    connect(top, &TopBar::redoRequested, this, runs(redoText));
    ExportButtons* exports = top->exports();
    exports->setKeys(m_menu->keyOf(exportCurrentText), m_menu->keyOf(exportAllText));
    connect(exports, &ExportButtons::currentRequested, this, runs(exportCurrentText));
    connect(exports, &ExportButtons::severalRequested, this, runs(exportAllText));
    const EmptyState* empty = m_parts.shell->emptyState();
    connect(empty, &EmptyState::importImagesRequested, this, runs(importImagesText));
    connect(empty, &EmptyState::importFolderRequested, this, runs(importFolderText));
    const BatchColumn* column = m_parts.shell->batchColumn();
    connect(column, &BatchColumn::selectAllRequested, this, runs(selectAllText));
    connect(column, &BatchColumn::discardRequested, this, runs(discardText));
    connect(column, &BatchColumn::contextMenuRequested, this, &StudioCommands::showTileMenu);
}

QList<MenuCommand> StudioCommands::table()
{
    return fileCommands() + editCommands() + viewCommands() + helpCommands();
}

QList<MenuCommand> StudioCommands::fileCommands()
{
    const auto canExport = [this] { return refusalOf(m_parts.exports.offer()).isEmpty(); };
    const auto isExporting = [this] { return m_session.isExporting(); };
    return {
        {.menu = fileMenu,
         .text = importImagesText,
         .keys = u"Ctrl+O",
         .icon = Icon::importImages,
         .run = [this] { m_parts.files->choosePhotos(); }},
        {.menu = fileMenu,
         .text = importFolderText,
         .keys = u"Ctrl+Shift+O",
         .icon = Icon::importFolder,
         .run = [this] { m_parts.files->chooseFolder(); }},
        {.menu = fileMenu,
         .text = exportCurrentText,
         .keys = u"Ctrl+E",
         .icon = Icon::exportCurrent,
         .startsGroup = true,
         .run = [this] { m_parts.exports.exportCurrent(); },
         .isPossible = canExport},
        {.menu = fileMenu,
         .text = exportAllText,
         .keys = u"Ctrl+Shift+E",
         .icon = Icon::exportAll,
         .run = [this] { m_parts.exports.exportSeveral(); },
         .isPossible = canExport,
         .wording = [this] { return exportSeveralText(m_parts.exports.offer().selected) + u'…'; }},
        {.menu = fileMenu,
         .text = u"Detener la importación"_s,
         .keys = u"Ctrl+.",
         .run = [this] { m_parts.exports.stop(); },
         .isPossible = [this] { return m_session.isExporting() || m_session.isImporting(); },
         .wording =
             [isExporting] {
                 return isExporting() ? u"Detener la exportación"_s : u"Detener la importación"_s;
             }},
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
         .startsGroup = true,
         .run = [this] { m_parts.window->close(); },
         .isAlwaysUsable = true},
    };
}

QList<MenuCommand> StudioCommands::editCommands()
{
    const auto isLayerSelected = [this] { return isTextSelected() || isShapeSelected(); };
    QList<MenuCommand> commands{
        {.menu = editMenu,
         .text = undoText,
         .keys = u"Ctrl+Z",
         .icon = Icon::undo,
         .run = [this] { m_session.undo(); },
         .isPossible = [this] { return m_session.canUndo(); },
         .changesImages = true},
        {.menu = editMenu,
         .text = redoText,
         .keys = u"Ctrl+Shift+Z Ctrl+Y",
         .icon = Icon::redo,
         .run = [this] { m_session.redo(); },
         .isPossible = [this] { return m_session.canRedo(); },
         .changesImages = true},
        {.menu = editMenu,
         .text = u"Editar el texto"_s,
         .toldKey = u"Intro",
         .startsGroup = true,
         .run = [this] { editSelected(); },
         .isPossible = [this] { return isTextSelected(); },
         .changesImages = true,
         .keepsTyping = true},
        {.menu = editMenu,
         .text = u"Ocultar texto o eliminar forma"_s,
         .toldKey = u"Supr",
         .run = [this] { removeLayer(); },
         .isPossible = isLayerSelected,
         .changesImages = true},
        {.menu = editMenu,
         .text = copyStyleText,
         .keys = u"Ctrl+Alt+C",
         .run = [this] { m_session.copyStyle(); },
         .isPossible = isLayerSelected,
         .changesImages = true},
        {.menu = editMenu,
         .text = pasteStyleText,
         .keys = u"Ctrl+Alt+V",
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
                                          .text = selectAllText,
                                          .keys = u"Ctrl+A",
                                          .icon = Icon::selectAll,
                                          .startsGroup = true,
                                          .run = [this] { selectAll(); },
                                          .isPossible = [this] { return hasImage(); }},
                                         {.menu = editMenu,
                                          .text = discardText,
                                          .keys = u"Ctrl+Shift+D",
                                          .icon = Icon::discard,
                                          .run = [this] { discardCurrent(); },
                                          .isPossible = [this] { return hasImage(); },
                                          .repeats = false}};
}

QList<MenuCommand> StudioCommands::viewCommands()
{
    const auto possible = [this] { return hasImage(); };
    QList<MenuCommand> commands{
        {.menu = viewMenu,
         .text = u"Imagen anterior"_s,
         .keys = u"PgUp",
         .icon = Icon::previous,
         .run = [this] { step(-1); },
         .isPossible = [this] { return m_session.batch().selectedIndex > 0; },
         .changesImages = true,
         .keepsTyping = true},
        {.menu = viewMenu,
         .text = u"Imagen siguiente"_s,
         .keys = u"PgDown",
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
         .run = [this] { m_parts.stage.setZoom(1); },
         .isPossible = possible},
        {.menu = viewMenu,
         .text = u"Acercar"_s,
         .keys = u"Ctrl++ Ctrl+=",
         .run = [this] { m_parts.stage.zoomBy(zoomStep); },
         .isPossible = possible},
        {.menu = viewMenu,
         .text = u"Alejar"_s,
         .keys = u"Ctrl+-",
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
         .run = [this] { m_parts.focus->goToRegion(1); }},
        {.menu = viewMenu,
         .text = u"Zona anterior"_s,
         .keys = u"Shift+F6",
         .run = [this] { m_parts.focus->goToRegion(-1); }},
        {.menu = themeMenu,
         .text = u"Oscuro"_s,
         .run = [look] { look->setLight(false); },
         .isChecked = [look] { return !look->isLight(); },
         .isAlwaysUsable = true},
        {.menu = themeMenu,
         .text = u"Claro"_s,
         .run = [look] { look->setLight(true); },
         .isChecked = [look] { return look->isLight(); },
         .isAlwaysUsable = true},
    };
    return commands;
}

QList<MenuCommand> StudioCommands::helpCommands()
{
    return {
        {.menu = helpMenu,
         .text = u"Últimos avisos"_s,
         .run = [this] { m_parts.shell->statusLine()->showHistory(); }},
        {.menu = helpMenu,
         .text = u"Buscar actualizaciones..."_s,
         .run = [] {},
         .isPossible = [] { return false; }},
    };
}

bool StudioCommands::hasImage() const
{
    return m_session.batch().currentItem();
}

bool StudioCommands::isShapeSelected() const
{
    const PublicationItem* item = m_session.batch().currentItem();
    return item && std::ranges::find(item->shapeLayers, m_session.batch().selectedLayerID,
                                     &ShapeLayer::id) != item->shapeLayers.end();
}

bool StudioCommands::isTextSelected() const
{
    return hasImage() && !m_session.batch().selectedLayerID.isNull() && !isShapeSelected();
}

void StudioCommands::run(const MenuCommand& command)
{
    if (command.changesImages && m_parts.batch.showsIncoming()) {
        m_session.setStatus(u"Espera a que termine la importación de imágenes."_s,
                            StatusTone::problem);
        return;
    }
    // Cancels a drag on the canvas, and ends the typing of an objective, so that it is a step of
    // its own that the command may undo.
    m_parts.stage.canvas()->interaction().cancel();
    m_parts.shell->composeBar()->finishEdit();
    if (!command.keepsTyping)
        m_parts.focus->endEdits();
    command.run();
}

void StudioCommands::importTexts()
{
    if (const QString refusal = refusalOfTexts(m_session); !refusal.isEmpty())
        m_session.setStatus(refusal, StatusTone::problem);
    else
        m_parts.files->chooseTexts(QFileDialog::AcceptOpen);
}

// While a text is edited, the text of that slot in the other image gets the focus, all selected.
void StudioCommands::step(int images)
{
    const std::optional<CopySlot> slot = m_parts.shell->sidePanel()->textPanel()->editedSlot();
    const int before = m_session.batch().selectedIndex;
    if (images < 0)
        m_session.previousItem();
    else
        m_session.nextItem();
    if (slot && m_session.batch().selectedIndex != before)
        m_parts.panel.edit(*slot);
}

// While the column shows an import's images, it must not change the batch.
void StudioCommands::selectAll()
{
    if (!m_parts.batch.showsIncoming())
        m_session.selectAll();
}

void StudioCommands::discardCurrent()
{
    if (!m_parts.batch.showsIncoming())
        m_session.removeCurrentItem();
}

void StudioCommands::removeLayer()
{
    m_parts.stage.canvas()->hideSelectedLayer();
}

void StudioCommands::editSelected()
{
    m_parts.panel.editSelected();
}

void StudioCommands::addShape(ShapeKind kind)
{
    m_session.addShape(kind);
    m_parts.panel.follow(m_session.batch().selectedLayerID);
}

void StudioCommands::showTileMenu(int index, QPoint globalPosition)
{
    if (index < 0 || index >= m_session.batch().items.size() || m_parts.batch.showsIncoming())
        return;
    if (!m_session.batch().selectedItemIDs.contains(m_session.batch().items[index].id))
        m_session.selectSingleIndex(index);
    auto* menu = new QMenu(m_parts.window);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const QUuid id = m_session.batch().items[index].id;
    // Shows the key of the program menu's command, whose action alone reacts to the key.
    const auto add = [&](Icon icon, const QString& command, const QString& text, auto act) {
        QAction* action = menu->addAction(menuIcon(icon), text + u'\t' + m_menu->keyOf(command));
        connect(action, &QAction::triggered, this, act);
        return action;
    };
    QAction* exporting =
        add(Icon::exportCurrent, exportCurrentText, u"Exportar actual"_s, [this, id] {
            m_parts.focus->endEdits();
            m_parts.exports.exportItem(id);
        });
    exporting->setEnabled(refusalOf(m_parts.exports.offer()).isEmpty());
    menu->addSeparator();
    add(Icon::copyStyle, copyStyleText, copyStyleText, [this, id] { m_session.copyStyleOf(id); });
    QAction* paste =
        add(Icon::pasteStyle, pasteStyleText, pasteStyleText, [this] { m_session.pasteStyle(); });
    paste->setEnabled(m_session.canPasteStyle());
    menu->addSeparator();
    add(Icon::selectAll, selectAllText, selectAllText, [this] { selectAll(); });
    add(Icon::discard, discardText, discardText, [this, id] { m_session.removeItem(id); });
    menu->popup(globalPosition);
}
