#include "app/window/MainWindow.h"

#include "app/account/AccountBinding.h"
#include "app/account/AuthGateView.h"
#include "app/account/LoginView.h"
#include "app/account/UserAccountButton.h"
#include "app/batch/BatchBinding.h"
#include "app/batch/BatchColumn.h"
#include "app/controls/AccessibleRole.h"
#include "app/controls/KeyHint.h"
#include "app/controls/fields/LineField.h"
#include "app/controls/popovers/FocusRound.h"
#include "app/copy/ComposeBar.h"
#include "app/copy/CopyBinding.h"
#include "app/desktop/RecentPlaces.h"
#include "app/desktop/WindowActivation.h"
#include "app/export/ExportBinding.h"
#include "app/layers/PanelBinding.h"
#include "app/layers/SidePanel.h"
#include "app/layers/TextPanel.h"
#include "app/presets/TemplatesBinding.h"
#include "app/publish/PublishBinding.h"
#include "app/settings/AppSettingsWindow.h"
#include "app/settings/LocalAIBinding.h"
#include "app/stage/EmptyState.h"
#include "app/stage/StageBinding.h"
#include "app/stage/StagePanel.h"
#include "app/stage/ViewBar.h"
#include "app/window/CommandText.h"
#include "app/window/DesktopBinding.h"
#include "app/window/FileArrivals.h"
#include "app/window/FileIntake.h"
#include "app/window/KeptLook.h"
#include "app/window/KeysSheet.h"
#include "app/window/StatusBinding.h"
#include "app/window/StatusLine.h"
#include "app/window/StudioCommands.h"
#include "app/window/StudioFocus.h"
#include "app/window/StudioMenu.h"
#include "app/window/StudioShell.h"
#include "app/window/TopBar.h"
#include "canvas/interaction/CanvasInteractionView.h"
#include "copygen/LocalAIManager.h"
#include "platform/NotificationCenter.h"
#include "platform/PreferencesStore.h"
#include "platform/UserFolders.h"
#include "studio/StudioSession.h"

#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QScreen>

using namespace Qt::StringLiterals;

namespace {

constexpr int narrowWindow = 1280;
constexpr std::chrono::seconds longestWaitAtLogout{5};
const QString importedKey = u"moltiva.hasImported"_s;
const QByteArray yes = "yes";

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

}    // namespace

MainWindow::MainWindow(StudioSession& session, AccountSession& account,
                       const std::shared_ptr<PhotoCache>& photos, PreferencesStore& preferences)
    : m_session(session), m_preferences(preferences),
      m_shell(new StudioShell(formatChoices(), this)),
      m_batchBinding(std::make_unique<BatchBinding>(session, m_shell->batchColumn(), photos)),
      m_stageBinding(
          std::make_unique<StageBinding>(session, m_shell->stage(), m_shell->viewBar(), photos)),
      m_panelBinding(std::make_unique<PanelBinding>(session, m_shell->sidePanel(), photos,
                                                    preferences, *m_batchBinding)),
      m_copyBinding(std::make_unique<CopyBinding>(session, account, m_shell->composeBar(),
                                                  m_shell->engineRow())),
      m_templatesBinding(std::make_unique<TemplatesBinding>(
          session, m_shell->sidePanel()->templatesPanel(),
          m_shell->sidePanel()->textPanel()->styles(), photos, preferences, userDataFolder())),
      m_files(new FileIntake(session, preferences, this)),
      m_exportBinding(std::make_unique<ExportBinding>(
          session, account, *m_batchBinding, m_shell->topBar()->exports(), preferences, this)),
      m_publishBinding(
          std::make_unique<PublishBinding>(session, account, *m_batchBinding, photos, this)),
      m_statusBinding(std::make_unique<StatusBinding>(session, m_shell->statusLine())),
      m_desktop(std::make_unique<DesktopBinding>(session, account, preferences, *m_statusBinding)),
      m_focus(new StudioFocus(m_shell, this)), m_look(new KeptLook(m_shell, preferences, this)),
      m_commands(new StudioCommands({session, account, m_shell, *m_batchBinding, *m_stageBinding,
                                     *m_panelBinding, *m_templatesBinding, *m_exportBinding,
                                     *m_publishBinding, *m_statusBinding, m_desktop->updates(),
                                     m_files, m_focus, m_look, m_desktop->appearance(), this})),
      m_gate(new AuthGateView(this)),
      m_arrivals(new FileArrivals(m_files, m_shell->dropVeil(), m_gate->login(),
                                  {.isGated = [this] { return isGated(); },
                                   .isSheetPresented = [this] { return isSheetPresented(); }},
                                  this)),
      m_accountBinding(std::make_unique<AccountBinding>(account, session, m_gate,
                                                        m_shell->topBar()->account(), this))
{
    setAccessibleRole(this, QAccessible::Window);
    setWindowTitle(u"Moltiva"_s);
    setAcceptDrops(true);
    setMinimumSize(smallestWindow);
    // Leaves 40 pixels of the height of a small screen for the frame of the window.
    resize(QSize(1440, 900).boundedTo(screen()->availableSize() - QSize(0, 40)));
    connectPanels();
    connectStage();
    connectSession();
    connectAccount();
    connectCopy();
    connectPublish();
    connectKeys();
    connectDesktop();
    m_look->restore();
    m_hasImported = preferences.value(importedKey) == yes;
    m_focus->goToCanvas();    // otherwise the first button takes the focus and the arrow keys
    showBatch();
    lockStudio();
}

