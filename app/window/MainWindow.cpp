#include "app/window/MainWindow.h"

#include "account/AccountSession.h"
#include "app/account/AccountBinding.h"
#include "app/account/AuthGateView.h"
#include "app/account/LoginView.h"
#include "app/account/UserAccountButton.h"
#include "app/batch/BatchBinding.h"
#include "app/batch/BatchColumn.h"
#include "app/controls/StatusLine.h"
#include "app/controls/fields/LineField.h"
#include "app/controls/popovers/FocusRound.h"
#include "app/copy/ComposeBar.h"
#include "app/export/ExportBinding.h"
#include "app/export/ExportButtons.h"
#include "app/layers/PanelBinding.h"
#include "app/layers/SidePanel.h"
#include "app/layers/TextPanel.h"
#include "app/presets/PresetGrid.h"
#include "app/presets/TemplatesBinding.h"
#include "app/stage/EmptyState.h"
#include "app/stage/StageBinding.h"
#include "app/stage/StagePanel.h"
#include "app/stage/ViewBar.h"
#include "app/theme/Icons.h"
#include "app/theme/KeyboardFocus.h"
#include "app/theme/Theme.h"
#include "app/window/FileIntake.h"
#include "app/window/StudioMenu.h"
#include "app/window/StudioShell.h"
#include "app/window/TopBar.h"
#include "canvas/interaction/CanvasInteractionView.h"
#include "platform/PreferencesStore.h"
#include "studio/StudioSession.h"
#include "studio/TextTransfer.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QScreen>

using namespace Qt::StringLiterals;

namespace {

const QString themeKey = u"moltiva.theme"_s;
const QString batchWidthKey = u"moltiva.batchColumnWidth"_s;
const QString geometryKey = u"moltiva.windowGeometry"_s;
constexpr int narrowWindow = 1280;
const QString panelWidthKey = u"moltiva.sidePanelWidth"_s;
const QString importedKey = u"moltiva.hasImported"_s;
const QString batchHiddenKey = u"moltiva.batchColumnHidden"_s;
const QString panelHiddenKey = u"moltiva.sidePanelHidden"_s;
constexpr double zoomStep = 0.1;
const QByteArray lightName = "light", darkName = "dark", yes = "yes", no = "no";

QList<FormatChoice> formatChoices()
{
    QList<FormatChoice> choices;
    for (const auto& format : Vocabulary<SocialFormat>::rows) {
        const QString ratio = format.ratioLabel.toString();
        choices.append({ratio, format.rawValue.toString(), QString(ratio).replace(u':', u" a "_s),
                        format.exportSize.toSize()});
    }
    return choices;
}

// Of the batch, or among its images: while others are coming it is not seen.
bool changesImages(Command command)
{
    using enum Command;
    static const QSet<Command> commands{undo,        redo,       editText,     removeLayer,
                                        copyStyle,   pasteStyle, addRectangle, addCircle,
                                        addTriangle, addLine,    saveTemplate, previousImage,
                                        nextImage,   fill,       fit,          centrePhoto};
    return commands.contains(command);
}

StatusKind kindOf(StatusTone tone)
{
    switch (tone) {
    case StatusTone::info:
        return StatusKind::info;
    case StatusTone::done:
        return StatusKind::ok;
    case StatusTone::problem:
        return StatusKind::warning;
    case StatusTone::failure:
        return StatusKind::error;
    }
    Q_UNREACHABLE();
}

}    // namespace

MainWindow::MainWindow(StudioSession& session, AccountSession& account,
                       const std::shared_ptr<PhotoCache>& photos, PreferencesStore& preferences)
    : m_session(session), m_accountSession(account), m_preferences(preferences),
      m_shell(new StudioShell(formatChoices(), this)),
      m_batch(std::make_unique<BatchBinding>(session, m_shell->batchColumn(), photos)),
      m_stage(
          std::make_unique<StageBinding>(session, m_shell->stage(), m_shell->viewBar(), photos)),
      m_panel(std::make_unique<PanelBinding>(session, m_shell->sidePanel(), photos, preferences,
                                             *m_batch)),
      m_templates(std::make_unique<TemplatesBinding>(
          session, m_shell->sidePanel()->templatesPanel(),
          m_shell->sidePanel()->textPanel()->styles(), photos, preferences)),
      m_files(new FileIntake(session, preferences, this)), m_menu(new StudioMenu(this)),
      m_exports(std::make_unique<ExportBinding>(session, account, *m_batch,
                                                m_shell->topBar()->exports(), m_shell->statusLine(),
                                                preferences, this)),
      m_gate(new AuthGateView(this)),
      m_account(std::make_unique<AccountBinding>(account, session, m_gate,
                                                 m_shell->topBar()->account(), this))
{
    setWindowTitle(u"Moltiva"_s);
    setAcceptDrops(true);
    setMinimumSize(1200, 720);
    // Less than the screen where that is small, with room for the frame that the system adds.
    resize(QSize(1440, 900).boundedTo(screen()->availableSize() - QSize(0, 40)));
    connectPanels();
    connectSession();
    connectAccount();
    restorePreferences();
    focusCanvas();    // else the first button takes the focus, and with it the arrows
    showBatch();
    showStatus();
    lockStudio();
}

