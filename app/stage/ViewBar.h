#pragma once
#include "app/controls/Button.h"
#include "model/ImagePlacement.h"
#include "model/SocialFormat.h"

#include <QWidget>

class SegmentedControl;
class ToggleButton;
class ZoomSlider;

// The bar below the canvas: which image of the batch it shows, with the way to its neighbours; the
// placement of its photo; the safe zone of stories.
class ViewBar : public QWidget {
    Q_OBJECT
public:
    explicit ViewBar(QWidget* parent = nullptr);
    // `current` counts from 0; without images the bar is disabled.
    void setPosition(int current, int count);
    // A zoom beyond the slider's range is shown as its nearest end.
    void setPlacement(const ImagePlacement& placement);
    void setFormat(SocialFormat format);
    void setSafeZone(bool shown);
    // Whether the safe zone's button shows its label; there is no room in a narrow window.
    void setLabels(Labels labels);
    void endEdits();    // lets go of a held zoom
    QList<QWidget*> focusOrder() const;
    QSize sizeHint() const override { return {400, 52}; }

Q_SIGNALS:
    void previousRequested();
    void nextRequested();
    void fitModeChosen(ImageFitMode mode);
    // `held` while the slider is dragged or a key repeats; the last signal comes without it.
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
    QRect m_percentBox;    // empty when there is no room
    Labels m_labels = Labels::shown;
    bool m_isPlaced = false;
    int m_current = 0;
    int m_count = 0;
    int m_percent = 100;
    SocialFormat m_format = SocialFormat::carouselPortrait;
};