// Disconnects signals that would reach this window after its members are destroyed: a focused field
// ends its edit when it is destroyed, which changes the session.
MainWindow::~MainWindow()
{
    disconnect(&m_session, nullptr, this, nullptr);
    disconnect(&m_session, nullptr, m_focus, nullptr);
    m_publishBinding.reset();    // its sheet too reports to this window
    m_accountBinding.reset();
    disconnect(qApp, nullptr, this, nullptr);
}

StudioMenu* MainWindow::menu() const
{
    return m_commands->menu();
}

bool MainWindow::isIdle() const
{
    return m_session.didRestoreWorkspace() && !m_session.isImporting() &&
           m_batchBinding->isIdle() && m_stageBinding->isIdle() && m_templatesBinding->isIdle() &&
           m_publishBinding->isIdle();
}

void MainWindow::connectPanels()
{
    connect(m_shell->topBar(), &TopBar::formatChosen, this,
            [this](int index) { m_session.setFormat(SocialFormat(index)); });
    connect(m_shell->composeBar(), &ComposeBar::objectiveEdited, &m_session,
            &StudioSession::setObjective);
    connect(m_templatesBinding.get(), &TemplatesBinding::previewChanged, this,
            [this](const std::optional<PublicationItem>& item) {
                m_shell->stage()->setPreviewed(item.has_value());
                m_stageBinding->preview(item);
            });
    connect(
        m_templatesBinding.get(), &TemplatesBinding::told, this,
        [this](const QString& sentence, StatusKind kind) { m_session.setStatus(sentence, kind); });
    connect(m_templatesBinding.get(), &TemplatesBinding::panelRequested, this,
            [this] { m_shell->sidePanel()->setTab(SideTab::templates); });
    connect(m_panelBinding.get(), &PanelBinding::leaveRequested, m_focus, &StudioFocus::goToCanvas);
    connect(m_statusBinding.get(), &StatusBinding::closeRequested, this, &QWidget::close);
    connect(m_exportBinding.get(), &ExportBinding::leaveRequested, m_focus,
            &StudioFocus::goToCanvas);
    connect(m_shell->statusLine(), &StatusLine::leaveRequested, m_focus, &StudioFocus::goToCanvas);
    m_shell->topBar()->setMenu(menu()->menu());
    connect(m_commands, &StudioCommands::keysRequested, this, &MainWindow::showKeys);
    connect(qApp, &QApplication::focusChanged, this, &MainWindow::showHints);
}