// A field that still has the focus ends its edit as it goes: that reaches the session, but must not
// come back to a window whose members are gone.
MainWindow::~MainWindow()
{
    disconnect(&m_session, nullptr, this, nullptr);
    m_account.reset();
    disconnect(qApp, nullptr, this, nullptr);
}

bool MainWindow::isSettled() const
{
    return m_session.didRestoreWorkspace() && !m_session.isImporting() && m_batch->isIdle() &&
           m_stage->isIdle() && m_templates->isIdle();
}

void MainWindow::connectPanels()
{
    const auto runs = [this](Command command) { return [this, command] { run(command); }; };
    const TopBar* top = m_shell->topBar();
    connect(top, &TopBar::importImagesRequested, this, runs(Command::importImages));
    connect(top, &TopBar::importFolderRequested, this, runs(Command::importFolder));
    connect(top, &TopBar::undoRequested, this, runs(Command::undo));
    connect(top, &TopBar::redoRequested, this, runs(Command::redo));
    connect(top, &TopBar::formatChosen, this,
            [this](int index) { m_session.setFormat(SocialFormat(index)); });
    connect(m_shell->emptyState(), &EmptyState::importImagesRequested, this,
            runs(Command::importImages));
    connect(m_shell->emptyState(), &EmptyState::importFolderRequested, this,
            runs(Command::importFolder));
    connect(m_shell->composeBar(), &ComposeBar::objectiveEdited, &m_session,
            &StudioSession::setObjective);

    const BatchColumn* column = m_shell->batchColumn();
    connect(column, &BatchColumn::selectAllRequested, this, runs(Command::selectAll));
    connect(column, &BatchColumn::discardRequested, this, runs(Command::discard));
    connect(column, &BatchColumn::contextMenuRequested, this, &MainWindow::showTileMenu);

    connect(m_stage.get(), &StageBinding::layerChosen, m_panel.get(), &PanelBinding::follow);
    connect(m_stage.get(), &StageBinding::editRequested, m_panel.get(), &PanelBinding::edit);
    connect(m_stage.get(), &StageBinding::photoFound, m_batch.get(), &BatchBinding::photoFound);
    connect(m_stage.get(), &StageBinding::photoMissing, this, [this](QUuid item) {
        m_batch->photoMissing(item);
        m_session.setStatus(u"No se puede leer la foto de %1. ¿Se ha movido o borrado?"_s.arg(
                                m_session.batch().currentItem()->filename()),
                            StatusTone::failure);
    });
    connect(m_stage.get(), &StageBinding::previewRefused, m_templates.get(),
            &TemplatesBinding::endPreview);
    connect(m_templates.get(), &TemplatesBinding::previewChanged, this,
            [this](const std::optional<PublicationItem>& item) {
                m_shell->stage()->setPreviewed(item.has_value());
                m_stage->preview(item);
            });
    connect(
        m_templates.get(), &TemplatesBinding::told, this,
        [this](const QString& sentence, StatusTone tone) { m_session.setStatus(sentence, tone); });
    connect(m_templates.get(), &TemplatesBinding::panelRequested, this,
            [this] { m_shell->sidePanel()->setTab(SideTab::templates); });
    connect(m_panel.get(), &PanelBinding::leaveRequested, this, &MainWindow::focusCanvas);

    const auto keyOf = [this](Command command) {
        return m_menu->action(command)->shortcut().toString(QKeySequence::NativeText);
    };
    top->exports()->setKeys(keyOf(Command::exportCurrent), keyOf(Command::exportAll));
    connect(top->exports(), &ExportButtons::currentRequested, this, runs(Command::exportCurrent));
    connect(top->exports(), &ExportButtons::severalRequested, this, runs(Command::exportAll));
    connect(m_exports.get(), &ExportBinding::statusOutdated, this, &MainWindow::showStatus);
    connect(m_exports.get(), &ExportBinding::closeRequested, this, &QWidget::close);
    connect(m_exports.get(), &ExportBinding::leaveRequested, this, &MainWindow::focusCanvas);
    connect(m_shell->statusLine(), &StatusLine::leaveRequested, this, &MainWindow::focusCanvas);
    connect(m_shell->statusLine(), &StatusLine::linkRequested, this,
            [this] { m_shell->statusLine()->showDetails(m_session.statusLink().details); });
    connect(m_shell, &StudioShell::batchWidthDragged, this, [this](int width) {
        m_preferences.setValue(batchWidthKey, QByteArray::number(width));
    });
    connect(m_shell, &StudioShell::panelWidthDragged, this, [this](int width) {
        m_preferences.setValue(panelWidthKey, QByteArray::number(width));
    });
    m_shell->topBar()->setMenu(m_menu->menu());
    connect(m_menu, &StudioMenu::chosen, this, &MainWindow::run);
    connect(m_menu, &StudioMenu::aboutToShow, this, &MainWindow::showMenu);
    connect(qApp, &QApplication::focusChanged, this, &MainWindow::showHints);
}

