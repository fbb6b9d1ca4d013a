#pragma once
#include "app/theme/WindowClass.h"
#include "canvas/LayerFrame.h"
#include "model/Pace.h"

#include <QSizeF>
#include <QWidget>

#include <optional>

class PushButton;
class QHBoxLayout;
class SliderField;

struct FrameFieldsState {
    std::optional<CodableRect> frame = {};    // empty: no layer is selected
    SmallestFrame smallest = {};
    QSizeF output = {};      // size of the exported picture in pixels
    QString refusal = {};    // why there is nothing to change; empty: there is
    bool operator==(const FrameFieldsState&) const = default;
};

// Shows position and size of a layer in pixels of the exported picture, and the buttons that align
// it to the canvas.
class FrameFields : public QWidget {
    Q_OBJECT
public:
    explicit FrameFields(QWidget* parent);
    void setClass(WindowClass windowClass);
    void setState(const FrameFieldsState& state);    // emits nothing
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void frameEdited(const CodableRect& frame, Pace pace);
    void alignmentRequested(LayerAlignment alignment);

private:
    void show(const CodableRect& frame);
    void connectFields();

    FrameFieldsState m_state;
    QList<QHBoxLayout*> m_fieldRows, m_groupRows;    // the second of each is used if compact
    QList<QWidget*> m_groups;
    SliderField* m_x;
    SliderField* m_y;
    SliderField* m_width;
    SliderField* m_height;
    QList<PushButton*> m_alignments;    // in the order of LayerAlignment
};