void MainWindow::connectStage()
{
    connect(m_stageBinding.get(), &StageBinding::layerChosen, m_panelBinding.get(),
            &PanelBinding::follow);
    connect(m_stageBinding.get(), &StageBinding::editRequested, m_panelBinding.get(),
            &PanelBinding::edit);
    connect(m_stageBinding.get(), &StageBinding::photoFound, m_batchBinding.get(),
            &BatchBinding::photoFound);
    connect(m_stageBinding.get(), &StageBinding::photoMissing, this, [this](QUuid item) {
        m_batchBinding->photoMissing(item);
        m_session.setStatus(u"No se puede leer la foto de %1. ¿Se ha movido o borrado?"_s.arg(
                                m_session.batch().currentItem()->filename()),
                            StatusKind::error);
    });
    connect(m_stageBinding.get(), &StageBinding::previewEditRefused, m_templatesBinding.get(),
            &TemplatesBinding::endPreview);
}

void MainWindow::connectSession()
{
    connect(&m_session, &StudioSession::aboutToMove, m_focus, &StudioFocus::endEdits);
    connect(&m_session, &StudioSession::batchChanged, this, &MainWindow::showBatch);
    // Shows warnings in the sign-in form while the sign-in gate covers the status line.
    connect(&m_session.statusLog(), &StatusLog::told, this, [this](const StatusEntry& entry) {
        if (isGated() && !m_isTellingOfAccount && entry.kind == StatusKind::warning)
            m_gate->login()->tellProblem(entry.sentence);
    });
    connect(&m_session, &StudioSession::activityChanged, this, [this](Activity::Kind kind) {
        if (kind != Activity::Kind::importing)
            return;
        m_batchBinding->show();
        showStage();
        m_panelBinding->show();
    });
}

void MainWindow::connectAccount()
{
    connect(m_accountBinding.get(), &AccountBinding::gateOpened, this, [this] {
        lockStudio();
        m_focus->goToCanvas();
        m_arrivals->openWaiting();
    });
    connect(m_accountBinding.get(), &AccountBinding::gateClosed, this, [this] {
        m_publishBinding->close();
        hideKeys();
    });
    connect(m_accountBinding.get(), &AccountBinding::sheetChanged, this, &MainWindow::lockStudio);
    connect(m_accountBinding.get(), &AccountBinding::textPanelRequested, this,
            [this] { m_look->showTab(SideTab::text); });
    connect(m_accountBinding.get(), &AccountBinding::working, this, [this] {
        m_session.statusLog().tellStep(Activity::Kind::account, u"Conectando con tu cuenta…"_s);
        m_session.setActivity({.kind = Activity::Kind::account});
    });
    connect(m_accountBinding.get(), &AccountBinding::told, this,
            [this](const QString& message, bool isProblem) {
                // Keeps connectSession() from telling `message` in the sign-in form, which already
                // shows it.
                const QScopedValueRollback telling(m_isTellingOfAccount, true);
                if (!message.isEmpty())
                    m_session.setStatus(message,
                                        isProblem ? StatusKind::warning : StatusKind::done);
                m_session.endActivity(Activity::Kind::account);
            });
}

void MainWindow::connectCopy()
{
    connect(m_copyBinding.get(), &CopyBinding::settingsRequested, m_accountBinding.get(),
            &AccountBinding::presentLocalAISettings);
    connect(m_shell->composeBar(), &ComposeBar::leaveRequested, m_focus, &StudioFocus::goToCanvas);
}

void MainWindow::connectPublish()
{
    connect(m_publishBinding.get(), &PublishBinding::sheetChanged, this, &MainWindow::lockStudio);
    connect(m_publishBinding.get(), &PublishBinding::imageRequested, this, [this](QUuid layer) {
        m_focus->goToCanvas();
        if (!layer.isNull())
            m_panelBinding->follow(layer);
    });
}

void MainWindow::connectKeys()
{
    setShortcuts({.onLeft = [this] { m_session.previousItem(); },
                  .onRight = [this] { m_session.nextItem(); },
                  .onDelete = [this] { m_commands->removeLayer(); },
                  .onUndo = [this] { m_commands->undo(); },
                  .onRedo = [this] { m_commands->redo(); }});
    NotificationCenter& center = notificationCenter();
    center.subscribe(Notification::undoRequested, this,
                     [this](const QVariant&) { shortcuts().onUndo(); });
    center.subscribe(Notification::redoRequested, this,
                     [this](const QVariant&) { shortcuts().onRedo(); });
}