void MainWindow::connectSession()
{
    connect(&m_session, &StudioSession::aboutToMove, this, &MainWindow::endEdits);
    connect(&m_session, &StudioSession::batchChanged, this, &MainWindow::showBatch);
    connect(&m_session, &StudioSession::statusChanged, this, [this] {
        showStatus();
        // The line lies under the gate.
        if (isGated() && m_session.statusTone() == StatusTone::problem)
            m_gate->login()->tellProblem(m_session.status());
    });
    connect(&m_session, &StudioSession::importChanged, this, [this] {
        m_batch->show();
        showStage();
        m_panel->show();
        m_exports->show();
        showStatus();
    });
}

void MainWindow::connectAccount()
{
    connect(m_account.get(), &AccountBinding::gateOpened, this, [this] {
        lockStudio();
        focusCanvas();
        openWaiting();
    });
    connect(m_account.get(), &AccountBinding::gateClosed, this, &MainWindow::lockStudio);
    connect(m_account.get(), &AccountBinding::sheetChanged, this, &MainWindow::lockStudio);
    connect(m_account.get(), &AccountBinding::textPanelRequested, this,
            [this] { showTab(SideTab::text); });
    connect(m_account.get(), &AccountBinding::working, this, [this] {
        tell({.kind = StatusKind::busy, .sentence = u"Conectando con tu cuenta…"_s});
    });
    connect(m_account.get(), &AccountBinding::told, this,
            [this](const QString& message, bool isProblem) {
                // The session's own sentence is told at the sign-in form, too.
                if (isGated() || message.isEmpty())
                    tell({isProblem ? StatusKind::warning : StatusKind::ok, message});
                else
                    m_session.setStatus(message,
                                        isProblem ? StatusTone::problem : StatusTone::done);
            });
}

bool MainWindow::isGated() const
{
    return m_gate->state() != Gate::open;
}

// What lies over the studio takes its keys and commands; the gate also what could reach it by Tab
// or by a screen reader.
void MainWindow::lockStudio()
{
    const bool isLocked = isGated() || m_account->isSheetPresented();
    if (isLocked)
        endEdits();
    m_menu->setLocked(isLocked);
    m_shell->setEnabled(!isGated());
    m_shell->setCovered(isLocked);
    showHints();
}

void MainWindow::openWaiting()
{
    const QList<QUrl> given = std::exchange(m_given, {});
    const QList<QUrl> dropped = std::exchange(m_dropped, {});
    showWaiting();
    if (given.isEmpty() && !dropped.isEmpty())
        m_files->drop(dropped);
    else
        m_files->open(given + dropped);
}

void MainWindow::showWaiting()
{
    m_gate->login()->setWaitingFiles(int(m_given.size() + m_dropped.size()));
}

// A drag, a number being typed or held, or a colour being chosen belongs to the layer it was begun
// on.
void MainWindow::endEdits()
{
    m_stage->canvas()->interaction().cancel();
    if (qobject_cast<LineField*>(focusWidget()))
        focusCanvas();
    m_shell->sidePanel()->endEdits();
    m_shell->viewBar()->endEdits();
}

