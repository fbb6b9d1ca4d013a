#pragma once

#include "account/AccountPanelDestination.h"
#include "model/CopyGenerationMode.h"
#include "studio/Activity.h"
#include "studio/Editing.h"
#include "studio/StatusLog.h"
#include "studio/StudioExports.h"
#include "studio/StudioImports.h"
#include "studio/StudioPublish.h"
#include "studio/Workspace.h"
#include "studio/batch/LayerEdits.h"
#include "studio/batch/StyleClipboard.h"
#include "studio/copy/StudioCopy.h"
#include "templates/VisualTemplate.h"

#include <QObject>

#include <memory>

class AccountSession;
class CreditJournal;
class PreferencesStore;
struct TextSheet;

// State and commands of the main window. Connects parts that do not know this class: StatusLog,
// Activities, Editing (the batch and its undo steps), Workspace (storage), imports and exports.
// Used only on the interface thread. After batchChanged(), views compare the items they show with
// the batch: unchanged items are equal and share their data, so that comparing them is quick.
//
// Every edit is stored at once, except that edits with Pace::held and changes of the selection are
// stored after a short pause, and those of a gesture on the canvas at its end.
class StudioSession : public QObject {
    Q_OBJECT
public:
    using Clock = Editing::Clock;

    // `preferences` must outlive the session. Nothing is recorded in the history or stored before
    // the workspace has been restored. `outputSize` gives the size of exported pictures in pixels.
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
    // Adds or updates an activity. Public for activities that other code runs.
    void setActivity(const Activity& activity);
    void endActivity(Activity::Kind kind);

    CopyGenerationMode generationMode() const { return m_generationMode; }
    // The user's account; null before setAccountSession(). It must outlive the session.
    AccountSession* accountSession() const { return m_accountSession; }
    void setAccountSession(AccountSession& account);
    // Sets the journal that charges for exports and must outlive the session. Without a journal
    // nothing can be exported. Rendered pictures are saved in folders at `stagingPlace` until they
    // are paid.
    void setCreditJournal(CreditJournal& journal, const QString& stagingPlace);
    // The account screen that is open over the window; empty if none is.
    std::optional<AccountPanelDestination> accountPanel() const { return m_accountPanel; }
    void setAccountPanel(std::optional<AccountPanelDestination> panel);
    bool isAppSettingsPresented() const { return m_isAppSettingsPresented; }
    void setAppSettingsPresented(bool presented);

    // Call once, when the window is first shown. The photos are read on worker threads.
    void restoreWorkspaceIfNeeded() { m_workspace.restore(batch().items.isEmpty()); }
    bool didRestoreWorkspace() const { return m_workspace.didRestore(); }
    bool hasWorkspaceAside() const { return m_workspace.hasAside(); }
    void restoreWorkspaceAside() { m_workspace.restoreAside(); }
    // Stores the batch now, including changes that would be stored after a pause.
    void saveWorkspace() { m_workspace.save(batch()); }

    bool canUndo() const { return m_editing.history().canUndo(); }
    bool canRedo() const { return m_editing.history().canRedo(); }
    void undo();
    void redo();

    // Imports the photos of files and folders, and replaces the batch once all have been read.
    // Until then Activity::incoming lists those accepted so far. Stopping the activity leaves the
    // batch unchanged.
    void load(const QList<QUrl>& filesAndFolders);

    // Writes the texts of a spreadsheet into the items that it names, as one undo step.
    void applyTexts(const TextSheet& sheet);

    void setFormat(SocialFormat format);
    void setObjective(const QString& objective);
    void setGenerationMode(CopyGenerationMode mode);

    void selectItem(int index, Qt::KeyboardModifiers modifiers);
    void selectSingleIndex(int index);
    // Makes an item current and selects a layer of it, if `layer` is one. Items that are selected
    // together with it stay selected.
    void goTo(QUuid item, QUuid layer);
    void selectAll();
    // Selects a layer of the current item, or none if `layer` is null. Ignores other ids.
    void selectLayer(QUuid layer);
    void previousItem();
    void nextItem();
    QList<int> selectedIndicesForBatch() const;
    void removeCurrentItem();
    // Removes an item. The current item stays current unless it is the one removed.
    void removeItem(QUuid id);

    // Replaces the current item by `item`, an edited copy of it. Ignores an item with another id.
    void setCurrentItem(const PublicationItem& item, Pace pace = Pace::once);
    // Changes a text of the current item only. If the text is hidden, shows it.
    void setText(CopySlot slot, const QString& text, Pace pace = Pace::once);
    // Edits a layer of the current item; `copied` says which part of the layer is also copied to
    // the other selected items.
    void editLayer(const TextLayer& layer, LayerEdits::Copied copied = LayerEdits::Copied::style,
                   Pace pace = Pace::once);
    void editShape(const ShapeLayer& shape, Pace pace = Pace::once);
    // These four change the frame of the selected layer within the limits that gestures have, and
    // copy it to the other selected items. Distances are in pixels of the exported picture. Moves
    // and changes of size in rapid succession are one undo step.
    void moveLayer(double right, double down);
    void resizeLayer(double wider, double taller);
    void setLayerFrame(const CodableRect& frame, Pace pace);
    void alignLayer(LayerAlignment alignment);
    void setPlacement(const ImagePlacement& placement, Pace pace = Pace::once);
    void addShape(ShapeKind kind);
    void deleteSelectedLayer();
    void deleteShape(QUuid shape);