void MainWindow::connectDesktop()
{
    m_desktop->showRecent(m_files->recent(), m_shell->emptyState());
    connect(m_accountBinding.get(), &AccountBinding::appSettingsMade, m_desktop.get(),
            &DesktopBinding::connectSettings);
    connect(m_desktop.get(), &DesktopBinding::noticePressed, this,
            [this](const QByteArray& token) { comeForward(*this, token); });
}

void MainWindow::setDesktop(Desktop& desktop)
{
    m_desktop->follow(desktop);
}

void MainWindow::setSharedTemplates(SharedTemplates& shared)
{
    m_templatesBinding->setSharedTemplates(shared);
}

void MainWindow::setLocalEngine(LocalAIManager& manager, const LocalAIService& service)
{
    m_copyBinding->setLocalEngine(manager, service);
    m_desktop->follow(manager);
    connect(&manager, &LocalAIManager::changed, m_panelBinding.get(), &PanelBinding::show);
    connect(m_accountBinding.get(), &AccountBinding::appSettingsMade, this,
            [&manager](AppSettingsWindow* settings) {
                new LocalAIBinding(manager, settings->localAIPanel());
            });
}

bool MainWindow::isGated() const
{
    return m_gate->state() != Gate::open;
}

bool MainWindow::isSheetPresented() const
{
    return m_accountBinding->isSheetPresented() || m_publishBinding->isSheetPresented() ||
           (m_keys && m_keys->isPresented());
}

void MainWindow::showKeys()
{
    if (!m_keys) {
        m_keys = new KeysSheet(keyGroups(menu()->commands()), this);
        connect(m_keys, &Sheet::closeRequested, this, &MainWindow::hideKeys);
    }
    m_keys->search()->clear();
    m_keys->present();
    lockStudio();
}

void MainWindow::hideKeys()
{
    if (m_keys)
        m_keys->dismiss();
    lockStudio();
}

// Disables the menu and its keys while the sign-in gate or a sheet covers the studio. Also disables
// the shell under the gate, because otherwise Tab and screen readers could reach it.
void MainWindow::lockStudio()
{
    const bool isLocked = isGated() || isSheetPresented();
    if (isLocked)
        m_focus->endEdits();
    m_commands->menu()->setLocked(isLocked);
    m_shell->setEnabled(!isGated());
    m_shell->setCovered(isLocked);
    showHints();
    if (!isLocked)
        m_arrivals->openDropped();
}

void MainWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    // While the window was inactive, another program may have moved or changed the photos.
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) {
        m_session.exports().lookAtPhotos();
        m_files->recent().look();
    }
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (m_statusBinding->delaysClosing())
        return event->ignore();
    save();
    QWidget::closeEvent(event);
}

void MainWindow::save()
{
    // Ends edits before saving, so that text which is still being typed is saved with the batch.
    m_shell->composeBar()->finishEdit();
    m_focus->goToCanvas();
    m_session.copy().applyBeforeEnd();
    m_session.saveWorkspace();
    m_look->keepGeometry();
}

// The desktop may call the logout off, so the window stays open.
void MainWindow::settleBeforeLogout()
{
    QEventLoop waiting;
    const auto endWhenSettled = [this, &waiting] {
        if (!m_session.activities().delayingClosing())
            waiting.quit();
    };
    for (const Activity::Kind kind :
         {Activity::Kind::generating, Activity::Kind::exporting, Activity::Kind::publishing}) {
        const Activity* running = m_session.activities().find(kind);
        if (running && running->delaysClosing)
            m_session.activities().stop(kind);
    }
    if (m_session.activities().delayingClosing()) {
        connect(&m_session, &StudioSession::activityChanged, &waiting, endWhenSettled);
        QTimer::singleShot(longestWaitAtLogout, &waiting, &QEventLoop::quit);
        waiting.exec(QEventLoop::ExcludeUserInputEvents);
    }
    save();
}

void MainWindow::open(const QList<QUrl>& files)
{
    m_arrivals->open(files);
}

UpdateController& MainWindow::updates()
{
    return m_desktop->updates();
}