void MainWindow::restorePreferences()
{
    chooseTheme(m_preferences.value(themeKey) == lightName ? Command::lightTheme
                                                           : Command::darkTheme);
    const auto number = [this](const QString& key) -> std::optional<int> {
        const auto stored = m_preferences.value(key);
        return stored && stored->toInt() > 0 ? std::optional(stored->toInt()) : std::nullopt;
    };
    m_shell->setBatchWidth(number(batchWidthKey));
    m_shell->setPanelWidth(number(panelWidthKey));
    showColumn(Command::batchColumn, m_preferences.value(batchHiddenKey) != yes);
    showColumn(Command::sidePanel, m_preferences.value(panelHiddenKey) != yes);
    m_hasImported = m_preferences.value(importedKey) == yes;
    if (const auto geometry = m_preferences.value(geometryKey))
        restoreGeometry(*geometry);
}

void MainWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    // Whatever was in front may have moved or changed the photos.
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        m_session.lookAtPhotos();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (m_exports->delaysClosing())
        return event->ignore();
    // What is still being typed counts.
    m_shell->composeBar()->finishEdit();
    focusCanvas();
    m_session.saveWorkspace();
    m_preferences.setValue(geometryKey, saveGeometry());
    QWidget::closeEvent(event);
}

void MainWindow::open(const QList<QUrl>& addresses)
{
    QList<QUrl> files;
    for (const QUrl& address : addresses) {
        if (address.isLocalFile())
            files.append(address);
        else if (!m_accountSession.handleDeepLink(address))
            refuseLink();
    }
    if (!isGated())
        return m_files->open(files);
    m_given += files;
    showWaiting();
}

void MainWindow::refuseLink()
{
    const QString sentence = u"Moltiva no reconoce el enlace que se ha abierto."_s;
    tell({StatusKind::warning, sentence});
    if (isGated())
        m_gate->login()->tellProblem(sentence);
}

void MainWindow::comeForward()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void MainWindow::run(Command command)
{
    if (m_batch->showsIncoming() && changesImages(command)) {
        m_session.setStatus(u"Espera a que termine la importación de imágenes."_s,
                            StatusTone::problem);
        return;
    }
    // A drag that a command comes upon is given up, and an objective that is being typed is an edit
    // like any other: to be undone it must be one first.
    m_stage->canvas()->interaction().cancel();
    m_shell->composeBar()->finishEdit();
    if (command != Command::editText && command != Command::nextImage &&
        command != Command::previousImage)
        endEdits();
    switch (command) {
    case Command::importImages:
        return m_files->choosePhotos();
    case Command::importFolder:
        return m_files->chooseFolder();
    case Command::exportCurrent:
        return m_exports->exportCurrent();
    case Command::exportAll:
        return m_exports->exportSeveral();
    case Command::stop:
        return m_exports->stop();
    case Command::importTexts:
        if (const QString refusal = refusalOfTexts(m_session); !refusal.isEmpty())
            return m_session.setStatus(refusal, StatusTone::problem);
        return m_files->chooseTexts(QFileDialog::AcceptOpen);
    case Command::exportTexts:
        return m_files->chooseTexts(QFileDialog::AcceptSave);
    case Command::restoreAside:
        return m_session.restoreWorkspaceAside();
    case Command::saveTemplate:
        showTab(SideTab::templates);
        return m_templates->saveTemplate();
    case Command::importTemplate:
        showTab(SideTab::templates);
        return m_templates->chooseDefinition();
    case Command::account:
        return m_session.setAccountPanel(AccountPanelDestination::account);
    case Command::appSettings:
        return m_session.setAppSettingsPresented(true);
    case Command::signOut:
        if (!m_accountSession.isWorking())
            m_accountSession.logout();
        return;
    case Command::quit:
        close();
        return;
    case Command::undo:
        return m_session.undo();
    case Command::redo:
        return m_session.redo();
    case Command::editText:
        return m_panel->editSelected();
    case Command::removeLayer:
        return removeLayer();
    case Command::copyStyle:
        return m_session.copyStyle();
    case Command::pasteStyle:
        return m_session.pasteStyle();
    case Command::addRectangle:
        return addShape(ShapeKind::rectangle);
    case Command::addCircle:
        return addShape(ShapeKind::circle);
    case Command::addTriangle:
        return addShape(ShapeKind::triangle);
    case Command::addLine:
        return addShape(ShapeKind::line);
    case Command::selectAll:
        return selectAll();
    case Command::discard:
        return discardCurrent();
    case Command::previousImage:
        return step(-1);
    case Command::nextImage:
        return step(1);
    case Command::storyReel:
        return m_session.setFormat(SocialFormat::storyReel);
    case Command::horizontal:
        return m_session.setFormat(SocialFormat::horizontal);
    case Command::carouselPortrait:
        return m_session.setFormat(SocialFormat::carouselPortrait);
    case Command::square:
        return m_session.setFormat(SocialFormat::square);
    case Command::textTab:
        return showTab(SideTab::text);
    case Command::shapesTab:
        return showTab(SideTab::shapes);
    case Command::templatesTab:
        return showTab(SideTab::templates);
    case Command::fill:
        return m_stage->setFitMode(ImageFitMode::fill);
    case Command::fit:
        return m_stage->setFitMode(ImageFitMode::fit);
    case Command::zoomWhole:
        return m_stage->setZoom(1);
    case Command::zoomIn:
        return m_stage->zoomBy(zoomStep);
    case Command::zoomOut:
        return m_stage->zoomBy(-zoomStep);
    case Command::centrePhoto:
        return m_stage->centrePhoto();
    case Command::safeZone:
        return m_stage->setSafeZoneShown(!m_stage->isSafeZoneShown());
    case Command::batchColumn:
    case Command::sidePanel:
        return showColumn(command, m_menu->action(command)->isChecked());
    case Command::nextRegion:
        return goToRegion(1);
    case Command::previousRegion:
        return goToRegion(-1);
    case Command::darkTheme:
    case Command::lightTheme:
        return chooseTheme(command);
    case Command::showHistory:
        return m_shell->statusLine()->showHistory();
    case Command::checkForUpdates:
        return;
    }
}

