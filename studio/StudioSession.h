#pragma once

#include "account/AccountPanelDestination.h"
#include "model/CopyGenerationMode.h"
#include "model/Pace.h"
#include "studio/PhotoImport.h"
#include "studio/Status.h"
#include "studio/StudioExports.h"
#include "studio/WorkspaceEncoder.h"
#include "studio/WorkspaceStore.h"
#include "studio/batch/Batch.h"
#include "studio/batch/LayerEdits.h"
#include "studio/batch/StudioHistory.h"
#include "studio/batch/StyleClipboard.h"
#include "templates/VisualTemplate.h"

#include <QObject>
#include <QPointer>
#include <QScopedValueRollback>
#include <QTimer>

#include <functional>
#include <memory>

class AccountSession;
class CreditJournal;
class PreferencesStore;
struct TextSheet;

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
    // Exported pictures have the size of their format unless another is given.
    StudioSession(std::shared_ptr<PhotoCache> photos, PreferencesStore& preferences,
                  Clock clock = &std::chrono::steady_clock::now,
                  const OutputSize& outputSize = exportSizeOf);
    ~StudioSession() override;

    const Batch& batch() const { return m_batch; }
    QString status() const { return m_status; }
    StatusTone statusTone() const { return m_statusTone; }
    const StatusLink& statusLink() const { return m_statusLink; }
    // Also for who works with the session. A sentence is gone with the next change of the batch,
    // unless it was told in the same turn of the event loop; a problem that is not read yet stays.
    void setStatus(const QString& status, StatusTone tone = StatusTone::info,
                   const StatusLink& link = {});
    CopyGenerationMode generationMode() const { return m_generationMode; }
    // The signed-in account; outlives the session.
    AccountSession* accountSession() const { return m_accountSession; }
    void setAccountSession(AccountSession& account);
    // Pays the exports; outlives the session. Without one nothing can be exported. Rendered
    // pictures wait in folders at `stagingPlace` until they are paid.
    void setCreditJournal(CreditJournal& journal, const QString& stagingPlace);
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
    // An edit of a layer of the current item; what is copied of it reaches the other selected
    // items.
    void editLayer(const TextLayer& layer, LayerEdits::Copied copied = LayerEdits::Copied::style,
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

    // What exporting would cost now, in credits; nothing while that is being found out.
    std::optional<qint64> displayedExportCurrentCost() const
    {
        return m_exports.displayedExportCurrentCost();
    }
    std::optional<qint64> displayedExportAllCost() const
    {
        return m_exports.displayedExportAllCost();
    }
    bool areCostsUpToDate() const { return m_exports.areCostsUpToDate(); }
    // The item as it stands was paid for.
    bool isPaid(QUuid item) const { return m_exports.isPaid(item); }
    // Photos may have been moved or changed by others: looks at their files again.
    void lookAtPhotos() { m_exports.lookAtPhotos(); }
    // The images that exportAll() covers: those selected when there are several, else all.
    QList<int> exportIndices() const { return m_exports.exportIndices(); }
    // To a file whose place was chosen, and to a folder. One export runs at a time; the status
    // tells how it goes. Of items that are gone nothing is exported.
    void exportCurrent(const QString& path);
    void exportItem(QUuid item, const QString& path) { m_exports.exportItem(item, path); }
    void exportAll(const QString& folder);
    void exportItems(const QList<QUuid>& items, const QString& folder)
    {
        m_exports.exportItems(items, folder);
    }
    bool isExporting() const { return exportProgress().has_value(); }
    const std::optional<ExportProgress>& exportProgress() const { return m_exports.progress(); }
    // What was charged is given back.
    void stopExport() { m_exports.stop(); }

    const Payments& payments() const { return m_payments; }
    // These renders are paid for, whatever is undone later. `strike` is called in the transaction
    // that stores it; may be empty. Gives whether it is stored already.
    bool markRenderedOutputsAsPaid(const QList<RenderedOutput>& outputs, const Strike& strike);

Q_SIGNALS:
    // Another image, layer or state comes next: what is still being typed belongs to this one.
    void aboutToMove();
    void batchChanged();
    void statusChanged();
    void generationModeChanged();
    void presentationChanged();
    void copiedStyleChanged();
    void importChanged();    // began, went on or ended
    void exportChanged();    // likewise
    void costsChanged();     // what exporting costs, or what is paid

private:
    enum class Restore { notYet, running, done };

    // While it lives, changes are what work that ran meanwhile brings back: a step of their own, no
    // part of a gesture or of typing before or after them, and recorded also in the turn of an
    // undo.
    class ResultStep {
    public:
        explicit ResultStep(StudioSession& session);
        ~ResultStep();
        Q_DISABLE_COPY_MOVE(ResultStep)

    private:
        StudioSession& m_session;
        const QScopedValueRollback<bool> m_isRecorded;
    };

    template <typename Change>
    void change(Change apply, Pace pace = Pace::once);
    void forgetOldStatus();
    void registerUndo(const Batch& before, StudioHistory::Changes changes);
    void applyHistorySnapshot(StudioHistorySnapshot snapshot);
    ChargeServices chargeServices();
    bool claimStore();
    bool store();
    void keepWhatIsStored();
    void saveAfter(Pace pace);
    QString failedSaving() const;
    void tellOfStore();
    static QCoro::Task<> runRestore(QPointer<StudioSession> session, QByteArray document,
                                    std::shared_ptr<PhotoCache> photos);
    void finishRestore(const WorkspaceStore::Restored& restored, const QByteArray& document);
    static QCoro::Task<> runRestoreAside(QPointer<StudioSession> session, QByteArray document,
                                         std::shared_ptr<PhotoCache> photos);
    void finishRestoreAside(const WorkspaceStore::Restored& restored);
    static QCoro::Task<> runImport(QPointer<StudioSession> session, QList<QUrl> urls,
                                   std::shared_ptr<PhotoCache> photos,
                                   std::shared_ptr<PhotoImport::Control> control);
    void finishImport(const std::optional<PhotoImport::Imported>& imported);

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
    const QByteArray m_writer = QUuid::createUuid().toByteArray(QUuid::WithoutBraces);
    std::optional<QByteArray> m_writerSeen;    // the last one that may be replaced
    bool m_isStoreOfAnother = false;           // of a window that began to store after this one
    StyleClipboard m_copiedStyle;
    QString m_status;
    StatusTone m_statusTone = StatusTone::info;
    StatusLink m_statusLink;
    StudioHistory::Time m_statusTold;
    bool m_isStatusOfThisTurn = false;
    AccountSession* m_accountSession = nullptr;
    std::optional<AccountPanelDestination> m_accountPanel;
    bool m_isAppSettingsPresented = false;
    CopyGenerationMode m_generationMode = CopyGenerationMode::local;
    std::shared_ptr<PhotoImport::Control> m_import;    // of the import under way
    PhotoImport::Progress m_importProgress;
    std::optional<StudioHistory::Time> m_importTold;    // when it was last reported
    StudioExports m_exports;
    Payments m_payments;
    QList<Strike> m_strikes;    // for the next storing
};
