#include "app/window/StudioCommands.h"

#include "account/AccountSession.h"
#include "app/batch/BatchBinding.h"
#include "app/batch/BatchColumn.h"
#include "app/copy/ComposeBar.h"
#include "app/desktop/Appearance.h"
#include "app/export/ExportBinding.h"
#include "app/layers/PanelBinding.h"
#include "app/layers/SidePanel.h"
#include "app/layers/TextPanel.h"
#include "app/presets/TemplatesBinding.h"
#include "app/stage/EmptyState.h"
#include "app/stage/StageBinding.h"
#include "app/theme/Icons.h"
#include "app/window/CommandText.h"
#include "app/window/Diagnostics.h"
#include "app/window/FileIntake.h"
#include "app/window/KeptLook.h"
#include "app/window/StudioFocus.h"
#include "app/window/StudioMenu.h"
#include "app/window/StudioShell.h"
#include "canvas/interaction/CanvasInteractionView.h"
#include "platform/NotificationCenter.h"
#include "platform/UserFolders.h"
#include "studio/StudioSession.h"
#include "studio/TextTransfer.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>

using namespace Qt::StringLiterals;

StudioCommands::StudioCommands(const CommandParts& parts)
    : QObject(parts.window), m_parts(parts), m_session(parts.session),
      m_menu(new StudioMenu(table(), parts.window)),
      m_diagnostics(new Diagnostics(QCoreApplication::applicationFilePath(), logFile(), this))
{
    connect(m_menu, &StudioMenu::chosen, this,
            [this](const MenuCommand& command) { choose(command); });
    connect(m_parts.look, &KeptLook::changed, m_menu, &StudioMenu::showChecks);
    connect(&m_parts.appearance, &Appearance::changed, m_menu, &StudioMenu::showChecks);
    connectButtons();
    connectDiagnostics();
}

void StudioCommands::connectDiagnostics()
{
    connect(m_diagnostics, &Diagnostics::gathered, this, [this](const QString& text) {
        QGuiApplication::clipboard()->setText(text);
        m_session.setStatus(u"Diagnóstico copiado en el portapapeles."_s, StatusKind::done);
    });
}

void StudioCommands::connectButtons()
{
    const auto runs = [this](QStringView text) {
        return [this, text] { m_menu->action(text)->trigger(); };
    };
    const TopBar* top = m_parts.shell->topBar();
    connect(top, &TopBar::importImagesRequested, this, runs(CommandText::importImages));
    connect(top, &TopBar::importFolderRequested, this, runs(CommandText::importFolder));
    connect(top, &TopBar::undoRequested, this, runs(CommandText::undo));
    connect(top, &TopBar::redoRequested, this, runs(CommandText::redo));
    ExportButtons* exports = top->exports();
    exports->setKeys(m_menu->keyOf(CommandText::exportCurrent),
                     m_menu->keyOf(CommandText::exportAll));
    connect(exports, &ExportButtons::currentRequested, this, runs(CommandText::exportCurrent));
    connect(exports, &ExportButtons::severalRequested, this, runs(CommandText::exportAll));
    connect(top, &TopBar::publishRequested, this, runs(CommandText::publish));
    ComposeBar* compose = m_parts.shell->composeBar();
    compose->setKeys(m_menu->keyOf(CommandText::generate), m_menu->keyOf(CommandText::stop));
    connect(compose, &ComposeBar::generateRequested, this, runs(CommandText::generate));
    const EmptyState* empty = m_parts.shell->emptyState();
    connect(empty, &EmptyState::importImagesRequested, this, runs(CommandText::importImages));
    connect(empty, &EmptyState::importFolderRequested, this, runs(CommandText::importFolder));
    connect(empty, &EmptyState::placeRequested, m_parts.files, &FileIntake::openRecent);
    const BatchColumn* column = m_parts.shell->batchColumn();
    connect(column, &BatchColumn::selectAllRequested, this, runs(CommandText::selectAll));
    connect(column, &BatchColumn::discardRequested, this, runs(CommandText::discard));
    connect(column, &BatchColumn::contextMenuRequested, this, &StudioCommands::showTileMenu);
}

QList<MenuCommand> StudioCommands::table()
{
    return otherKeys() + importCommands() + recentCommands() + fileCommands() + editCommands() +
           layerCommands() + viewCommands() + helpCommands();
}

