#pragma once
#include "model/CopySlot.h"
#include "model/ImagePlacement.h"
#include "model/Pace.h"
#include "model/PublicationItem.h"

#include <QObject>
#include <QUuid>

#include <memory>

class CanvasInteractionView;
class PhotoCache;
class StagePanel;
class StagePhoto;
class StudioSession;
class ViewBar;

// Connects the canvas and the bar below it with the session: shows the current item, turns gestures
// into edits, and lets the bar change the photo's placement.
class StageBinding : public QObject {
    Q_OBJECT
public:
    // The arguments outlive the binding.
    StageBinding(StudioSession& session, StagePanel* stage, ViewBar* bar,
                 const std::shared_ptr<PhotoCache>& photos);
    ~StageBinding() override;

    void show();
    // Shows `item`, a changed copy of the current item, instead of the current item. The user
    // cannot edit it. Without a value, shows the current item again.
    void preview(const std::optional<PublicationItem>& item);
    bool isIdle() const;
    CanvasInteractionView* canvas() const;

    void setFitMode(ImageFitMode mode);
    void zoomBy(double step);
    void setZoom(double zoom, Pace pace = Pace::once);
    void centrePhoto();
    bool isSafeZoneShown() const { return m_safeZone; }
    void setSafeZoneShown(bool shown);

Q_SIGNALS:
    void layerChosen(QUuid layer);    // selected by the user on the canvas; null for none
    void editRequested(CopySlot slot);
    void photoFound(QUuid item);
    void photoMissing(QUuid item);
    void previewEditRefused();    // the user tried to edit a previewed item

private:
    void connectCanvas();
    void changePlacement(const std::function<void(ImagePlacement&)>& change,
                         Pace pace = Pace::once);

    StudioSession& m_session;
    StagePanel* m_stage;
    ViewBar* m_bar;
    StagePhoto* m_photo;
    bool m_safeZone = false;
    bool m_isHiding = false;    // true while the canvas hides or removes a layer
    std::optional<PublicationItem> m_preview;
};