    // Begins a gesture on the canvas. All changes until endCanvasHistoryEdit() are one undo step.
    // The end copies the frame of `movedLayer` to the other selected items.
    void beginCanvasHistoryEdit() { m_editing.beginCanvasHistoryEdit(); }
    // Replaces the current item by `item`, a copy edited on the canvas. `selected`: the layer to
    // select, or a null id to select none; empty leaves the selection as it is.
    void commitCanvasItem(const PublicationItem& item, std::optional<QUuid> selected = {});
    void endCanvasHistoryEdit(QUuid movedLayer);

    // Copies the style of the selected layer. pasteStyle() applies it to all selected items.
    void copyStyle();
    // Copies from any item: the text of the selected text's slot, or the shape with the id of the
    // selected shape.
    void copyStyleOf(QUuid item);
    bool canPasteStyle() const;
    void pasteStyle();

    // Applies the design to every selected item, as one undo step. `name` is for the status
    // sentence.
    void applyTemplate(const QString& name, const TemplateApplication& design);
    // The same to try a design: a try that directly follows another one of the same items replaces
    // it, in the items and as their undo step.
    void tryTemplate(const QString& name, const TemplateApplication& design);
    // Applies the style to the selected text, and to the text of its slot in the other selected
    // items.
    void applyStyle(const DesignTemplate& style);

    // The price to show for an export of the current item, in credits; empty while unknown.
    std::optional<qint64> displayedExportCurrentCost() const
    {
        return m_exports.displayedExportCurrentCost();
    }
    std::optional<qint64> displayedExportAllCost() const
    {
        return m_exports.displayedExportAllCost();
    }
    // Runs exports, one at a time, and knows which items are paid.
    StudioExports& exports() { return m_exports; }
    const StudioExports& exports() const { return m_exports; }
    // Exports one item to the file `path`. If the item is gone, exportItem() tells the user and
    // writes nothing.
    void exportCurrent(const QString& path);
    void exportItem(QUuid item, const QString& path) { m_exports.exportItem(item, path); }
    // Exports the selected items if there are several, else all, into `folder`.
    void exportAll(const QString& folder);

    // Generates copy, one run at a time. Local copy needs a writer.
    StudioCopy& copy() { return m_copy; }
    const StudioCopy& copy() const { return m_copy; }
    void setLocalCopyWriter(const LocalCopyWriter& writer) { m_copy.setLocalWriter(writer); }
    void setCloudCopyService(const CloudAIService& service) { m_copy.setCloudService(service); }
    bool isAnalyzing() const { return m_copy.isAnalyzing(); }
    // Publishes the selected items, one post at a time.
    StudioPublish& publish() { return m_publish; }
    const StudioPublish& publish() const { return m_publish; }
    void setPublishService(AccountAPI& api) { m_publish.setService(api); }
    // Told by editors that hold text which the batch has not got yet: results of a run wait for it.
    void setTyping(bool isTyping);
    // Does what a status sentence offers.
    void act(StatusAction action);
    // The caption that is posted with the current item.
    void setCaption(const QString& caption, Pace pace = Pace::once);

    const Payments& payments() const { return m_payments; }
    // Records that these renders are paid, which undo does not revert. `strike` is called in the
    // transaction that stores the payment, and may be empty. Returns whether the payment is stored
    // already.
    bool markRenderedOutputsAsPaid(const QList<RenderedOutput>& outputs, const Strike& strike);

Q_SIGNALS:
    // Emitted before another item, layer or state becomes the current one. Receivers finish what is
    // being typed, while that still edits the present one.
    void aboutToMove();
    void batchChanged();
    void statusChanged();
    void generationModeChanged();
    void presentationChanged();
    void copiedStyleChanged();
    void activityChanged(Activity::Kind kind);    // it began, progressed or ended
    void costsChanged();                          // prices changed, or which items are paid
    void copyChanged();                           // anything that copy() returns
    void publishChanged();    // anything that publish() returns, but the progress

private:
    void changeFrame(const LayerEdits::FrameChange& change, const Step& step, Pace pace);
    void followChange(Editing::Outcome outcome, Pace pace);
    void showImport(const PhotoImport::Progress& progress);
    void stopImport();
    void finishImport(const std::optional<PhotoImport::Imported>& imported, const QString& failure);
    void followExport();
    void followCopy();
    void askAboutLink();
    void followPublish();
    StatusLink copyLink() const;
    void finishCopy(const CopyOutcome& outcome);
    void finishRestore(const std::optional<Batch>& restored);
    void finishRestoreAside(const WorkspaceStore::Restored& restored);
    // Returns `batch` with all known payments in its items. Adds payments that are known only to
    // these items to m_payments.
    Batch withPayments(Batch batch);
    ChargeServices chargeServices();
    CopyServices copyServices();

    StatusLog m_log;
    Activities m_activities;
    Editing m_editing;
    Workspace m_workspace;
    StudioImports m_imports;
    StyleClipboard m_copiedStyle;
    // Of the last tryTemplate(): its undo step, and the items that it reached.
    Step m_try = Step::run();
    QSet<QUuid> m_triedOn;
    QList<QUrl> m_loadAfterRestore;
    AccountSession* m_accountSession = nullptr;
    bool m_isAskingAboutLink = false;
    std::optional<AccountPanelDestination> m_accountPanel;
    bool m_isAppSettingsPresented = false;
    CopyGenerationMode m_generationMode = CopyGenerationMode::local;
    StudioExports m_exports;
    StudioCopy m_copy;
    StudioPublish m_publish;
    bool m_isTyping = false;
    Payments m_payments;
};