// In an editor the same text of the other image comes next, ready to be typed over.
void MainWindow::step(int images)
{
    const std::optional<CopySlot> slot = m_shell->sidePanel()->textPanel()->editedSlot();
    const int before = m_session.batch().selectedIndex;
    if (images < 0)
        m_session.previousItem();
    else
        m_session.nextItem();
    if (slot && m_session.batch().selectedIndex != before)
        m_panel->edit(*slot);
}

// A batch that the column does not show is not changed from it.
void MainWindow::selectAll()
{
    if (!m_batch->showsIncoming())
        m_session.selectAll();
}

void MainWindow::discardCurrent()
{
    if (!m_batch->showsIncoming())
        m_session.removeCurrentItem();
}

void MainWindow::removeLayer()
{
    m_stage->canvas()->hideSelectedLayer();
}

void MainWindow::addShape(ShapeKind kind)
{
    m_session.addShape(kind);
    m_panel->follow(m_session.batch().selectedLayerID);
}

void MainWindow::chooseTheme(Command command)
{
    const bool isLight = command == Command::lightTheme;
    applyTheme(isLight ? lightTheme() : darkTheme());
    m_preferences.setValue(themeKey, isLight ? lightName : darkName);
}

void MainWindow::showColumn(Command command, bool visible)
{
    const bool isBatch = command == Command::batchColumn;
    if (isBatch)
        m_shell->setBatchVisible(visible);
    else
        m_shell->setPanelVisible(visible);
    m_menu->action(command)->setChecked(visible);
    m_preferences.setValue(isBatch ? batchHiddenKey : panelHiddenKey, visible ? no : yes);
}

void MainWindow::showTab(SideTab tab)
{
    if (m_shell->sidePanel()->isHidden())
        showColumn(Command::sidePanel, true);
    m_shell->sidePanel()->setTab(tab);
}

// Each region with what takes the focus in it.
void MainWindow::goToRegion(int step)
{
    struct Region {
        QWidget* region;
        QList<QWidget*> stops;
    };
    const QList<Region> regions{
        {m_shell->topBar(), m_shell->topBar()->focusOrder()},
        {m_shell->batchColumn(), m_shell->batchColumn()->focusOrder()},
        {m_shell->composeBar(), {m_shell->composeBar()->objectiveEdit()}},
        {m_shell->emptyState(), m_shell->emptyState()->focusOrder()},
        {m_shell->stage(), {m_stage->canvas()}},
        {m_shell->viewBar(), m_shell->viewBar()->focusOrder()},
        {m_shell->sidePanel(), m_shell->sidePanel()->focusOrder()},
        {m_shell->statusLine(), m_shell->statusLine()->focusOrder()},
    };
    const QWidget* focused = focusWidget();
    qsizetype at = step > 0 ? -1 : regions.size();
    for (qsizetype i = 0; i < regions.size(); ++i) {
        if (focused && (regions[i].region == focused || regions[i].region->isAncestorOf(focused)))
            at = i;
    }
    for (qsizetype tried = 0; tried < regions.size(); ++tried) {
        at = (at + step + regions.size()) % regions.size();
        const auto usable = std::ranges::find_if(regions[at].stops, [](const QWidget* stop) {
            return stop->isVisible() && stop->isEnabled();
        });
        if (usable != regions[at].stops.end())
            return (*usable)->setFocus(Qt::TabFocusReason);
    }
}

