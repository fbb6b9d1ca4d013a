#include "app/layers/PanelBinding.h"

#include "app/batch/BatchBinding.h"
#include "app/layers/PhotoColors.h"
#include "app/layers/ShapesPanel.h"
#include "app/layers/SidePanel.h"
#include "app/layers/TextPanel.h"
#include "canvas/ItemLayout.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"

#include <QCoroFuture>

using namespace Qt::StringLiterals;

namespace {

const QString recentKey = u"moltiva.recentColors"_s;
constexpr qsizetype recentCount = 6, rememberedPhotos = 200;

QList<QColor> colorsFrom(const QByteArray& stored)
{
    QList<QColor> colors;
    for (const QByteArray& name : stored.split(' ')) {
        const QColor color(QString::fromLatin1(name.left(7)));
        if (color.isValid() && colors.size() < recentCount)
            colors.append(color);
    }
    return colors;
}

QByteArray storedFrom(const QList<QColor>& colors)
{
    QByteArrayList names;
    for (const QColor& color : colors)
        names.append(color.name().toLatin1());
    return names.join(' ');
}

}    // namespace

PanelBinding::PanelBinding(StudioSession& session, SidePanel* panel,
                           const std::shared_ptr<PhotoCache>& photos, PreferencesStore& preferences,
                           const BatchBinding& batch)
    : m_session(session), m_panel(panel), m_photos(photos), m_preferences(preferences),
      m_batchBinding(batch),
      m_recentColors(colorsFrom(preferences.value(recentKey).value_or(QByteArray())))
{
    connectTexts();
    connectShapes();
    connect(&session, &StudioSession::copiedStyleChanged, this, &PanelBinding::show);
    connect(&session, &StudioSession::copyChanged, this, &PanelBinding::show);
    connect(&batch, &BatchBinding::warningsChanged, this, [this](QUuid id) {
        const PublicationItem* item = m_session.batch().currentItem();
        if (item && item->id == id)
            show();
    });
}

void PanelBinding::connectTexts()
{
    const TextPanel* texts = m_panel->textPanel();
    const auto layerOf = [this](CopySlot slot) -> const TextLayer* {
        const PublicationItem* item = m_session.batch().currentItem();
        if (!item)
            return nullptr;
        const auto found = std::ranges::find(item->layers, slot, &TextLayer::slot);
        return found == item->layers.end() ? nullptr : &*found;
    };
    connect(texts, &TextPanel::textEdited, this,
            [this](CopySlot slot, const QString& text, Pace pace) {
                m_session.setText(slot, text, pace);
            });
    connect(texts, &TextPanel::captionEdited, &m_session, &StudioSession::setCaption);
    connect(texts, &TextPanel::composingChanged, this,
            [this, texts] { m_session.setTyping(texts->isComposing()); });
    connect(texts, &TextPanel::proposalRequested, this, [this](CopySlot slot) {
        if (const PublicationItem* item = m_session.batch().currentItem())
            m_session.copy().proposeAnother(item->id, slot);
    });
    connect(texts, &TextPanel::visibilityToggled, this, [this, layerOf](CopySlot slot) {
        if (const TextLayer* layer = layerOf(slot)) {
            TextLayer changed = *layer;
            changed.isVisible = !changed.isVisible;
            m_session.editLayer(changed, LayerEdits::Copied::visibility);
        }
    });
    connect(texts, &TextPanel::slotFocused, this, [this, layerOf](CopySlot slot) {
        if (const TextLayer* layer = layerOf(slot))
            m_session.selectLayer(layer->id);
    });
    connect(texts, &TextPanel::layerEdited, this, [this](const TextLayer& layer, Pace pace) {
        m_session.editLayer(layer, LayerEdits::Copied::style, pace);
    });
    connect(texts, &TextPanel::frameEdited, &m_session, &StudioSession::setLayerFrame);
    connect(texts, &TextPanel::alignmentRequested, &m_session, &StudioSession::alignLayer);
    connect(texts, &TextPanel::colorUsed, this, &PanelBinding::remember);
    connect(texts, &TextPanel::copyStyleRequested, &m_session, &StudioSession::copyStyle);
    connect(texts, &TextPanel::pasteStyleRequested, &m_session, &StudioSession::pasteStyle);
    connect(texts, &TextPanel::leaveRequested, this, &PanelBinding::leaveRequested);
}

void PanelBinding::connectShapes()
{
    const ShapesPanel* shapes = m_panel->shapesPanel();
    connect(shapes, &ShapesPanel::addRequested, &m_session, &StudioSession::addShape);
    connect(shapes, &ShapesPanel::shapeSelected, &m_session, &StudioSession::selectLayer);
    connect(shapes, &ShapesPanel::shapeEdited, &m_session, &StudioSession::editShape);
    connect(shapes, &ShapesPanel::frameEdited, &m_session, &StudioSession::setLayerFrame);
    connect(shapes, &ShapesPanel::alignmentRequested, &m_session, &StudioSession::alignLayer);
    connect(shapes, &ShapesPanel::deleteRequested, &m_session, &StudioSession::deleteShape);
    connect(shapes, &ShapesPanel::colorUsed, this, &PanelBinding::remember);
    connect(shapes, &ShapesPanel::copyStyleRequested, &m_session, &StudioSession::copyStyle);
    connect(shapes, &ShapesPanel::pasteStyleRequested, &m_session, &StudioSession::pasteStyle);
}

