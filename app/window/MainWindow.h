#pragma once

#include "app/controls/popovers/KeptClear.h"
#include "app/desktop/ShortcutView.h"

#include <QList>
#include <QUrl>

#include <memory>

class AccountBinding;
class AccountSession;
class AuthGateView;
class BatchBinding;
class CopyBinding;
class Desktop;
class DesktopBinding;
class ExportBinding;
class FileArrivals;
class FileIntake;
class KeptLook;
class KeysSheet;
class LocalAIManager;
class LocalAIService;
class PanelBinding;
class PhotoCache;
class PreferencesStore;
class PublishBinding;
class SharedTemplates;
class StageBinding;
class StatusBinding;
class StudioCommands;
class StudioFocus;
class StudioMenu;
class StudioSession;
class StudioShell;
class TemplatesBinding;
class UpdateController;

// The window of the studio: connects panels, session, account and desktop, and handles keys and
// closing.
class MainWindow : public ShortcutView, public KeptClear {
    Q_OBJECT
public:
    // `session`, `account` and `preferences` outlive the window.
    MainWindow(StudioSession& session, AccountSession& account,
               const std::shared_ptr<PhotoCache>& photos, PreferencesStore& preferences);
    ~MainWindow() override;
    // Shows the templates of the team too. `shared` outlives the window. Call before it is shown.
    void setSharedTemplates(SharedTemplates& shared);
    // Shows the engine that runs on this machine; both outlive the window.
    void setLocalEngine(LocalAIManager& manager, const LocalAIService& service);

    // Follows the preferences of the desktop, which outlives the window, and tells it of work that
    // has ended. Call before setLocalEngine().
    void setDesktop(Desktop& desktop);

    StudioShell* shell() const { return m_shell; }
    StudioMenu* menu() const;
    StudioCommands& commands() const { return *m_commands; }
    TemplatesBinding& templates() const { return *m_templatesBinding; }
    StatusBinding& status() const { return *m_statusBinding; }
    AuthGateView* gate() const { return m_gate; }
    // Whether the stored batch is restored, no import runs, and no picture is being drawn.
    bool isIdle() const;

    // Opens files and folders that another program passes on. They wait until somebody is signed
    // in. Calls in quick succession make one batch, because file managers start a program once for
    // each file.
    void open(const QList<QUrl>& files);
    UpdateController& updates();
    // Saves, and asks work that must not be cut off to end, for which it waits some seconds.
    void settleBeforeLogout();

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    QList<QRect> keptClear(const QWidget* owner) const override;
    void connectPanels();
    void connectStage();
    void connectSession();
    void connectAccount();
    void connectCopy();
    void connectPublish();
    void connectKeys();
    void connectDesktop();

    bool isGated() const;
    bool isSheetPresented() const;
    void showKeys();
    void hideKeys();
    void save();
    void lockStudio();

    void showBatch();
    void showStage();
    void greetFirstImport();
    void showHints();

    StudioSession& m_session;
    PreferencesStore& m_preferences;
    StudioShell* m_shell;
    // The bindings refer to child widgets. Being members, they are destroyed before those.
    std::unique_ptr<BatchBinding> m_batchBinding;
    std::unique_ptr<StageBinding> m_stageBinding;
    std::unique_ptr<PanelBinding> m_panelBinding;
    std::unique_ptr<CopyBinding> m_copyBinding;
    std::unique_ptr<TemplatesBinding> m_templatesBinding;
    FileIntake* m_files;
    std::unique_ptr<ExportBinding> m_exportBinding;
    std::unique_ptr<PublishBinding> m_publishBinding;
    std::unique_ptr<StatusBinding> m_statusBinding;
    std::unique_ptr<DesktopBinding> m_desktop;
    StudioFocus* m_focus;
    KeptLook* m_look;
    StudioCommands* m_commands;
    KeysSheet* m_keys = nullptr;    // made when it is first shown
    AuthGateView* m_gate;
    FileArrivals* m_arrivals;
    std::unique_ptr<AccountBinding> m_accountBinding;
    // m_hasImported: whether photos were imported, in this run of the program or an earlier one.
    // m_wasEmpty: whether the window has been without images in this run.
    bool m_hasImported = false, m_wasEmpty = false;
    bool m_isTellingOfAccount = false;
};