bool StudioCommands::canGenerate() const
{
    return !m_session.isAnalyzing() && m_session.copy().whyNotGenerate().isEmpty();
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

void StudioCommands::choose(const MenuCommand& command)
{
    if (command.notification.isEmpty())
        run(command);
    else
        notificationCenter().post(command.notification);
}

void StudioCommands::undo()
{
    runForBatch(CommandText::undo, "undo");
}

void StudioCommands::redo()
{
    runForBatch(CommandText::redo, "redo");
}

// Runs a command of the menu or, if it is locked, calls the slot of the focused text field.
void StudioCommands::runForBatch(QStringView text, const char* slotOfField)
{
    if (m_menu->action(text)->isEnabled() && !QApplication::activeModalWidget())
        return run(m_menu->command(text));
    QWidget* field = QApplication::focusWidget();
    const QByteArray signature = QByteArray(slotOfField) + "()";
    if (field && field->metaObject()->indexOfSlot(signature.constData()) >= 0)
        QMetaObject::invokeMethod(field, slotOfField);
}

void StudioCommands::run(const MenuCommand& command)
{
    if (command.changesImages && m_parts.batch.showsIncoming()) {
        m_session.setStatus(u"Espera a que termine la importación de imágenes."_s,
                            StatusKind::warning);
        return;
    }
    // Cancels a drag on the canvas. Ends an edit of the objective, so that the typed text is what
    // the undo command takes back.
    m_parts.stage.canvas()->interaction().cancel();
    m_parts.shell->composeBar()->finishEdit();
    if (!command.keepsTyping)
        m_parts.focus->endEdits();
    command.run();
}

void StudioCommands::importTexts()
{
    if (const QString refusal = refusalOfTexts(m_session); !refusal.isEmpty())
        m_session.setStatus(refusal, StatusKind::warning);
    else
        m_parts.files->chooseTexts(QFileDialog::AcceptOpen);
}

// Goes to the next image, or to the previous one if `images` is negative. If a text is being
// edited, puts the focus into the same slot's text of the new image, with all the text selected.
void StudioCommands::step(int images)
{
    const TextPanel* texts = m_parts.shell->sidePanel()->textPanel();
    const std::optional<CopySlot> slot = texts->editedSlot();
    const bool isCaption = texts->isCaptionEdited();
    const int before = m_session.batch().selectedIndex;
    if (images < 0)
        m_session.previousItem();
    else
        m_session.nextItem();
    if (m_session.batch().selectedIndex == before)
        return;
    if (slot)
        m_parts.panel.edit(*slot);
    else if (isCaption)
        m_parts.panel.editCaption();
}

// Does nothing while the batch column shows the images of an import instead of the batch.
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
    // Shows the key of the same command in the main menu as text, after a tab. Sets no shortcut: Qt
    // runs neither of two actions with the same shortcut.
    const auto add = [&](Icon icon, QStringView command, QStringView text, auto act) {
        QAction* action =
            menu->addAction(menuIcon(icon), text.toString() + u'\t' + m_menu->keyOf(command));
        connect(action, &QAction::triggered, this, act);
        return action;
    };
    QAction* generating = add(Icon::generate, CommandText::generate, CommandText::generate,
                              [this] { m_menu->action(CommandText::generate)->trigger(); });
    generating->setEnabled(canGenerate());
    QAction* exporting =
        add(Icon::exportCurrent, CommandText::exportCurrent, u"Exportar actual", [this, id] {
            m_parts.focus->endEdits();
            m_parts.exports.exportItem(id);
        });
    exporting->setEnabled(refusalOf(m_parts.exports.offer()).isEmpty());
    menu->addSeparator();
    add(Icon::copyStyle, CommandText::copyStyle, CommandText::copyStyle,
        [this, id] { m_session.copyStyleOf(id); });
    QAction* paste = add(Icon::pasteStyle, CommandText::pasteStyle, CommandText::pasteStyle,
                         [this] { m_session.pasteStyle(); });
    paste->setEnabled(m_session.canPasteStyle());
    menu->addSeparator();
    add(Icon::selectAll, CommandText::selectAll, CommandText::selectAll, [this] { selectAll(); });
    add(Icon::discard, CommandText::discard, CommandText::discard,
        [this, id] { m_session.removeItem(id); });
    menu->popup(globalPosition);
}