void PanelBinding::show()
{
    const Batch& batch = m_session.batch();
    // While the batch column shows an import's images, the panel shows no item of the batch.
    const PublicationItem* item = m_batchBinding.showsIncoming() ? nullptr : batch.currentItem();
    m_panel->setContent(item ? SidePanel::Content::image : SidePanel::Content::none);
    const int reached = std::max(1, int(m_session.selectedIndicesForBatch().size()));
    TextPanelState texts;
    ShapesPanelState shapes;
    if (item) {
        const ColorOffers offers = colors();
        const bool canPaste = m_session.canPasteStyle();
        texts = {.filename = item->url.fileName(),
                 .caption = item->analysis.publicationCaption,
                 .notes = item->analysis.imageNotes,
                 .proposalRefusal = proposalRefusal(),
                 .layers = item->layers,
                 .warnings = m_batchBinding.warningsOf(item->id),
                 .selectedLayer = batch.selectedLayerID,
                 .sizeLimit = sizeLimit(*item),
                 .reachedImages = reached,
                 .output = exportSize(batch.format),
                 .canPaste = canPaste,
                 .colors = offers};
        shapes = {.hasImage = true,
                  .shapes = item->shapeLayers,
                  .selectedLayer = batch.selectedLayerID,
                  .reachedImages = reached,
                  .output = exportSize(batch.format),
                  .canPaste = canPaste,
                  .colors = offers};
    }
    m_panel->textPanel()->setState(texts);
    m_panel->shapesPanel()->setState(shapes);
}

QString PanelBinding::proposalRefusal() const
{
    return m_session.isAnalyzing() ? u"Espera a que termine la generación."_s
                                   : m_session.copy().whyNotGenerate();
}

std::optional<double> PanelBinding::sizeLimit(const PublicationItem& item) const
{
    const Batch& batch = m_session.batch();
    const auto text = std::ranges::find(item.layers, batch.selectedLayerID, &TextLayer::id);
    if (text == item.layers.end())
        return std::nullopt;
    return fontScaleInBox(*text, exportSize(batch.format), designSize(batch.format));
}

void PanelBinding::follow(QUuid layer)
{
    const PublicationItem* item = m_session.batch().currentItem();
    if (!item || layer.isNull() || m_panel->tab() == SideTab::templates)
        return;
    const bool isShape =
        std::ranges::find(item->shapeLayers, layer, &ShapeLayer::id) != item->shapeLayers.end();
    m_panel->setTab(isShape ? SideTab::shapes : SideTab::text);
}

void PanelBinding::edit(CopySlot slot)
{
    const PublicationItem* item = m_session.batch().currentItem();
    if (!item)
        return;
    const auto text = std::ranges::find(item->layers, slot, &TextLayer::slot);
    if (text != item->layers.end())
        m_session.selectLayer(text->id);
    m_panel->setTab(SideTab::text);
    m_panel->textPanel()->editSlot(slot);
}

void PanelBinding::editCaption()
{
    m_panel->setTab(SideTab::text);
    m_panel->textPanel()->editCaption();
}

std::optional<CopySlot> PanelBinding::selectedSlot() const
{
    const PublicationItem* item = m_session.batch().currentItem();
    if (!item)
        return std::nullopt;
    const auto text =
        std::ranges::find(item->layers, m_session.batch().selectedLayerID, &TextLayer::id);
    return text == item->layers.end() ? std::nullopt : std::optional(text->slot);
}

void PanelBinding::editSelected()
{
    if (const auto slot = selectedSlot())
        edit(*slot);
}

void PanelBinding::proposeAnother()
{
    if (const auto slot = selectedSlot())
        m_session.copy().proposeAnother(m_session.batch().currentItem()->id, *slot);
}

// Offers the recent colours at once, and the photo's colours once a worker has found them.
ColorOffers PanelBinding::colors()
{
    const PhotoHandle& photo = m_session.batch().currentItem()->image;
    if (!m_photoColors.contains(photo.path)) {
        if (m_photoColors.size() > rememberedPhotos)
            m_photoColors.clear();
        m_photoColors.insert(photo.path, {});
        lookAtPhoto(this, photo.path, photo.digest, m_photos);
    }
    return {.photo = m_photoColors.value(photo.path), .recent = m_recentColors};
}

QCoro::Task<> PanelBinding::lookAtPhoto(QPointer<PanelBinding> self, QString path,
                                        QByteArray digest, std::shared_ptr<PhotoCache> photos)
{
    QFuture<QList<QColor>> looking = tryOnWorker([path, digest, photos] {
        return colorsOf(photos->thumbnail({path, digest}));
    });
    const QList<QColor> found = co_await looking;
    if (!self)
        co_return;
    self->m_photoColors.insert(path, found);
    self->show();
}

void PanelBinding::remember(const QColor& color)
{
    m_recentColors.removeAll(color);
    m_recentColors.prepend(color);
    m_recentColors.resize(std::min(m_recentColors.size(), recentCount));
    m_preferences.setValue(recentKey, storedFrom(m_recentColors));
    show();
}
