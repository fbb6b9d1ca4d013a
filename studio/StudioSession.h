#pragma once

#include "account/AccountPanelDestination.h"
#include "model/CopyGenerationMode.h"
#include "studio/Activity.h"
#include "studio/Editing.h"
#include "studio/StatusLog.h"
#include "studio/StudioExports.h"
#include "studio/StudioImports.h"
#include "studio/Workspace.h"
#include "studio/batch/LayerEdits.h"
#include "studio/batch/StyleClipboard.h"
#include "templates/VisualTemplate.h"

#include <QObject>

#include <memory>

class AccountSession;
class CreditJournal;
class PreferencesStore;
struct TextSheet;

// State and commands of the main window. Puts together parts that do not know the session:
// StatusLog, Activities, Editing (the batch and its undo steps), Workspace (storage), imports and
// exports. Lives on the interface thread. Views compare their items with the batch after
// batchChanged(): unchanged items are equal and share their data.
//
// Every change of the batch is stored at once. While a value is held (Pace::held), the batch
// follows each tick, and is stored after a short rest.
class StudioSession : public QObject {
    Q_OBJECT
public:
    using Clock = Editing::Clock;

    // `preferences` outlive the session. Nothing is recorded in the history or stored before the
    // workspace has been restored. `outputSize`: pixels of exported pictures.
    StudioSession(std::shared_ptr<PhotoCache> photos, PreferencesStore& preferences,
                  Clock clock = &std::chrono::steady_clock::now,
                  const OutputSize& outputSize = exportSizeOf);
    ~StudioSession() override;

    const Batch& batch() const { return m_editing.batch(); }
    QString status() const { return m_log.current().sentence; }
    void setStatus(const QString& sentence, StatusKind kind = StatusKind::note,
                   const StatusLink& link = {})
    {
        m_log.tell(sentence, kind, link);
    }
    StatusLog& statusLog() { return m_log; }
    const StatusLog& statusLog() const { return m_log; }

    const Activities& activities() const { return m_activities; }
    bool isImporting() const { return m_activities.find(Activity::Kind::importing); }
    bool isExporting() const { return m_activities.find(Activity::Kind::exporting); }
    // Shows an activity that runs outside of the session.
    void setActivity(const Activity& activity);
    void endActivity(Activity::Kind kind);

    CopyGenerationMode generationMode() const { return m_generationMode; }
    // The signed-in account; outlives the session.
    AccountSession* accountSession() const { return m_accountSession; }
    void setAccountSession(AccountSession& account);
    // Pays for exports; the journal outlives the session. Without one nothing can be exported.
    // Rendered pictures wait in folders at `stagingPlace` until they are paid.
    void setCreditJournal(CreditJournal& journal, const QString& stagingPlace);
    // The account screen over the window, if one is open; below, whether the program's settings
    // are.
    std::optional<AccountPanelDestination> accountPanel() const { return m_accountPanel; }
    void setAccountPanel(std::optional<AccountPanelDestination> panel);
    bool isAppSettingsPresented() const { return m_isAppSettingsPresented; }
    void setAppSettingsPresented(bool presented);

    // Call once, when the window is first shown. Workers look at the photos.
    void restoreWorkspaceIfNeeded() { m_workspace.restore(batch().items.isEmpty()); }
    bool didRestoreWorkspace() const { return m_workspace.didRestore(); }
    bool hasWorkspaceAside() const { return m_workspace.hasAside(); }
    void restoreWorkspaceAside() { m_workspace.restoreAside(); }
    // Stores a change that waits for the end of a held value.
    void saveWorkspace() { m_workspace.save(batch()); }

    bool canUndo() const { return m_editing.history().canUndo(); }
    bool canRedo() const { return m_editing.history().canRedo(); }
    void undo();
    void redo();

    // Replaces the batch with the photos of files and folders once all were looked at. Until then
    // the activity holds the accepted ones; stopping it leaves the batch unchanged.
    void load(const QList<QUrl>& filesAndFolders);

    // Writes a spreadsheet's texts into the images that it names, as one step.
    void applyTexts(const TextSheet& sheet);

    void setFormat(SocialFormat format);
    void setObjective(const QString& objective);
    void setGenerationMode(CopyGenerationMode mode);

    void selectItem(int index, Qt::KeyboardModifiers modifiers);
    void selectSingleIndex(int index);
    void selectAll();
    void selectLayer(QUuid layer);    // of the current item; null: none. Ignores others
    void previousItem();
    void nextItem();
    QList<int> selectedIndicesForBatch() const;
    void removeCurrentItem();
    // Removes any item; the current one stays current if it is another.
    void removeItem(QUuid id);

