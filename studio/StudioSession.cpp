#include "studio/StudioSession.h"

#include "canvas/ImagePlacementGeometry.h"
#include "model/PlainText.h"
#include "platform/PreferencesStore.h"
#include "studio/batch/BatchSelection.h"
#include "studio/batch/StepName.h"
#include "studio/sheet/TextSheetFile.h"

#include <QElapsedTimer>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

QString startStatus()
{
    return u"Importa una imagen o una carpeta para empezar."_s;
}

QString unreadableSentence(qsizetype files)
{
    return files == 1 ? u"1 no se ha podido leer."_s : u"%1 no se han podido leer."_s.arg(files);
}

QElapsedTimer started()
{
    QElapsedTimer watch;
    watch.start();
    return watch;
}

constexpr std::chrono::milliseconds importStep = 30ms;    // between two reports of an import
constexpr std::chrono::milliseconds timeToRead = 3s;      // for a problem
constexpr std::chrono::milliseconds restBeforeSaving = 50ms, pauseBeforeRetry = 5s;

}    // namespace

StudioSession::StudioSession(std::shared_ptr<PhotoCache> photos, PreferencesStore& preferences,
                             Clock clock, const OutputSize& outputSize)
    : m_photos(std::move(photos)), m_preferences(preferences), m_clock(std::move(clock)),
      m_status(startStatus()), m_exports(m_photos, outputSize, chargeServices())
{
    // Before anybody else hears of it, so that they find the prices of this batch.
    connect(this, &StudioSession::batchChanged, &m_exports, [this] { m_exports.follow(m_batch); });
    connect(&m_exports, &StudioExports::working, this,
            [this](const QString& sentence) { setStatus(sentence); });
    connect(&m_exports, &StudioExports::told, this, &StudioSession::setStatus);
    connect(&m_exports, &StudioExports::toldMore, this, [this](const QString& sentence) {
        setStatus(m_status + sentence, m_statusTone, m_statusLink);
    });
    connect(&m_exports, &StudioExports::changed, this, &StudioSession::exportChanged);
    connect(&m_exports, &StudioExports::costsChanged, this, &StudioSession::costsChanged);
    m_saveLater.setSingleShot(true);
    connect(&m_saveLater, &QTimer::timeout, this, &StudioSession::saveWorkspace);
}

StudioSession::~StudioSession()
{
    if (m_import)
        m_import->stop = true;
    if (m_saveLater.isActive())
        saveWorkspace();
}

// Every command goes through here: listeners hear of it only when it changed something.
template <typename Change>
void StudioSession::change(Change apply, Pace pace)
{
    const Batch before = m_batch;
    apply(m_batch);
    const bool isSetting = m_batch.format != before.format || m_batch.objective != before.objective;
    const bool isEdit = isSetting || !(m_batch.items == before.items);
    if (!isEdit && m_batch == before) {
        // A value that was held is released where it is.
        if (pace == Pace::once && m_saveLater.isActive())
            saveWorkspace();
        return;
    }
    if (isEdit) {
        registerUndo(m_operationBefore.value_or(before), isSetting
                                                             ? StudioHistory::Changes::single
                                                             : StudioHistory::Changes::continuous);
    }
    if (isEdit)
        forgetOldStatus();
    // Going through the images with a key held is no reason to store each step.
    saveAfter(isEdit ? pace : Pace::held);
    Q_EMIT batchChanged();
}

StudioSession::ResultStep::ResultStep(StudioSession& session)
    : m_session(session), m_isRecorded(session.m_isApplyingHistory, false)
{
    Q_EMIT session.aboutToMove();
    session.endCanvasHistoryEdit({});
    session.m_history.endContinuousChanges();
}

StudioSession::ResultStep::~ResultStep()
{
    m_session.m_history.endContinuousChanges();
}

void StudioSession::registerUndo(const Batch& before, StudioHistory::Changes changes)
{
    if (didRestoreWorkspace() && !m_isApplyingHistory)
        m_history.registerUndo(before, m_batch, changes, m_clock());
}

