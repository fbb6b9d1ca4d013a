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

// The state of the main window and its commands, over pieces that know nothing of it: what is told
// (StatusLog), what is under way (Activities), the batch and its steps (Editing), what is stored
// (Workspace), imports and exports. Lives on the interface thread; whoever shows the batch looks
// again after batchChanged(), and compares the items it knew: unchanged ones are equal and share
// their data.
//
// Every change of the batch is stored at once. While a value is held (Pace::held) the batch follows
// each of its ticks, and is stored when it has rested a moment.
class StudioSession : public QObject {
    Q_OBJECT
public:
    using Clock = Editing::Clock;

    // The preferences outlive the session. Nothing is recorded or stored before the workspace was
    // restored.
    // Exported pictures have the size of their format unless another is given.
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
    // For what is under way elsewhere and shown with the rest.
    void setActivity(const Activity& activity);
    void endActivity(Activity::Kind kind);

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

    // Once, when the window is first shown. Its photos are looked at on the workers.
    void restoreWorkspaceIfNeeded() { m_workspace.restore(batch().items.isEmpty()); }
    bool didRestoreWorkspace() const { return m_workspace.didRestore(); }
    bool hasWorkspaceAside() const { return m_workspace.hasAside(); }
    void restoreWorkspaceAside() { m_workspace.restoreAside(); }
    // Stores what waits for a held value to rest.
    void saveWorkspace() { m_workspace.save(batch()); }

    bool canUndo() const { return m_editing.history().canUndo(); }
    bool canRedo() const { return m_editing.history().canRedo(); }
    void undo();
    void redo();

    // Photos and folders of photos become the new batch, once all were looked at. While they are,
    // the activity holds what has been accepted; stopped, it leaves the batch as it was.
    void load(const QList<QUrl>& filesAndFolders);

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
    void beginCanvasHistoryEdit() { m_editing.beginCanvasHistoryEdit(); }
    // `selected`: the layer to select with it, or null for none; nothing leaves the selection.
    void commitCanvasItem(const PublicationItem& item, std::optional<QUuid> selected = {});
    void endCanvasHistoryEdit(QUuid movedLayer) { m_editing.endCanvasHistoryEdit(movedLayer); }

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
    // More of the exports, which run one at a time: what is paid, and what is exported together.
    StudioExports& exports() { return m_exports; }
    const StudioExports& exports() const { return m_exports; }
    // To a file or a folder that was chosen; nothing where the item is gone.
    void exportCurrent(const QString& path);
    void exportItem(QUuid item, const QString& path) { m_exports.exportItem(item, path); }
    // The images selected when there are several, else all.
    void exportAll(const QString& folder);

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
    void activityChanged(Activity::Kind kind);    // began, went on or ended
    void costsChanged();                          // what exporting costs, or what is paid

private:
    void followChange(Editing::Outcome outcome, Pace pace);
    void showImport(const PhotoImport::Progress& progress);
    void stopImport();
    void finishImport(const std::optional<PhotoImport::Imported>& imported, const QString& failure);
    void followExport();
    void finishRestore(const std::optional<Batch>& restored);
    void finishRestoreAside(const WorkspaceStore::Restored& restored);
    // The batch with all payments that are known of its items; those that it carries become known.
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
