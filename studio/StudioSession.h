#pragma once

#include "account/AccountPanelDestination.h"
#include "model/CopyGenerationMode.h"
#include "model/Pace.h"
#include "studio/Batch.h"
#include "studio/LayerEdits.h"
#include "studio/PhotoImport.h"
#include "studio/StudioHistory.h"
#include "studio/StyleClipboard.h"
#include "studio/WorkspaceEncoder.h"
#include "studio/WorkspaceStore.h"
#include "templates/VisualTemplate.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>

class AccountSession;
class PreferencesStore;
struct TextSheet;

// What a sentence in the status line tells.
enum class StatusTone { info, done, problem };

// The state of the main window and its commands. Lives on the interface thread; whoever shows it
// looks again after batchChanged(), and compares the items it knew: unchanged ones are equal and
// share their data.
//
// Every change of the batch is a step of the history and is stored at once. While a value is held
// (Pace::held) the batch follows each of its ticks, and is stored when it has rested a moment.
class StudioSession : public QObject {
    Q_OBJECT
public:
    using Clock = std::function<StudioHistory::Time()>;

    // The preferences outlive the session. Nothing is recorded or stored before the workspace was
    // restored.
    StudioSession(std::shared_ptr<PhotoCache> photos, PreferencesStore& preferences,
                  Clock clock = &std::chrono::steady_clock::now, QObject* parent = nullptr);
    ~StudioSession() override;

    const Batch& batch() const { return m_batch; }
    QString status() const { return m_status; }
    StatusTone statusTone() const { return m_statusTone; }
    // Also for who works with the session.
    void setStatus(const QString& status, StatusTone tone = StatusTone::info);
    CopyGenerationMode generationMode() const { return m_generationMode; }
    // The signed-in account; outlives the session.
    AccountSession* accountSession() const { return m_accountSession; }
    void setAccountSession(AccountSession& account) { m_accountSession = &account; }
    // The screen of the account that lies over the window, if one does; then those of the program.
    std::optional<AccountPanelDestination> accountPanel() const { return m_accountPanel; }
    void setAccountPanel(std::optional<AccountPanelDestination> panel);
    bool isAppSettingsPresented() const { return m_isAppSettingsPresented; }
    void setAppSettingsPresented(bool presented);

    // What an import has accepted so far; empty when none runs.
    const PhotoImport::Progress& importProgress() const { return m_importProgress; }
    bool isImporting() const { return m_import != nullptr; }

    // Once, when the window is first shown. Its photos are looked at on the workers.
    void restoreWorkspaceIfNeeded();
    bool didRestoreWorkspace() const { return m_restore == Restore::done; }
    // A saved batch of which not everything could be brought back at a start; it stays until it
    // can.
    bool hasWorkspaceAside() const;
    void restoreWorkspaceAside();
    // Stores what waits for a held value to rest.
    void saveWorkspace();

    // Changes between the two make one operation: a step of it goes back to before the first.
    void beginOperation() { m_operationBefore = m_batch; }
    void endOperation() { m_operationBefore.reset(); }

    bool canUndo() const { return m_history.canUndo(); }
    bool canRedo() const { return m_history.canRedo(); }
    void undo();
    void redo();

    // Photos and folders of photos become the new batch, once all were looked at.
    void load(const QList<QUrl>& filesAndFolders);
    // The batch stays as it was.
    void stopImport();

    // The texts of a spreadsheet into the images that it names, as one step.
    void applyTexts(const TextSheet& sheet);

    void setFormat(SocialFormat format);
    void setObjective(const QString& objective);
    void setGenerationMode(CopyGenerationMode mode);

    void selectItem(int index, Qt::KeyboardModifiers modifiers);
    void selectSingleIndex(int index);
    void selectAll();
    void selectLayer(QUuid layer);    // of the current item, or null for none; others are ignored
    void previousItem();
    void nextItem();
    QList<int> selectedIndicesForBatch() const;
    void removeCurrentItem();
    // The same for any item; whatever else is current stays so.
    void removeItem(QUuid id);

