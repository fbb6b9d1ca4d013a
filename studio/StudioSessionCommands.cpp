#include "studio/StudioSession.h"

#include "canvas/ImagePlacementGeometry.h"
#include "model/PlainText.h"
#include "studio/batch/BatchSelection.h"
#include "studio/batch/StepName.h"
#include "studio/sheet/TextSheetFile.h"

// The part of StudioSession with the commands on the batch.

using namespace Qt::StringLiterals;

void StudioSession::undo()
{
    Q_EMIT aboutToMove();
    if (const auto snapshot = m_editing.takeUndo()) {
        setStatus(u"Deshecho: %1."_s.arg(stepName(*snapshot, batch())));
        m_editing.applyHistorySnapshot(withPayments(*snapshot));
    }
}

void StudioSession::redo()
{
    Q_EMIT aboutToMove();
    if (const auto snapshot = m_editing.takeRedo()) {
        setStatus(u"Rehecho: %1."_s.arg(stepName(batch(), *snapshot)));
        m_editing.applyHistorySnapshot(withPayments(*snapshot));
    }
}

void StudioSession::applyTexts(const TextSheet& sheet)
{
    m_editing.bringBack([&](Batch& batch) {
        PublicationItems items = batch.items;
        const SheetMatch match = applyTextSheet(items, sheet);
        setStatus(sentenceOn(match),
                  match.problems.isEmpty() ? StatusKind::done : StatusKind::warning);
        batch.items = items;
    });
}

void StudioSession::setFormat(SocialFormat format)
{
    m_editing.change([&](Batch& batch) { batch.format = format; }, Step::own());
}

void StudioSession::setObjective(const QString& objective)
{
    m_editing.change([&](Batch& batch) { batch.objective = objective; }, Step::own());
}

void StudioSession::selectItem(int index, Qt::KeyboardModifiers modifiers)
{
    Q_EMIT aboutToMove();
    m_editing.change([&](Batch& batch) { BatchSelection::selectItem(batch, index, modifiers); });
}

void StudioSession::selectSingleIndex(int index)
{
    Q_EMIT aboutToMove();
    m_editing.change([&](Batch& batch) { BatchSelection::selectSingleIndex(batch, index); });
}

void StudioSession::goTo(QUuid item, QUuid layer)
{
    Q_EMIT aboutToMove();
    m_editing.change([&](Batch& batch) {
        const auto found = std::ranges::find(batch.items, item, &PublicationItem::id);
        BatchSelection::goTo(batch, int(found - batch.items.begin()));
        if (batch.currentItem() && batch.currentItem()->hasLayer(layer))
            batch.selectedLayerID = layer;
    });
}

void StudioSession::selectAll()
{
    Q_EMIT aboutToMove();
    m_editing.change([](Batch& batch) { BatchSelection::selectAll(batch); });
}

void StudioSession::selectLayer(QUuid layer)
{
    Q_EMIT aboutToMove();
    m_editing.change([&](Batch& batch) {
        if (batch.currentItem() && (layer.isNull() || batch.currentItem()->hasLayer(layer)))
            batch.selectedLayerID = layer;
    });
}

// selectSingleIndex() ignores an index before the first or after the last item.
void StudioSession::previousItem()
{
    selectSingleIndex(batch().selectedIndex - 1);
}

void StudioSession::nextItem()
{
    selectSingleIndex(batch().selectedIndex + 1);
}

QList<int> StudioSession::selectedIndicesForBatch() const
{
    return BatchSelection::selectedIndicesForBatch(batch());
}

void StudioSession::removeCurrentItem()
{
    if (batch().currentItem())
        removeItem(batch().currentItem()->id);
}

void StudioSession::removeItem(QUuid id)
{
    Q_EMIT aboutToMove();
    const auto item = std::ranges::find(batch().items, id, &PublicationItem::id);
    if (item == batch().items.end())
        return;
    setStatus(u"%1 descartada. Quedan %2."_s.arg(
                  item->filename(), counted(batch().items.size() - 1, u"imagen", u"imágenes")),
              StatusKind::done);
    m_editing.change([id](Batch& batch) { BatchSelection::removeItem(batch, id); });
}

void StudioSession::setCurrentItem(const PublicationItem& item, Pace pace)
{
    m_editing.change([&](Batch& batch) { LayerEdits::replaceCurrentItem(batch, item); },
                     Step::joined(), pace);
}