void StudioSession::undo()
{
    Q_EMIT aboutToMove();
    if (auto snapshot = m_history.undo(m_batch)) {
        setStatus(u"Deshecho: %1."_s.arg(stepName(*snapshot, m_batch)));
        applyHistorySnapshot(*std::move(snapshot));
    }
}

void StudioSession::redo()
{
    Q_EMIT aboutToMove();
    if (auto snapshot = m_history.redo(m_batch)) {
        setStatus(u"Rehecho: %1."_s.arg(stepName(m_batch, *snapshot)));
        applyHistorySnapshot(*std::move(snapshot));
    }
}

void StudioSession::applyHistorySnapshot(StudioHistorySnapshot snapshot)
{
    m_isApplyingHistory = true;
    m_payments.exchange(snapshot);
    QSet<QUuid> ids;
    for (const PublicationItem& item : snapshot.items)
        ids.insert(item.id);
    snapshot.selectedItemIDs.intersect(ids);
    const int last = std::max(0, int(snapshot.items.size()) - 1);
    snapshot.selectedIndex = std::clamp(snapshot.selectedIndex, 0, last);
    snapshot.selectionAnchorIndex = std::clamp(snapshot.selectionAnchorIndex, 0, last);
    m_batch = std::move(snapshot);
    saveAfter(Pace::once);
    Q_EMIT batchChanged();
    // Only when whoever heard of the change is done: what they write back is no new step.
    QMetaObject::invokeMethod(
        this, [this] { m_isApplyingHistory = false; }, Qt::QueuedConnection);
}

void StudioSession::saveAfter(Pace pace)
{
    if (!didRestoreWorkspace() || m_history.isCanvasEditActive())
        return;
    if (pace == Pace::held)
        m_saveLater.start(restBeforeSaving);
    else
        saveWorkspace();
}

// Where no lock could be had, on a full disk for instance, another window may be open.
bool StudioSession::claimStore()
{
    const auto writer = WorkspaceStore::writer(m_preferences);
    // A store that was just made, in place of a damaged one, has no writer.
    m_isStoreOfAnother = writer && writer != m_writerSeen && writer != m_writer;
    return !m_isStoreOfAnother &&
           (writer == m_writer || WorkspaceStore::setWriter(m_preferences, m_writer));
}

// What was paid for is stored, and its payment settled, both or neither.
bool StudioSession::store()
{
    const auto save = [this] {
        return claimStore() && WorkspaceStore::save(m_preferences, m_encoder, m_batch) &&
               std::ranges::all_of(m_strikes, [](const Strike& strike) { return strike(); });
    };
    const bool isStored = m_preferences.transaction(save);
    if (isStored)
        m_strikes.clear();
    return isStored;
}

void StudioSession::saveWorkspace()
{
    m_saveLater.stop();
    if (!didRestoreWorkspace() || m_isStoreOfAnother)
        return;
    keepWhatIsStored();
    const bool isAside = !m_notYetAside || WorkspaceStore::setAside(m_preferences, *m_notYetAside);
    if (isAside)
        m_notYetAside.reset();
    if (!isAside || !store()) {
        const bool isNews = !std::exchange(m_saveFailed, true) || m_isStoreOfAnother;
        if (!m_isStoreOfAnother)
            m_saveLater.start(pauseBeforeRetry);
        if (isNews)
            setStatus(failedSaving(), StatusTone::problem);
    } else if (std::exchange(m_saveFailed, false)) {
        setStatus(u"La sesión vuelve a guardarse."_s, StatusTone::done);
        tellOfStore();
    }
}

QString StudioSession::failedSaving() const
{
    if (m_isStoreOfAnother) {
        return u"Otra ventana de Moltiva guarda ahora el lote: lo que cambies en esta no se "
               "guardará."_s;
    }
    return u"No se pudo guardar la sesión: %1. Puedes seguir: se vuelve a intentar con cada cambio."_s
        .arg(m_preferences.reason());
}