    // Replaces the current item; an item of another id is refused.
    void setCurrentItem(const PublicationItem& item, Pace pace = Pace::once);
    // The text of the current item alone. Typing into a hidden one shows it.
    void setText(CopySlot slot, const QString& text, Pace pace = Pace::once);
    // An edit of a layer of the current item, which reaches the other selected items.
    void editLayer(const TextLayer& layer, LayerEdits::AlongFlags along = {},
                   Pace pace = Pace::once);
    void editShape(const ShapeLayer& shape, Pace pace = Pace::once);
    void setPlacement(const ImagePlacement& placement, Pace pace = Pace::once);
    void addShape(ShapeKind kind);
    void deleteSelectedLayer();
    void deleteShape(QUuid shape);

    // A gesture on the canvas: from its first movement to its end it is one step, and what it moved
    // reaches the other selected items at its end.
    void beginCanvasHistoryEdit();
    void commitCanvasItem(const PublicationItem& item);
    void endCanvasHistoryEdit(QUuid movedLayer);

    // The style of the selected layer; pasting reaches the other selected items.
    void copyStyle();
    void copyStyleOf(QUuid item);    // of its layer that is selected in the current one
    bool canPasteStyle() const;
    void pasteStyle();

    // Over every selected item, in one step. `name` is told.
    void applyTemplate(const QString& name, const TemplateApplication& design);
    // To the selected text, which reaches the other selected items.
    void applyStyle(const DesignTemplate& style);

    // The item was exported: this render of it is paid for, whatever is undone later.
    void markPaid(QUuid item, const QString& fingerprint);

Q_SIGNALS:
    // Another image, layer or state comes next: what is still being typed belongs to this one.
    void aboutToMove();
    void batchChanged();
    void statusChanged();
    void generationModeChanged();
    void presentationChanged();
    void copiedStyleChanged();
    void importChanged();    // began, went on or ended

private:
    enum class Restore { notYet, running, done };

    template <typename Change>
    void change(Change apply, Pace pace = Pace::once);
    void registerUndo(const Batch& before, StudioHistory::Changes changes);
    void applyHistorySnapshot(StudioHistorySnapshot snapshot);
    Batch withPaymentsOfNow(Batch batch) const;
    void keepWhatIsStored();
    void saveAfter(Pace pace);
    static QCoro::Task<> runRestore(QPointer<StudioSession> session, QByteArray document,
                                    std::shared_ptr<PhotoCache> photos);
    void finishRestore(const WorkspaceStore::Restored& restored, const QByteArray& document);
    static QCoro::Task<> runRestoreAside(QPointer<StudioSession> session, QByteArray document,
                                         std::shared_ptr<PhotoCache> photos);
    void finishRestoreAside(const WorkspaceStore::Restored& restored);
    static QCoro::Task<> runImport(QPointer<StudioSession> session, QList<QUrl> urls,
                                   std::shared_ptr<PhotoCache> photos,
                                   std::shared_ptr<PhotoImport::Control> control);
    void finishImport(const std::optional<PublicationItems>& items);

    std::shared_ptr<PhotoCache> m_photos;
    PreferencesStore& m_preferences;
    Clock m_clock;
    Batch m_batch;
    StudioHistory m_history;
    bool m_isApplyingHistory = false;
    std::optional<Batch> m_operationBefore;
    bool m_isRestoringAside = false;
    Restore m_restore = Restore::notYet;
    QList<QUrl> m_loadAfterRestore;
    WorkspaceEncoder m_encoder;
    QTimer m_saveLater;                         // runs while a change waits to be stored
    bool m_isStoredUnseen = false;              // the store could not be read when it was asked
    std::optional<QByteArray> m_notYetAside;    // to be set aside before anything is stored
    bool m_saveFailed = false;                  // and the user was told
    StyleClipboard m_copiedStyle;
    QString m_status;
    StatusTone m_statusTone = StatusTone::info;
    QElapsedTimer m_statusTold;
    AccountSession* m_accountSession = nullptr;
    std::optional<AccountPanelDestination> m_accountPanel;
    bool m_isAppSettingsPresented = false;
    CopyGenerationMode m_generationMode = CopyGenerationMode::local;
    std::shared_ptr<PhotoImport::Control> m_import;    // of the import under way
    PhotoImport::Progress m_importProgress;
    QElapsedTimer m_importTold;    // since the last report of it
};
