#include "app/presets/GalleryPictures.h"

#include "app/presets/LargePreview.h"
#include "app/presets/PresetDrawing.h"
#include "app/presets/PresetPictures.h"
#include "app/presets/TemplateGallery.h"
#include "studio/StudioSession.h"

namespace {
constexpr int pauseBeforeRedrawing = 120;    // ms
}

GalleryPictures::GalleryPictures(StudioSession& session, TemplateGallery* gallery,
                                 const std::shared_ptr<PhotoCache>& photos,
                                 const std::function<TemplateApplication(QUuid)>& designOf,
                                 QObject* parent)
    : QObject(parent), m_session(session), m_gallery(gallery), m_photos(photos),
      m_designOf(designOf), m_pictures(new PresetPictures(this)),
      m_largePictures(new PresetPictures(this))
{
    m_redrawLater.setSingleShot(true);
    connect(&m_redrawLater, &QTimer::timeout, this, &GalleryPictures::redraw);
    gallery->setAppliedTest([this](QUuid id) {
        const PublicationItem* item = m_session.batch().currentItem();
        const TemplateApplication design = m_designOf(id);
        return item && design && isApplied(design, *item);
    });
    const auto drawing = [this](QUuid id) -> PresetPictures::Draw {
        const std::optional<PublicationItem> item = designed(id);
        if (!item)
            return {};
        return
            [item = *item, format = m_session.batch().format, pixels = m_gallery->picturePixels(),
             known = m_photos] { return drawnItem(item, format, pixels, *known); };
    };
    connect(gallery, &TemplateGallery::picturesWanted, this,
            [this, drawing](const QList<QUuid>& ids) { m_pictures->wantOnly(ids, drawing); });
    connect(m_pictures, &PresetPictures::ready, gallery, &TemplateGallery::setPicture);
    connect(m_largePictures, &PresetPictures::ready, this, [this](QUuid id, const QImage& picture) {
        if (id == m_largeId)
            m_large->setPicture(picture);
    });
}

std::optional<PublicationItem> GalleryPictures::designed(QUuid id) const
{
    const PublicationItem* item = m_session.batch().currentItem();
    const TemplateApplication design = m_designOf(id);
    if (!item || !design)
        return std::nullopt;
    PublicationItem changed = *item;
    design(changed);
    return changed;
}

bool GalleryPictures::isIdle() const
{
    return m_pictures->isIdle() && m_largePictures->isIdle() && !m_redrawLater.isActive();
}

void GalleryPictures::show()
{
    const PublicationItem* item = m_session.batch().currentItem();
    const SocialFormat format = m_session.batch().format;
    if (!item || (m_drawn == *item && m_drawnFormat == format))
        return;
    // Draws at once if another item is current. While an item is edited, waits until the edits
    // pause.
    const bool isOther = !m_drawn || m_drawn->id != item->id;
    m_drawn = *item;
    m_drawnFormat = format;
    m_gallery->forgetApplied();
    m_redrawLater.start(isOther ? 0 : pauseBeforeRedrawing);
}

void GalleryPictures::redraw()
{
    m_pictures->dropWishes();    // the wanted pictures show the item's former state
    m_gallery->outdatePictures();
}

bool GalleryPictures::isLargeOpen() const
{
    return !m_largeId.isNull();
}

void GalleryPictures::openLarge(QUuid id, const QString& name)
{
    const std::optional<PublicationItem> item = designed(id);
    if (!item)
        return;
    if (!m_large) {
        m_large = new LargePreview(m_gallery);
        connect(m_large, &LargePreview::closed, this, &GalleryPictures::closeLarge);
    }
    m_largeId = id;
    const SocialFormat format = m_session.batch().format;
    m_large->open(name, row(format).aspectRatio, m_gallery->picture(id));
    m_largePictures->dropWishes();
    m_largePictures->want(id,
                          [item = *item, format, pixels = m_large->picturePixels(),
                           known = m_photos] { return drawnLarge(item, format, pixels, *known); });
}

void GalleryPictures::closeLarge()
{
    if (m_largeId.isNull())
        return;
    m_largeId = {};
    m_largePictures->dropWishes();
    m_large->hide();
}