void StudioSession::tellOfStore()
{
    if (const QString problem = m_preferences.takeProblem(); !problem.isEmpty())
        setStatus(problem, StatusTone::problem);
}

// A store that opens only now may hold a batch that nobody has seen yet.
void StudioSession::keepWhatIsStored()
{
    if (!m_isStoredUnseen || !m_preferences.open())
        return;
    m_isStoredUnseen = false;
    m_writerSeen = WorkspaceStore::writer(m_preferences);
    if (const auto document = WorkspaceStore::stored(m_preferences))
        m_notYetAside = *document;
}

void StudioSession::restoreWorkspaceIfNeeded()
{
    if (m_restore != Restore::notYet)
        return;
    m_restore = Restore::running;
    m_isStoredUnseen = !m_preferences.isReadable();
    m_writerSeen = WorkspaceStore::writer(m_preferences);
    const auto document = WorkspaceStore::stored(m_preferences);
    if (document && m_batch.items.isEmpty())
        runRestore(this, *document, m_photos);
    else
        finishRestore({}, {});
}

QCoro::Task<> StudioSession::runRestore(QPointer<StudioSession> session, QByteArray document,
                                        std::shared_ptr<PhotoCache> photos)
{
    const auto looked = [session, watch = started()](qsizetype count, qsizetype total) {
        constexpr qint64 worthTelling = 300;    // ms
        if (session && watch.elapsed() > worthTelling)
            session->setStatus(u"Restaurando sesión: %1 de %2"_s.arg(count).arg(total));
    };
    auto restoring = WorkspaceStore::restore(document, photos, looked);
    WorkspaceStore::Restored restored{std::nullopt, false, false};
    try {
        restored = co_await restoring;
    } catch (const std::exception&) {
        // Short of memory: kept aside, like what cannot be read.
        restored.workspace.reset();
    }
    if (session)
        session->finishRestore(restored, document);
}

void StudioSession::finishRestore(const WorkspaceStore::Restored& restored,
                                  const QByteArray& document)
{
    m_restore = Restore::done;
    if (!restored.isComplete && !WorkspaceStore::setAside(m_preferences, document))
        m_notYetAside = document;
    if (restored.workspace && m_batch.items.isEmpty()) {
        m_batch = *restored.workspace;
        m_payments.exchange(m_batch);
        m_history.clear();
        setStatus(u"Sesión restaurada con %1 imagen(es)."_s.arg(m_batch.items.size()),
                  StatusTone::done);
    } else if (!restored.workspace && restored.isDecoded && !document.isEmpty() && !m_notYetAside) {
        WorkspaceStore::clear(m_preferences);
    }
    if (m_batch.items.isEmpty())
        setStatus(startStatus());    // and not how far the restoring came
    tellOfStore();
    Q_EMIT batchChanged();
    m_exports.startTelling();
    if (!m_loadAfterRestore.isEmpty())
        load(std::exchange(m_loadAfterRestore, {}));
}

bool StudioSession::hasWorkspaceAside() const
{
    return WorkspaceStore::hasAside(m_preferences);
}

void StudioSession::restoreWorkspaceAside()
{
    if (m_isRestoringAside)
        return;
    const auto document = WorkspaceStore::storedAside(m_preferences);
    if (!document || !didRestoreWorkspace()) {
        setStatus(u"No hay ninguna sesión apartada."_s);
        return;
    }
    m_isRestoringAside = true;
    setStatus(u"Recuperando la sesión apartada…"_s);
    runRestoreAside(this, *document, m_photos);
}

QCoro::Task<> StudioSession::runRestoreAside(QPointer<StudioSession> session, QByteArray document,
                                             std::shared_ptr<PhotoCache> photos)
{
    auto restoring = WorkspaceStore::restore(document, photos, {});
    WorkspaceStore::Restored restored{std::nullopt, false, false};
    try {
        restored = co_await restoring;
    } catch (const std::exception&) {
        restored.workspace.reset();
    }
    if (session)
        session->finishRestoreAside(restored);
}

