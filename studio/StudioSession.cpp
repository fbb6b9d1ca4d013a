#include "studio/StudioSession.h"

#include "studio/BatchSelection.h"

#include <QPointer>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 importStep = 30;    // ms between two reports of an import

}    // namespace

StudioSession::StudioSession(std::shared_ptr<PhotoCache> photos, QObject* parent)
    : QObject(parent), m_photos(std::move(photos)),
      m_status(u"Importa una imagen o una carpeta para empezar."_s)
{
}

StudioSession::~StudioSession()
{
    if (m_import)
        m_import->stop = true;
}

// Every command goes through here: listeners hear of it only when it changed something.
template <typename Change>
void StudioSession::change(Change apply)
{
    const Batch before = m_batch;
    apply(m_batch);
    if (!(m_batch == before))
        Q_EMIT batchChanged();
}

void StudioSession::setStatus(const QString& status, StatusTone tone)
{
    m_status = status;
    m_statusTone = tone;
    Q_EMIT statusChanged();
}

void StudioSession::load(const QList<QUrl>& filesAndFolders)
{
    if (m_import)
        m_import->stop = true;
    auto control = std::make_shared<PhotoImport::Control>();
    m_import = control;
    m_importProgress = {};
    m_importTold.invalidate();
    control->progressed = [this,
                           weak = std::weak_ptr(control)](const PhotoImport::Progress& progress) {
        // A stopped import says nothing more; one that is not stopped has its session.
        if (m_import != weak.lock())
            return;
        // Whoever shows the progress looks at every photo of it: with thousands, not at each step.
        if (m_importTold.isValid() && m_importTold.elapsed() < importStep &&
            progress.looked < progress.total)
            return;
        m_importTold.start();
        m_importProgress = progress;
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
    std::optional<QList<PublicationItem>> items;
    QString failure;
    try {
        items = co_await importing;
    } catch (const std::exception& error) {
        failure = QString::fromLocal8Bit(error.what());
    }
    // It may have been replaced by another import, and the session may be gone by now.
    if (!session || session->m_import != control)
        co_return;
    session->finishImport(items);
    if (!failure.isEmpty()) {
        session->setStatus(u"No se pudieron importar las imágenes: %1."_s.arg(failure),
                           StatusTone::problem);
    }
}

void StudioSession::finishImport(const std::optional<QList<PublicationItem>>& items)
{
    m_import.reset();
    m_importProgress = {};
    if (items && !items->isEmpty()) {
        change([&](Batch& batch) { BatchSelection::replaceItems(batch, *items); });
        setStatus(u"%1 imagen(es) importada(s). Pulsa Generar con Gemma."_s.arg(items->size()),
                  StatusTone::done);
    } else if (items) {
        setStatus(u"No he encontrado imágenes compatibles."_s, StatusTone::problem);
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

void StudioSession::setFormat(SocialFormat format)
{
    change([&](Batch& batch) { batch.format = format; });
}

void StudioSession::setObjective(const QString& objective)
{
    change([&](Batch& batch) { batch.objective = objective; });
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
    change([&](Batch& batch) { BatchSelection::selectItem(batch, index, modifiers); });
}

void StudioSession::selectSingleIndex(int index)
{
    change([&](Batch& batch) { BatchSelection::selectSingleIndex(batch, index); });
}

void StudioSession::selectAll()
{
    change([](Batch& batch) { BatchSelection::selectAll(batch); });
}

void StudioSession::selectLayer(QUuid layer)
{
    change([&](Batch& batch) {
        if (batch.currentItem() && batch.currentItem()->hasLayer(layer))
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
    const auto item = std::ranges::find(m_batch.items, id, &PublicationItem::id);
    if (item == m_batch.items.end())
        return;
    const QString name = item->filename();
    change([id](Batch& batch) { BatchSelection::removeItem(batch, id); });
    setStatus(
        u"%1 descartada. Quedan %2 imagen(es)."_s.arg(name, QString::number(m_batch.items.size())),
        StatusTone::done);
}

void StudioSession::setCurrentItem(const PublicationItem& item)
{
    change([&](Batch& batch) {
        if (batch.currentItem() && batch.currentItem()->id == item.id)
            batch.items[batch.selectedIndex] = item;
        BatchSelection::settleSelectedLayer(batch);
    });
}

void StudioSession::applyLayerChangeToSelectedItems(const TextLayer& layer,
                                                    LayerEdits::AlongFlags along)
{
    change([&](Batch& batch) { LayerEdits::applyLayerChangeToSelectedItems(batch, layer, along); });
}

void StudioSession::applyShapeChangeToSelectedItems(const ShapeLayer& shape)
{
    change([&](Batch& batch) { LayerEdits::applyShapeChangeToSelectedItems(batch, shape); });
}

void StudioSession::syncCurrentCanvasEditsToSelectedItems(QUuid movedLayer)
{
    change([&](Batch& batch) {
        LayerEdits::syncCurrentCanvasEditsToSelectedItems(batch, movedLayer);
    });
}

void StudioSession::addShape(ShapeKind kind)
{
    change([&](Batch& batch) { LayerEdits::addShape(batch, kind); });
}

void StudioSession::deleteSelectedLayer()
{
    change([](Batch& batch) { LayerEdits::deleteSelectedLayer(batch); });
}