// Without images, to what invites to import them: a hidden canvas would keep the focus out of
// sight.
void MainWindow::focusCanvas()
{
    if (m_shell->isStage(StudioShell::Stage::picture))
        m_stage->canvas()->setFocus(KeyboardFocus::reason());
    else
        m_shell->emptyState()->takeFocus(KeyboardFocus::reason());
}

// Who styles a text wants to see it, on the canvas and where it is typed.
QList<QRect> MainWindow::keptClear(const QWidget* owner) const
{
    const SidePanel* panel = m_shell->sidePanel();
    if (!panel->isAncestorOf(owner))
        return {};
    const auto inWindow = [this](const QWidget* widget, const QRect& part) {
        return QRect(widget->mapTo(this, part.topLeft()), part.size());
    };
    const QWidget* account = m_shell->topBar()->account();
    QList<QRect> areas{inWindow(owner, owner->rect()), inWindow(account, account->rect())};
    const StagePanel* stage = m_shell->stage();
    if (const auto layer =
            m_stage->canvas()->interaction().layerRect(m_session.batch().selectedLayerID))
        areas.append(inWindow(stage, layer->toAlignedRect()
                                         .translated(stage->canvasRect().topLeft())
                                         .intersected(stage->canvasRect())));
    if (const QWidget* card = panel->textPanel()->selectedCard(); card && card->isVisible())
        areas.append(inWindow(card, card->visibleRegion().boundingRect()));
    areas.removeIf([](const QRect& area) { return area.isEmpty(); });
    return areas;
}

void MainWindow::showTileMenu(int index, QPoint globalPosition)
{
    // The menu speaks of the tile it was opened on, without losing a selection the tile is part of.
    if (index < 0 || index >= m_session.batch().items.size() || m_batch->showsIncoming())
        return;
    if (!m_session.batch().selectedItemIDs.contains(m_session.batch().items[index].id))
        m_session.selectSingleIndex(index);
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const QUuid id = m_session.batch().items[index].id;
    // With the key of the same command; the one in the program's menu is what reacts to it.
    const auto add = [&](Icon icon, const QString& text, Command command, auto act) {
        const QString key = m_menu->action(command)->shortcut().toString(QKeySequence::NativeText);
        QAction* action = menu->addAction(menuIcon(icon), text + u'\t' + key);
        connect(action, &QAction::triggered, this, act);
        return action;
    };
    QAction* exporting =
        add(Icon::exportCurrent, u"Exportar actual"_s, Command::exportCurrent, [this, id] {
            endEdits();
            m_exports->exportItem(id);
        });
    exporting->setEnabled(refusalOf(m_exports->offer()).isEmpty());
    menu->addSeparator();
    add(Icon::copyStyle, u"Copiar estilo"_s, Command::copyStyle,
        [this, id] { m_session.copyStyleOf(id); });
    QAction* paste = add(Icon::pasteStyle, u"Pegar estilo"_s, Command::pasteStyle,
                         [this] { m_session.pasteStyle(); });
    paste->setEnabled(m_session.canPasteStyle());
    menu->addSeparator();
    add(Icon::selectAll, u"Seleccionar todas las imágenes"_s, Command::selectAll,
        [this] { selectAll(); });
    add(Icon::discard, u"Descartar imagen"_s, Command::discard,
        [this, id] { m_session.removeItem(id); });
    menu->popup(globalPosition);
}

void MainWindow::resizeEvent(QResizeEvent*)
{
    m_shell->setGeometry(rect());
    m_gate->setGeometry(rect());
    m_shell->viewBar()->setLabels(width() < narrowWindow ? Labels::hidden : Labels::shown);
}