// Areas that a popover opened by `owner`, in the side panel, should not cover: `owner` itself, the
// account button, the selected layer on the canvas and the card of the selected text.
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
            m_stageBinding->canvas()->interaction().layerRect(m_session.batch().selectedLayerID))
        areas.append(inWindow(stage, layer->toAlignedRect()
                                         .translated(stage->canvasRect().topLeft())
                                         .intersected(stage->canvasRect())));
    if (const QWidget* card = panel->textPanel()->selectedCard(); card && card->isVisible())
        areas.append(inWindow(card, card->visibleRegion().boundingRect()));
    areas.removeIf([](const QRect& area) { return area.isEmpty(); });
    return areas;
}

void MainWindow::resizeEvent(QResizeEvent*)
{
    m_shell->setGeometry(rect());
    m_gate->setGeometry(rect());
    m_shell->viewBar()->setLabels(width() < narrowWindow ? Labels::hidden : Labels::shown);
}

// Receives only keys that the focused widget did not use. A text field uses the arrow keys.
void MainWindow::keyPressEvent(QKeyEvent* event)
{
    if (isGated() || isSheetPresented())
        return;
    // Ignores Enter and Esc while they repeat: the user may still hold the key that closed a file
    // dialog.
    const bool closes = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                        event->key() == Qt::Key_Escape;
    if (closes && event->isAutoRepeat())
        return;
    if (pressFocused(event, m_shell))
        return;
    // Ignores keys with modifiers: a text field passes on those that it cannot use at the moment,
    // but the user meant them for the text. Also ignores keys while the images of an import hide
    // the batch, which no key may change then.
    if (event->modifiers() & ~Qt::KeypadModifier || m_batchBinding->showsIncoming())
        return QWidget::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_F2:
        return m_commands->editSelected();
    case Qt::Key_Escape:
        return m_focus->goToCanvas();
    default:
        ShortcutView::keyPressEvent(event);
    }
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    m_arrivals->dragEntered(event);
}

void MainWindow::dragLeaveEvent(QDragLeaveEvent*)
{
    m_arrivals->dragLeft();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    m_arrivals->dropped(event);
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
    m_batchBinding->show();
    showStage();
    m_templatesBinding->show();    // ends the preview of a template
    m_stageBinding->show();
    m_panelBinding->show();
    m_copyBinding->show();
    m_exportBinding->show();
    showHints();
}

void MainWindow::showStage()
{
    // Invites the user to import images only after the restore has ended without any.
    const bool isEmpty = m_session.batch().items.isEmpty() && m_session.didRestoreWorkspace();
    // Hides the canvas while the batch column shows an import's images: the canvas would show an
    // item of the old batch beside them.
    const Activity* import = m_session.activities().find(Activity::Kind::importing);
    const bool isImporting = import && (isEmpty || m_batchBinding->showsIncoming());
    // The stage comes first, so that the focus does not stop at a button that is about to hide.
    m_shell->setStage(isImporting || isEmpty ? StudioShell::Stage::empty
                                             : StudioShell::Stage::picture);
    if (isImporting) {
        m_shell->emptyState()->setImport({{int(import->done), int(import->total)}});
    } else {
        m_shell->emptyState()->setImport(std::nullopt);
    }
    m_shell->topBar()->setPublishing(m_publishBinding->refusal(),
                                     menu()->keyOf(CommandText::publish));
    if (!isGated() && (!focusWidget() || !focusWidget()->isVisibleTo(this)))
        m_focus->goToCanvas();
    if (isEmpty)
        m_wasEmpty = true;
    else if (m_session.didRestoreWorkspace())
        greetFirstImport();
}

// Opens the templates tab after the user's very first import: templates look better than the
// default text boxes.
void MainWindow::greetFirstImport()
{
    if (m_hasImported)
        return;
    m_hasImported = true;
    m_preferences.setValue(importedKey, yes);
    if (m_wasEmpty)
        m_look->showTab(SideTab::templates);
}

void MainWindow::showHints()
{
    const bool isLocked = isGated() || isSheetPresented();    // the keys of the studio do nothing
    m_shell->statusLine()->setKeyHints(isLocked ? QList<KeyHint>()
                                                : m_focus->hints(m_session.batch()));
}
