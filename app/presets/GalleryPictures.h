#pragma once
#include "model/PublicationItem.h"
#include "model/SocialFormat.h"
#include "templates/VisualTemplate.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

class LargePreview;
class PhotoCache;
class PresetPictures;
class StudioSession;
class TemplateGallery;

// Draws the pictures of the gallery's designs, over the photo and with the texts of the current
// item, and the large preview of one of them.
class GalleryPictures : public QObject {
    Q_OBJECT
public:
    // `designOf` gives the application of a design; empty for an unknown one. The other arguments
    // outlive this object.
    GalleryPictures(StudioSession& session, TemplateGallery* gallery,
                    const std::shared_ptr<PhotoCache>& photos,
                    const std::function<TemplateApplication(QUuid)>& designOf, QObject* parent);

    // Shows the current state of the session, after a short pause while an item is being edited.
    void show();
    bool isIdle() const;

    void openLarge(QUuid id, const QString& name);
    void closeLarge();
    bool isLargeOpen() const;
    QUuid largeDesign() const { return m_largeId; }

private:
    // The current item with the design applied; nothing without an item or a design.
    std::optional<PublicationItem> designed(QUuid id) const;
    void redraw();

    StudioSession& m_session;
    TemplateGallery* m_gallery;
    std::shared_ptr<PhotoCache> m_photos;
    std::function<TemplateApplication(QUuid)> m_designOf;
    PresetPictures* m_pictures;
    PresetPictures* m_largePictures;
    LargePreview* m_large = nullptr;    // made when it is first shown
    QUuid m_largeId;                    // null while it is closed
    // What the pictures show.
    std::optional<PublicationItem> m_drawn;
    SocialFormat m_drawnFormat{};
    QTimer m_redrawLater;
};