// Reached only by keys that whatever has the focus did not take: a text field keeps its arrows.
void MainWindow::keyPressEvent(QKeyEvent* event)
{
    if (isGated() || m_account->isSheetPresented())
        return;
    // Keys that close a chooser may still be held when the window has the keyboard again.
    const bool closes = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                        event->key() == Qt::Key_Escape;
    if (closes && event->isAutoRepeat())
        return;
    if (pressFocused(event, m_shell))
        return;
    // With others they mean something to fields that may happen to have no use for them now; and a
    // batch that is not shown is not changed by them.
    if (event->modifiers() & ~Qt::KeypadModifier || m_batch->showsIncoming())
        return QWidget::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_Left:
        return m_session.previousItem();
    case Qt::Key_Right:
        return m_session.nextItem();
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        return removeLayer();
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
        return m_panel->editSelected();
    case Qt::Key_Escape:
        return focusCanvas();
    default:
        QWidget::keyPressEvent(event);
    }
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> files = FileIntake::localFiles(event->mimeData());
    if (files.isEmpty() || m_account->isSheetPresented())
        return;
    if (!isGated())
        m_shell->dropVeil()->offer(m_files->offerOf(files));
    event->acceptProposedAction();
}

void MainWindow::dragLeaveEvent(QDragLeaveEvent*)
{
    m_shell->dropVeil()->hide();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    m_shell->dropVeil()->hide();
    event->acceptProposedAction();
    const QList<QUrl> files = FileIntake::localFiles(event->mimeData());
    if (!isGated())
        return m_files->drop(files);
    m_dropped += files;
    showWaiting();
}

void MainWindow::showBatch()
{
    const Batch& batch = m_session.batch();
    TopBar* top = m_shell->topBar();
    top->setFormat(int(batch.format));
    top->setUndo(m_session.canUndo());
    top->setRedo(m_session.canRedo());
    m_shell->composeBar()->setObjective(batch.objective);
    m_shell->batchColumn()->setRatio(row(batch.format).aspectRatio);
    m_batch->show();
    showStage();
    m_templates->show();    // which ends a preview on the stage
    m_stage->show();
    m_panel->show();
    m_exports->show();
    showHints();
}

void MainWindow::showStage()
{
    // The invitation to import waits until it is known that there is nothing to go on with.
    const bool isEmpty = m_session.batch().items.isEmpty() && m_session.didRestoreWorkspace();
    // The canvas of the old batch does not stand beside the tiles of the new one.
    const bool isImporting = m_session.isImporting() && (isEmpty || m_batch->showsIncoming());
    if (isImporting) {
        const PhotoImport::Progress& progress = m_session.importProgress();
        m_shell->emptyState()->setImport({{int(progress.looked), int(progress.total)}});
    } else {
        m_shell->emptyState()->setImport(std::nullopt);
    }
    m_shell->setStage(isImporting || isEmpty ? StudioShell::Stage::empty
                                             : StudioShell::Stage::picture);
    if (!isGated() && (!focusWidget() || !focusWidget()->isVisibleTo(this)))
        focusCanvas();
    if (isEmpty)
        m_wasEmpty = true;
    else if (m_session.didRestoreWorkspace())
        greetFirstImport();
}

// The usual boxes make a poor first picture, the designs of the gallery a good one.
void MainWindow::greetFirstImport()
{
    if (m_hasImported)
        return;
    m_hasImported = true;
    m_preferences.setValue(importedKey, yes);
    if (m_wasEmpty)
        showTab(SideTab::templates);
}