void StudioSession::setText(CopySlot slot, const QString& text, Pace pace)
{
    m_editing.change(
        [&](Batch& batch) {
            TextLayer* layer =
                batch.currentItem() ? batch.items.edit(batch.selectedIndex).layer(slot) : nullptr;
            if (!layer || layer->text == text)
                return;
            layer->text = text;
            layer->isVisible = true;
        },
        Step::joined(), pace);
}

void StudioSession::setCaption(const QString& caption, Pace pace)
{
    m_editing.change(
        [&](Batch& batch) {
            const PublicationItem* const item = batch.currentItem();
            if (item && item->analysis.publicationCaption != caption)
                writeOwnText(batch.items.edit(batch.selectedIndex), CopyField::caption, caption);
        },
        Step::joined(), pace);
}

void StudioSession::editLayer(const TextLayer& layer, LayerEdits::Copied copied, Pace pace)
{
    m_editing.change([&](Batch& batch) { LayerEdits::editLayer(batch, layer, copied); },
                     Step::joined(), pace);
}

void StudioSession::editShape(const ShapeLayer& shape, Pace pace)
{
    m_editing.change([&](Batch& batch) { LayerEdits::editShape(batch, shape); }, Step::joined(),
                     pace);
}

void StudioSession::moveLayer(double right, double down)
{
    const QSizeF output = exportSize(batch().format);
    changeFrame(
        [&](const CodableRect& frame, SmallestFrame) {
            return LayerFrame::moved(frame, right / output.width(), down / output.height());
        },
        Step::joined(), Pace::held);
}

void StudioSession::resizeLayer(double wider, double taller)
{
    const QSizeF output = exportSize(batch().format);
    changeFrame(
        [&](const CodableRect& frame, SmallestFrame smallest) {
            return LayerFrame::resized(frame, wider / output.width(), taller / output.height(),
                                       smallest);
        },
        Step::joined(), Pace::held);
}

void StudioSession::setLayerFrame(const CodableRect& frame, Pace pace)
{
    changeFrame([&](const CodableRect&, SmallestFrame) { return frame; }, Step::joined(), pace);
}

void StudioSession::alignLayer(LayerAlignment alignment)
{
    changeFrame([alignment](const CodableRect& frame,
                            SmallestFrame) { return LayerFrame::aligned(frame, alignment); },
                Step::own(), Pace::once);
}

void StudioSession::changeFrame(const LayerEdits::FrameChange& change, const Step& step, Pace pace)
{
    const PublicationItem* item = batch().currentItem();
    const QString name = item ? item->layerName(batch().selectedLayerID) : QString();
    if (name.isEmpty())
        return setStatus(u"Selecciona una capa para moverla o cambiar su tamaño."_s);
    Batch changed = batch();
    LayerEdits::changeSelectedFrame(changed, change);
    if (changed == batch())
        return m_editing.change([](Batch&) {}, step, pace);
    const qsizetype images = selectedIndicesForBatch().size();
    setStatus(images > 1 ? u"%1: posición y tamaño en %2 imágenes."_s.arg(name).arg(images)
                         : u"%1: posición y tamaño cambiados."_s.arg(name),
              StatusKind::done);
    m_editing.change([&](Batch& batch) { batch = changed; }, step, pace);
}

void StudioSession::setPlacement(const ImagePlacement& placement, Pace pace)
{
    m_editing.change(
        [&](Batch& batch) {
            if (!batch.currentItem())
                return;
            PublicationItem& item = batch.items.edit(batch.selectedIndex);
            item.placement = ImagePlacementGeometry::moved(item.placement, placement,
                                                           item.image.size, batch.format);
        },
        Step::joined(), pace);
}

void StudioSession::addShape(ShapeKind kind)
{
    Q_EMIT aboutToMove();
    m_editing.change([&](Batch& batch) { LayerEdits::addShape(batch, kind); });
}

void StudioSession::deleteSelectedLayer()
{
    m_editing.change([](Batch& batch) { LayerEdits::deleteSelectedLayer(batch); });
}

void StudioSession::deleteShape(QUuid shape)
{
    Q_EMIT aboutToMove();
    setStatus(u"Forma eliminada."_s, StatusKind::done);
    m_editing.change([&](Batch& batch) { LayerEdits::deleteShape(batch, shape); });
}

