#pragma once
#include "app/controls/Button.h"
#include "app/theme/WindowClass.h"
#include "model/ImagePlacement.h"
#include "model/SocialFormat.h"

#include <QWidget>

class SegmentedControl;
class ToggleButton;
class ZoomSlider;

// The bar below the canvas: the position in the batch with buttons to the previous and next image,
// the placement of the photo, and the safe zone of stories.
class ViewBar : public QWidget {
    Q_OBJECT
public:
    explicit ViewBar(QWidget* parent = nullptr);
    // `current` counts from 0; without images the bar is disabled.
    void setPosition(int current, int count);
    // A zoom beyond the slider's range is shown as the nearest end of that range.
    void setPlacement(const ImagePlacement& placement);
    void setFormat(SocialFormat format);
    void setSafeZone(bool shown);
    // Whether the safe zone's button may show its label; a narrow window has no space for it.
    void setLabels(Labels labels);
    void setClass(WindowClass windowClass);
    void endEdits();    // ends a drag or a held key on the zoom slider
    QList<QWidget*> focusOrder() const;
    QSize sizeHint() const override { return {400, 52}; }

Q_SIGNALS:
    void previousRequested();
    void nextRequested();
    void fitModeChosen(ImageFitMode mode);
    // `held` is true while the slider is dragged or a key repeats; a last signal with false
    // follows.
    void zoomRequested(double zoom, bool held);
    void centreRequested();
    void safeZoneToggled(bool shown);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void place();
    void enable();
    void requestZoom(int percent);
    double numberWidth() const;

    IconButton* m_previous;
    IconButton* m_next;
    SegmentedControl* m_modes;
    IconButton* m_zoomOut;
    ZoomSlider* m_zoom;
    IconButton* m_zoomIn;
    IconButton* m_centre;
    ToggleButton* m_safeZone;
    QRect m_percentBox;    // empty when there is no space for the percentage
    Labels m_labels = Labels::shown;
    WindowClass m_class = WindowClass::roomy;
    bool m_hasPosition = false;
    int m_current = 0;
    int m_count = 0;
    int m_percent = 100;
    SocialFormat m_format = SocialFormat::carouselPortrait;
};
