#include "app/stage/StageBinding.h"

#include "app/stage/StagePanel.h"
#include "app/stage/StagePhoto.h"
#include "app/stage/ViewBar.h"
#include "canvas/interaction/CanvasInteractionView.h"
#include "studio/StudioSession.h"

namespace {

// Limits of the zoom that the user can set; a stored item may have a larger one.
constexpr double leastZoom = 1, mostZoom = 3;

}    // namespace

StageBinding::StageBinding(StudioSession& session, StagePanel* stage, ViewBar* bar,
                           const std::shared_ptr<PhotoCache>& photos)
    : m_session(session), m_stage(stage), m_bar(bar), m_photo(new StagePhoto(photos, this))
{
    connectCanvas();
    connect(bar, &ViewBar::previousRequested, &session, &StudioSession::previousItem);
    connect(bar, &ViewBar::nextRequested, &session, &StudioSession::nextItem);
    connect(bar, &ViewBar::fitModeChosen, this, &StageBinding::setFitMode);
    connect(bar, &ViewBar::zoomRequested, this,
            [this](double zoom, bool held) { setZoom(zoom, held ? Pace::held : Pace::once); });
    connect(bar, &ViewBar::centreRequested, this, &StageBinding::centrePhoto);
    connect(bar, &ViewBar::safeZoneToggled, this, &StageBinding::setSafeZoneShown);
    connect(stage, &StagePanel::pictureSizeChanged, this, &StageBinding::show);
    connect(m_photo, &StagePhoto::ready, canvas(), &CanvasInteractionView::setPhoto);
    connect(m_photo, &StagePhoto::photoRead, this, [this] {
        if (m_session.batch().currentItem())
            Q_EMIT photoFound(m_session.batch().currentItem()->id);
    });
    connect(m_photo, &StagePhoto::photoMissing, this, [this] {
        if (m_session.batch().currentItem())
            Q_EMIT photoMissing(m_session.batch().currentItem()->id);
    });
}

// Removes the callbacks, because the canvas may outlive this object and would call them when it
// ends a gesture.
StageBinding::~StageBinding()
{
    CanvasInteraction& gestures = canvas()->interaction();
    gestures.onCommit = {};
    gestures.onSelect = {};
    gestures.onPrevious = gestures.onNext = {};
    gestures.onEditingBegan = gestures.onEditingEnded = {};
}

CanvasInteractionView* StageBinding::canvas() const
{
    return m_stage->canvas();
}

void StageBinding::connectCanvas()
{
    CanvasInteraction& gestures = canvas()->interaction();
    gestures.onPrevious = [this] { m_session.previousItem(); };
    gestures.onNext = [this] { m_session.nextItem(); };
    gestures.onEditingBegan = [this] {
        if (!m_preview)
            m_session.beginCanvasHistoryEdit();
    };
    gestures.onEditingEnded = [this] {
        m_session.endCanvasHistoryEdit(canvas()->interaction().movedLayer());
    };
    gestures.onCommit = [this](const PublicationItem& item) {
        if (m_preview)
            return Q_EMIT previewEditRefused();
        m_session.commitCanvasItem(item, m_isHiding ? std::optional(QUuid()) : std::nullopt);
    };
    // When the canvas hides or removes a layer, it calls onSelect first and onCommit second. The
    // selection is left to onCommit, so that the session changes both as one step.
    gestures.onSelect = [this](QUuid layer) {
        if (m_isHiding && !m_preview)
            return;
        m_session.selectLayer(layer);
        Q_EMIT layerChosen(layer);
    };
    connect(canvas(), &CanvasInteractionView::hidingBegan, this, [this] { m_isHiding = true; });
    connect(canvas(), &CanvasInteractionView::hidingEnded, this, [this] { m_isHiding = false; });
    connect(canvas(), &CanvasInteractionView::editRequested, this, [this](QUuid id) {
        const PublicationItem* item = m_session.batch().currentItem();
        if (!item)
            return;
        const auto text = std::ranges::find(item->layers, id, &TextLayer::id);
        if (text != item->layers.end())
            Q_EMIT editRequested(text->slot);
    });
}

void StageBinding::show()
{
    const Batch& batch = m_session.batch();
    const PublicationItem* item = batch.currentItem();
    m_bar->setPosition(batch.selectedIndex, int(batch.items.size()));
    m_bar->setFormat(batch.format);
    const auto& format = row(batch.format);
    m_stage->setPosition(batch.selectedIndex, int(batch.items.size()));
    m_stage->setFormat(format.rawValue.toString(), format.ratioLabel.toString(),
                       format.exportSize.toSize());
    // Sets the item before the photo, because the canvas takes a photo to be that of the item it
    // shows.
    const bool isPreview = m_preview && item && m_preview->id == item->id;
    if (isPreview)
        item = &*m_preview;
    canvas()->setItem(item ? std::optional(*item) : std::nullopt, batch.format);
    canvas()->setSelectedLayerID(isPreview ? QUuid() : batch.selectedLayerID);
    if (!item) {
        m_photo->clear();
        return;
    }
    m_bar->setPlacement(item->placement);
    m_photo->show(*item, batch.format, m_stage->pictureSize());
}

void StageBinding::preview(const std::optional<PublicationItem>& item)
{
    m_preview = item;
    show();
}

bool StageBinding::isIdle() const
{
    return m_photo->isIdle() && canvas()->isPhotoSharp();
}

void StageBinding::changePlacement(const std::function<void(ImagePlacement&)>& change, Pace pace)
{
    if (!m_session.batch().currentItem())
        return;
    ImagePlacement placement = m_session.batch().currentItem()->placement;
    change(placement);
    m_session.setPlacement(placement, pace);
}

void StageBinding::setFitMode(ImageFitMode mode)
{
    changePlacement([mode](ImagePlacement& placement) { placement.mode = mode; });
}

void StageBinding::zoomBy(double step)
{
    changePlacement(
        [step](ImagePlacement& placement) {
            placement.zoom = std::clamp(placement.zoom + step, leastZoom, mostZoom);
        },
        Pace::held);    // the key for zooming may repeat
}

void StageBinding::setZoom(double zoom, Pace pace)
{
    changePlacement(
        [zoom](ImagePlacement& placement) {
            placement.zoom = std::clamp(zoom, leastZoom, mostZoom);
        },
        pace);
}

void StageBinding::centrePhoto()
{
    changePlacement([](ImagePlacement& placement) { placement.offset = {}; });
}

void StageBinding::setSafeZoneShown(bool shown)
{
    m_safeZone = shown;
    m_bar->setSafeZone(shown);
    canvas()->setSafeZone(shown);
}