void StudioSession::finishRestoreAside(const WorkspaceStore::Restored& restored)
{
    m_isRestoringAside = false;
    if (!restored.workspace) {
        setStatus(u"La sesión apartada sigue sin poder leerse. ¿Falta conectar un disco?"_s,
                  StatusTone::problem);
        return;
    }
    const ResultStep step(*this);
    setStatus(u"Sesión restaurada con %1 imagen(es)."_s.arg(restored.workspace->items.size()),
              StatusTone::done);
    change([&](Batch& batch) {
        batch = *restored.workspace;
        m_payments.exchange(batch);
    });
    if (restored.isComplete && !m_saveFailed)
        WorkspaceStore::clearAside(m_preferences);
}

void StudioSession::setStatus(const QString& status, StatusTone tone, const StatusLink& link)
{
    m_status = status;
    m_statusTone = tone;
    m_statusLink = link;
    m_statusTold = m_clock();
    if (!std::exchange(m_isStatusOfThisTurn, true)) {
        QMetaObject::invokeMethod(
            this, [this] { m_isStatusOfThisTurn = false; }, Qt::QueuedConnection);
    }
    Q_EMIT statusChanged();
}

// What was told of an earlier command says nothing of the batch as it is now.
void StudioSession::forgetOldStatus()
{
    const bool isUnread =
        m_statusTone >= StatusTone::problem && m_clock() - m_statusTold < timeToRead;
    const bool leadsOn = !m_statusLink.details.isEmpty();    // to names that are told nowhere else
    if (m_isStatusOfThisTurn || isUnread || leadsOn || m_saveFailed || isImporting() ||
        isExporting() || m_isRestoringAside || m_status.isEmpty())
        return;
    setStatus({});
    m_isStatusOfThisTurn = false;
}

void StudioSession::load(const QList<QUrl>& filesAndFolders)
{
    if (m_restore == Restore::running) {
        m_loadAfterRestore = filesAndFolders;
        return;
    }
    if (m_import)
        m_import->stop = true;
    auto control = std::make_shared<PhotoImport::Control>();
    m_import = control;
    m_importProgress = {};
    m_importTold.reset();
    control->progressed = [this,
                           weak = std::weak_ptr(control)](const PhotoImport::Progress& progress) {
        // A stopped import says nothing more; one that is not stopped has its session.
        if (m_import != weak.lock())
            return;
        // Whoever shows the progress looks at every photo of it: with thousands, not at each step.
        const StudioHistory::Time now = m_clock();
        if (m_importTold && now - *m_importTold < importStep && progress.looked < progress.total)
            return;
        m_importTold = now;
        m_importProgress = progress;
        // What was refused meanwhile can be read before the count goes on.
        if (m_statusTone != StatusTone::problem || now - m_statusTold > timeToRead)
            setStatus(u"Importando %1 de %2"_s.arg(progress.looked).arg(progress.total));
        Q_EMIT importChanged();
    };
    setStatus(u"Buscando imágenes…"_s);
    Q_EMIT importChanged();
    runImport(this, filesAndFolders, m_photos, control);
}

QCoro::Task<> StudioSession::runImport(QPointer<StudioSession> session, QList<QUrl> urls,
                                       std::shared_ptr<PhotoCache> photos,
                                       std::shared_ptr<PhotoImport::Control> control)
{
    auto importing = PhotoImport::importPhotos(urls, photos, control);
    std::optional<PhotoImport::Imported> imported;
    QString failure;
    try {
        imported = co_await importing;
    } catch (const std::exception& error) {
        failure = QString::fromLocal8Bit(error.what());
    }
    // It may have been replaced by another import, and the session may be gone by now.
    if (!session || session->m_import != control)
        co_return;
    session->finishImport(imported);
    if (!failure.isEmpty()) {
        session->setStatus(u"No se pudieron importar las imágenes: %1."_s.arg(failure),
                           StatusTone::problem);
    }
}