// What can be done now; looked at when the menu opens.
void MainWindow::showMenu()
{
    const Batch& batch = m_session.batch();
    const PublicationItem* item = batch.currentItem();
    const bool isShape = item && std::ranges::find(item->shapeLayers, batch.selectedLayerID,
                                                   &ShapeLayer::id) != item->shapeLayers.end();
    const bool isText = item && !batch.selectedLayerID.isNull() && !isShape;
    const auto check = [this](Command command, bool checked) {
        m_menu->action(command)->setChecked(checked);
    };
    const ExportOffer offer = m_exports->offer();
    m_menu->action(Command::exportAll)->setText(exportSeveralText(offer.selected) + u'…');
    m_menu->setEnabled({Command::exportCurrent, Command::exportAll}, refusalOf(offer).isEmpty());
    m_menu->action(Command::stop)
        ->setText(offer.isRunning ? u"Detener la exportación"_s : u"Detener la importación"_s);
    m_menu->setEnabled({Command::stop}, offer.isRunning || m_session.isImporting());
    m_menu->setEnabled({Command::signOut}, !m_accountSession.isWorking());
    m_menu->setEnabled({Command::restoreAside}, m_session.hasWorkspaceAside());
    m_menu->setEnabled({Command::undo}, m_session.canUndo());
    m_menu->setEnabled({Command::redo}, m_session.canRedo());
    m_menu->setEnabled({Command::editText}, isText);
    m_menu->setEnabled({Command::removeLayer, Command::copyStyle}, isText || isShape);
    m_menu->setEnabled({Command::pasteStyle}, m_session.canPasteStyle());
    m_menu->setEnabled({Command::addRectangle, Command::addCircle, Command::addTriangle,
                        Command::addLine, Command::saveTemplate, Command::exportTexts,
                        Command::selectAll, Command::discard, Command::fill, Command::fit,
                        Command::zoomWhole, Command::zoomIn, Command::zoomOut,
                        Command::centrePhoto},
                       item != nullptr);
    m_menu->setEnabled({Command::previousImage}, batch.selectedIndex > 0);
    m_menu->setEnabled({Command::nextImage}, batch.selectedIndex + 1 < batch.items.size());
    m_menu->setEnabled({Command::safeZone}, batch.format == SocialFormat::storyReel);
    m_menu->setEnabled({Command::checkForUpdates}, false);
    check(Command::storyReel, batch.format == SocialFormat::storyReel);
    check(Command::horizontal, batch.format == SocialFormat::horizontal);
    check(Command::carouselPortrait, batch.format == SocialFormat::carouselPortrait);
    check(Command::square, batch.format == SocialFormat::square);
    check(Command::fill, item && item->placement.mode == ImageFitMode::fill);
    check(Command::fit, item && item->placement.mode == ImageFitMode::fit);
    check(Command::safeZone, m_stage->isSafeZoneShown());
    check(Command::lightTheme, m_preferences.value(themeKey) == lightName);
    check(Command::darkTheme, m_preferences.value(themeKey) != lightName);
}

void MainWindow::showHints()
{
    const Batch& batch = m_session.batch();
    QList<KeyHint> hints;
    if (isGated() || m_account->isSheetPresented()) {
        // Keys of the studio are off.
    } else if (m_shell->sidePanel()->textPanel()->editedSlot()) {
        hints = {{{u"Av Pág"_s}, u"Imagen siguiente"_s}, {{u"Esc"_s}, u"Volver al lienzo"_s}};
    } else if (const auto* grid = qobject_cast<PresetGrid*>(focusWidget())) {
        hints = {{{u"Intro"_s}, u"Aplicar"_s}};
        if (grid->owner() == PresetOwner::user)
            hints += {{{u"F2"_s}, u"Renombrar"_s}, {{u"Supr"_s}, u"Eliminar"_s}};
    } else if (focusWidget() && qobject_cast<PresetGrid*>(focusWidget()->parentWidget())) {
        hints = {{{u"Intro"_s}, u"Guardar el nombre"_s}, {{u"Esc"_s}, u"Cancelar"_s}};
    } else if (qobject_cast<QLineEdit*>(focusWidget())) {
        hints = {{{u"Esc"_s}, u"Volver al lienzo"_s}};
    } else if (const PublicationItem* item = batch.currentItem()) {
        const bool isShape = std::ranges::find(item->shapeLayers, batch.selectedLayerID,
                                               &ShapeLayer::id) != item->shapeLayers.end();
        if (batch.selectedLayerID.isNull()) {
            hints = {{{}, u"Arrastra para mover la foto"_s}, {{}, u"Rueda para ampliar"_s}};
        } else {
            if (batch.items.size() > 1)
                hints.append({{u"←"_s, u"→"_s}, u"Cambiar imagen"_s});
            hints.append({{u"Supr"_s}, isShape ? u"Eliminar forma"_s : u"Ocultar capa"_s});
        }
    }
    m_shell->statusLine()->setKeyHints(hints);
}

void MainWindow::showStatus()
{
    Status status{.kind = kindOf(m_session.statusTone()), .sentence = m_session.status()};
    if (!m_session.statusLink().details.isEmpty())
        status.link = u"Ver cuáles"_s;
    tell(m_exports->completed(status));
}

// Whatever is told, the bar of what is going on stays.
void MainWindow::tell(Status status)
{
    if (m_session.isImporting()) {
        const PhotoImport::Progress& progress = m_session.importProgress();
        if (status.kind == StatusKind::info)
            status.kind = StatusKind::busy;
        status.goesOn = true;
        status.progress =
            progress.total > 0 ? double(progress.looked) / double(progress.total) : 0.0;
        status.stoppable = true;
    }
    m_shell->statusLine()->setStatus(m_exports->withProgress(status));
}