void StudioSession::commitCanvasItem(const PublicationItem& item, std::optional<QUuid> selected)
{
    if (selected)
        Q_EMIT aboutToMove();
    const PublicationItem* before = batch().currentItem();
    const auto shown = [](const PublicationItem& of) {
        return std::ranges::count_if(of.layers, &TextLayer::isVisible);
    };
    if (before && item.shapeLayers.size() < before->shapeLayers.size())
        setStatus(u"Forma eliminada."_s, StatusKind::done);
    else if (before && shown(item) < shown(*before))
        setStatus(u"Texto oculto. Vuelve a mostrarlo con su ojo en el panel."_s, StatusKind::done);
    m_editing.change([&](Batch& batch) {
        LayerEdits::commitCanvasItem(batch, item);
        batch.selectedLayerID = selected.value_or(batch.selectedLayerID);
    });
}

void StudioSession::endCanvasHistoryEdit(QUuid movedLayer)
{
    m_editing.endCanvasHistoryEdit(movedLayer);
    m_copy.follow();
}

void StudioSession::copyStyle()
{
    if (batch().currentItem())
        copyStyleOf(batch().currentItem()->id);
}

void StudioSession::copyStyleOf(QUuid itemId)
{
    Q_EMIT aboutToMove();
    const auto item = std::ranges::find(batch().items, itemId, &PublicationItem::id);
    const QString copied =
        item == batch().items.end() ? QString() : m_copiedStyle.copyFrom(*item, batch());
    if (copied.isEmpty()) {
        setStatus(u"Selecciona una capa para copiar su estilo."_s);
        return;
    }
    setStatus(u"Estilo de %1 copiado."_s.arg(copied), StatusKind::done);
    Q_EMIT copiedStyleChanged();
}

bool StudioSession::canPasteStyle() const
{
    return m_copiedStyle.fits(batch());
}

void StudioSession::pasteStyle()
{
    if (!canPasteStyle()) {
        setStatus(u"Copia antes un estilo."_s);
        return;
    }
    const qsizetype reached = selectedIndicesForBatch().size();
    setStatus(reached > 1 ? u"Estilo pegado en %1 imágenes."_s.arg(reached) : u"Estilo pegado."_s,
              StatusKind::done);
    m_editing.change([this](Batch& batch) { m_copiedStyle.pasteInto(batch); });
}

void StudioSession::applyTemplate(const QString& name, const TemplateApplication& design)
{
    const QList<int> reached = selectedIndicesForBatch();
    if (reached.isEmpty())
        return;
    Q_EMIT aboutToMove();
    setStatus(u"Plantilla «%1» aplicada a %2."_s.arg(
                  name, counted(reached.size(), u"imagen", u"imágenes")),
              StatusKind::done);
    m_editing.change(
        [&](Batch& batch) {
            for (const int index : reached)
                design(batch.items.edit(index));
            BatchSelection::keepInvariants(batch);
        },
        Step::own());
}

void StudioSession::tryTemplate(const QString& name, const TemplateApplication& design)
{
    const QList<int> reached = selectedIndicesForBatch();
    if (reached.isEmpty())
        return;
    Q_EMIT aboutToMove();
    QSet<QUuid> items;
    for (const int index : reached)
        items.insert(batch().items[index].id);
    if (std::exchange(m_triedOn, items) != items)
        m_try = Step::run();
    setStatus(u"Al azar: «%1» en %2. Pulsa R para probar otra."_s.arg(
                  name, counted(reached.size(), u"imagen", u"imágenes")),
              StatusKind::done);
    const StudioHistorySnapshot* before = m_editing.history().beforeRun(m_try);
    const PublicationItems untried = before ? before->items : batch().items;
    m_editing.change(
        [&](Batch& batch) {
            for (const int index : reached) {
                PublicationItem& item = batch.items.edit(index);
                item = untried[index];
                design(item);
            }
            BatchSelection::keepInvariants(batch);
        },
        m_try);
}

void StudioSession::applyStyle(const DesignTemplate& style)
{
    const PublicationItem* item = batch().currentItem();
    if (!item)
        return;
    const auto text = std::ranges::find(item->layers, batch().selectedLayerID, &TextLayer::id);
    if (text == item->layers.end()) {
        setStatus(u"Selecciona un texto para cambiar su estilo."_s);
        return;
    }
    TextLayer changed = *text;
    style.style.apply(changed);
    setStatus(u"Estilo «%1» aplicado a %2."_s.arg(
                  style.name, counted(selectedIndicesForBatch().size(), u"imagen", u"imágenes")),
              StatusKind::done);
    m_editing.change(
        [&](Batch& batch) { LayerEdits::editLayer(batch, changed, LayerEdits::Copied::style); },
        Step::own());
}