void StudioSession::finishImport(const std::optional<PhotoImport::Imported>& imported)
{
    m_import.reset();
    m_importProgress = {};
    const auto tell = [&](const QString& sentence, StatusTone tone) {
        const qsizetype unread = imported->unreadable.size();
        if (unread == 0)
            return setStatus(sentence, tone);
        setStatus(sentence + u' ' + unreadableSentence(unread), StatusTone::problem,
                  {.details = imported->unreadable});
    };
    if (imported && !imported->items.isEmpty()) {
        const ResultStep step(*this);
        // Told first: should it not be stored, that is the last word.
        tell(u"%1 imagen(es) importada(s). Pulsa Generar con Gemma."_s.arg(imported->items.size()),
             StatusTone::done);
        change([&](Batch& batch) { BatchSelection::replaceItems(batch, imported->items); });
    } else if (imported) {
        tell(u"No he encontrado imágenes compatibles."_s, StatusTone::problem);
    }
    Q_EMIT importChanged();
}

void StudioSession::stopImport()
{
    if (!m_import)
        return;
    m_import->stop = true;
    m_import.reset();
    m_importProgress = {};
    setStatus(u"Importación cancelada. El lote sigue como estaba."_s);
    Q_EMIT importChanged();
}

void StudioSession::applyTexts(const TextSheet& sheet)
{
    const ResultStep step(*this);
    PublicationItems items = m_batch.items;
    const SheetMatch match = applyTextSheet(items, sheet);
    setStatus(sentenceOn(match), match.problems.isEmpty() ? StatusTone::done : StatusTone::problem);
    change([&](Batch& batch) { batch.items = items; });
}

void StudioSession::setFormat(SocialFormat format)
{
    change([&](Batch& batch) { batch.format = format; });
}

void StudioSession::setObjective(const QString& objective)
{
    change([&](Batch& batch) { batch.objective = objective; });
}

void StudioSession::setAccountPanel(std::optional<AccountPanelDestination> panel)
{
    if (std::exchange(m_accountPanel, panel) != panel)
        Q_EMIT presentationChanged();
}

void StudioSession::setAppSettingsPresented(bool presented)
{
    if (std::exchange(m_isAppSettingsPresented, presented) != presented)
        Q_EMIT presentationChanged();
}

void StudioSession::setGenerationMode(CopyGenerationMode mode)
{
    if (m_generationMode == mode)
        return;
    m_generationMode = mode;
    Q_EMIT generationModeChanged();
}

void StudioSession::selectItem(int index, Qt::KeyboardModifiers modifiers)
{
    Q_EMIT aboutToMove();
    change([&](Batch& batch) { BatchSelection::selectItem(batch, index, modifiers); });
}

void StudioSession::selectSingleIndex(int index)
{
    Q_EMIT aboutToMove();
    change([&](Batch& batch) { BatchSelection::selectSingleIndex(batch, index); });
}

void StudioSession::selectAll()
{
    Q_EMIT aboutToMove();
    change([](Batch& batch) { BatchSelection::selectAll(batch); });
}

void StudioSession::selectLayer(QUuid layer)
{
    Q_EMIT aboutToMove();
    change([&](Batch& batch) {
        if (batch.currentItem() && (layer.isNull() || batch.currentItem()->hasLayer(layer)))
            batch.selectedLayerID = layer;
    });
}

// No wrap-around: beyond the ends there is no index, and nothing happens.
void StudioSession::previousItem()
{
    selectSingleIndex(m_batch.selectedIndex - 1);
}

void StudioSession::nextItem()
{
    selectSingleIndex(m_batch.selectedIndex + 1);
}

QList<int> StudioSession::selectedIndicesForBatch() const
{
    return BatchSelection::selectedIndicesForBatch(m_batch);
}

void StudioSession::removeCurrentItem()
{
    if (m_batch.currentItem())
        removeItem(m_batch.currentItem()->id);
}