    // Replaces the current item; an item of another id is refused.
    void setCurrentItem(const PublicationItem& item, Pace pace = Pace::once);
    // Changes the current item only. Typing into a hidden text shows it.
    void setText(CopySlot slot, const QString& text, Pace pace = Pace::once);
    // Edits a layer of the current item; `copied` says which part of it reaches the other selected
    // items.
    void editLayer(const TextLayer& layer, LayerEdits::Copied copied = LayerEdits::Copied::style,
                   Pace pace = Pace::once);
    void editShape(const ShapeLayer& shape, Pace pace = Pace::once);
    void setPlacement(const ImagePlacement& placement, Pace pace = Pace::once);
    void addShape(ShapeKind kind);
    void deleteSelectedLayer();
    void deleteShape(QUuid shape);

    // Begins a gesture on the canvas. All changes until its end are one step; at the end the moved
    // layer is copied to the other selected items.
    void beginCanvasHistoryEdit() { m_editing.beginCanvasHistoryEdit(); }
    // `selected`: the layer to select, null for no layer; empty: the selection stays.
    void commitCanvasItem(const PublicationItem& item, std::optional<QUuid> selected = {});
    void endCanvasHistoryEdit(QUuid movedLayer) { m_editing.endCanvasHistoryEdit(movedLayer); }

    // Copies the style of the selected layer; pasting reaches the other selected items.
    void copyStyle();
    void copyStyleOf(QUuid item);    // of its text in the selected slot, or its selected shape
    bool canPasteStyle() const;
    void pasteStyle();

    // Applies the design to every selected item, as one step. `name` is for the status.
    void applyTemplate(const QString& name, const TemplateApplication& design);
    // Applies the style to the selected text, and to that of the other selected items.
    void applyStyle(const DesignTemplate& style);

    // The price of an export now, in credits; empty while unknown.
    std::optional<qint64> displayedExportCurrentCost() const
    {
        return m_exports.displayedExportCurrentCost();
    }
    std::optional<qint64> displayedExportAllCost() const
    {
        return m_exports.displayedExportAllCost();
    }
    // Exports run one at a time; this object also knows what is paid.
    StudioExports& exports() { return m_exports; }
    const StudioExports& exports() const { return m_exports; }
    // Exports to a file or folder that the user chose; does nothing if the item is gone.
    void exportCurrent(const QString& path);
    void exportItem(QUuid item, const QString& path) { m_exports.exportItem(item, path); }
    // Exports the selected images if there are several, else all.
    void exportAll(const QString& folder);

    const Payments& payments() const { return m_payments; }
    // Stores that these renders are paid, whatever is undone later. `strike` is called in the
    // transaction that stores it; may be empty. Returns whether it is stored already.
    bool markRenderedOutputsAsPaid(const QList<RenderedOutput>& outputs, const Strike& strike);

Q_SIGNALS:
    // Another image, layer or state comes next: receivers now end what is being typed, as an edit
    // of this one.
    void aboutToMove();
    void batchChanged();
    void statusChanged();
    void generationModeChanged();
    void presentationChanged();
    void copiedStyleChanged();
    void activityChanged(Activity::Kind kind);    // began, went on or ended
    void costsChanged();                          // prices, or which items are paid

private:
    void followChange(Editing::Outcome outcome, Pace pace);
    void showImport(const PhotoImport::Progress& progress);
    void stopImport();
    void finishImport(const std::optional<PhotoImport::Imported>& imported, const QString& failure);
    void followExport();
    void finishRestore(const std::optional<Batch>& restored);
    void finishRestoreAside(const WorkspaceStore::Restored& restored);
    // The batch with all known payments of its items; learns those that `batch` carries.
    Batch withPayments(Batch batch);
    ChargeServices chargeServices();

    StatusLog m_log;
    Activities m_activities;
    Editing m_editing;
    Workspace m_workspace;
    StudioImports m_imports;
    StyleClipboard m_copiedStyle;
    QList<QUrl> m_loadAfterRestore;
    AccountSession* m_accountSession = nullptr;
    std::optional<AccountPanelDestination> m_accountPanel;
    bool m_isAppSettingsPresented = false;
    CopyGenerationMode m_generationMode = CopyGenerationMode::local;
    StudioExports m_exports;
    Payments m_payments;
};