void StudioSession::removeItem(QUuid id)
{
    Q_EMIT aboutToMove();
    const auto item = std::ranges::find(m_batch.items, id, &PublicationItem::id);
    if (item == m_batch.items.end())
        return;
    setStatus(u"%1 descartada. Quedan %2."_s.arg(
                  item->filename(), counted(m_batch.items.size() - 1, u"imagen", u"imágenes")),
              StatusTone::done);
    change([id](Batch& batch) { BatchSelection::removeItem(batch, id); });
}

void StudioSession::setCurrentItem(const PublicationItem& item, Pace pace)
{
    change([&](Batch& batch) { LayerEdits::replaceCurrentItem(batch, item); }, pace);
}

void StudioSession::setText(CopySlot slot, const QString& text, Pace pace)
{
    change(
        [&](Batch& batch) {
            TextLayer* layer =
                batch.currentItem() ? batch.items.edit(batch.selectedIndex).layer(slot) : nullptr;
            if (!layer || layer->text == text)
                return;
            layer->text = text;
            layer->isVisible = true;
        },
        pace);
}

void StudioSession::editLayer(const TextLayer& layer, LayerEdits::Copied copied, Pace pace)
{
    change([&](Batch& batch) { LayerEdits::editLayer(batch, layer, copied); }, pace);
}

void StudioSession::editShape(const ShapeLayer& shape, Pace pace)
{
    change([&](Batch& batch) { LayerEdits::editShape(batch, shape); }, pace);
}

void StudioSession::setPlacement(const ImagePlacement& placement, Pace pace)
{
    change(
        [&](Batch& batch) {
            if (!batch.currentItem())
                return;
            PublicationItem& item = batch.items.edit(batch.selectedIndex);
            item.placement = ImagePlacementGeometry::moved(item.placement, placement,
                                                           item.image.size, batch.format);
        },
        pace);
}

void StudioSession::addShape(ShapeKind kind)
{
    Q_EMIT aboutToMove();
    change([&](Batch& batch) { LayerEdits::addShape(batch, kind); });
}

void StudioSession::deleteSelectedLayer()
{
    change([](Batch& batch) { LayerEdits::deleteSelectedLayer(batch); });
}

void StudioSession::deleteShape(QUuid shape)
{
    Q_EMIT aboutToMove();
    setStatus(u"Forma eliminada."_s, StatusTone::done);
    change([&](Batch& batch) { LayerEdits::deleteShape(batch, shape); });
}

void StudioSession::beginCanvasHistoryEdit()
{
    if (!m_isApplyingHistory)
        m_history.beginCanvasEdit(m_batch);
}

void StudioSession::commitCanvasItem(const PublicationItem& item)
{
    const PublicationItem* before = m_batch.currentItem();
    const auto shown = [](const PublicationItem& of) {
        return std::ranges::count_if(of.layers, &TextLayer::isVisible);
    };
    if (before && item.shapeLayers.size() < before->shapeLayers.size())
        setStatus(u"Forma eliminada."_s, StatusTone::done);
    else if (before && shown(item) < shown(*before))
        setStatus(u"Texto oculto. Vuelve a mostrarlo con su ojo en el panel."_s, StatusTone::done);
    change([&](Batch& batch) { LayerEdits::commitCanvasItem(batch, item); });
}

void StudioSession::endCanvasHistoryEdit(QUuid movedLayer)
{
    if (!m_history.isCanvasEditActive())
        return;
    LayerEdits::syncCurrentCanvasEditsToSelectedItems(m_batch, movedLayer);
    const Batch before = *m_history.endCanvasEdit();
    if (before == m_batch)
        return;
    // What only selected another layer, as a pan that moves nothing does, is no step.
    if (!(before.items == m_batch.items))
        registerUndo(before, StudioHistory::Changes::single);
    saveAfter(Pace::once);
    Q_EMIT batchChanged();    // last: who hears of it asks for the step, too
}

void StudioSession::copyStyle()
{
    if (m_batch.currentItem())
        copyStyleOf(m_batch.currentItem()->id);
}

void StudioSession::copyStyleOf(QUuid itemId)
{
    Q_EMIT aboutToMove();
    const auto item = std::ranges::find(m_batch.items, itemId, &PublicationItem::id);
    const QString copied =
        item == m_batch.items.end() ? QString() : m_copiedStyle.copyFrom(*item, m_batch);
    if (copied.isEmpty()) {
        setStatus(u"Selecciona una capa para copiar su estilo."_s);
        return;
    }
    setStatus(u"Estilo de %1 copiado."_s.arg(copied), StatusTone::done);
    Q_EMIT copiedStyleChanged();
}

bool StudioSession::canPasteStyle() const
{
    return m_copiedStyle.fits(m_batch);
}

void StudioSession::pasteStyle()
{
    if (!canPasteStyle()) {
        setStatus(u"Copia antes un estilo."_s);
        return;
    }
    const qsizetype reached = selectedIndicesForBatch().size();
    setStatus(reached > 1 ? u"Estilo pegado en %1 imágenes."_s.arg(reached) : u"Estilo pegado."_s,
              StatusTone::done);
    change([this](Batch& batch) { m_copiedStyle.pasteInto(batch); });
}

void StudioSession::applyTemplate(const QString& name, const TemplateApplication& design)
{
    const QList<int> reached = selectedIndicesForBatch();
    if (reached.isEmpty())
        return;
    Q_EMIT aboutToMove();
    setStatus(u"Plantilla «%1» aplicada a %2."_s.arg(
                  name, counted(reached.size(), u"imagen", u"imágenes")),
              StatusTone::done);
    m_history.endContinuousChanges();    // a click is a step of its own
    change([&](Batch& batch) {
        for (const int index : reached)
            design(batch.items.edit(index));
        BatchSelection::settleSelectedLayer(batch);
    });
    m_history.endContinuousChanges();
}

void StudioSession::applyStyle(const DesignTemplate& style)
{
    const PublicationItem* item = m_batch.currentItem();
    if (!item)
        return;
    const auto text = std::ranges::find(item->layers, m_batch.selectedLayerID, &TextLayer::id);
    if (text == item->layers.end()) {
        setStatus(u"Selecciona un texto para cambiar su estilo."_s);
        return;
    }
    TextLayer changed = *text;
    style.style.apply(changed);
    setStatus(u"Estilo «%1» aplicado a %2."_s.arg(
                  style.name, counted(selectedIndicesForBatch().size(), u"imagen", u"imágenes")),
              StatusTone::done);
    m_history.endContinuousChanges();
    editLayer(changed);
    m_history.endContinuousChanges();
}

void StudioSession::exportCurrent(const QString& path)
{
    if (const PublicationItem* const item = m_batch.currentItem())
        exportItem(item->id, path);
}

void StudioSession::exportAll(const QString& folder)
{
    QList<QUuid> items;
    for (const int index : exportIndices())
        items.append(m_batch.items[index].id);
    exportItems(items, folder);
}

void StudioSession::setAccountSession(AccountSession& account)
{
    m_accountSession = &account;
    m_exports.setAccount(account);
}

void StudioSession::setCreditJournal(CreditJournal& journal, const QString& stagingPlace)
{
    m_exports.setJournal(journal, stagingPlace);
}

ChargeServices StudioSession::chargeServices()
{
    const QPointer<StudioSession> self = this;
    ChargeServices services;
    services.payments = [self] { return self ? self->m_payments : Payments(); };
    services.record = [self](const QList<RenderedOutput>& outputs, const Strike& strike) {
        return self && self->markRenderedOutputsAsPaid(outputs, strike);
    };
    return services;
}

bool StudioSession::markRenderedOutputsAsPaid(const QList<RenderedOutput>& outputs,
                                              const Strike& strike)
{
    m_payments.add(outputs);
    PublicationItems::Change change;
    m_payments.exchange(m_batch, change);
    m_history.amend([&](Batch& state) { m_payments.exchange(state, change); });
    // Else a later change could join a step from before the payment.
    m_history.endContinuousChanges();
    if (strike)
        m_strikes.append(strike);
    saveWorkspace();
    Q_EMIT batchChanged();
    return !m_saveFailed;
}
