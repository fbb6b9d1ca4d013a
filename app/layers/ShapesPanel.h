#pragma once
#include "app/controls/popovers/ColorPopover.h"
#include "canvas/LayerFrame.h"
#include "model/Pace.h"
#include "model/ShapeLayer.h"

#include <array>

class AddShapeButton;
class Badge;
class Caption;
class FrameFields;
class LineField;
class ShapeRow;
class SliderField;
class StyleHeader;
class Swatch;

struct ShapesPanelState {
    bool hasImage = false;
    QList<ShapeLayer> shapes = {};    // in drawing order
    QUuid selectedLayer = {};         // id of a shape or a text; null: none
    int reachedImages = 1;            // number of images that a change of style reaches
    QSizeF output = {};               // of the exported picture in pixels
    bool canPaste = false;
    ColorOffers colors = {};
    bool operator==(const ShapesPanelState&) const = default;
};

// Shows the shapes of the current image, and the style of the selected shape for editing.
class ShapesPanel : public QWidget {
    Q_OBJECT
public:
    explicit ShapesPanel(QWidget* parent = nullptr);
    void setState(const ShapesPanelState& state);    // shows `state`; emits nothing
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void addRequested(ShapeKind kind);
    void shapeSelected(QUuid shape);
    void shapeEdited(const ShapeLayer& changed, Pace pace);
    void deleteRequested(QUuid shape);
    void frameEdited(const CodableRect& frame, Pace pace);    // of the selected layer
    void alignmentRequested(LayerAlignment alignment);
    void colorUsed(const QColor& color);
    void copyStyleRequested();
    void pasteStyleRequested();

private:
    const ShapeLayer* selected() const;
    void build();
    void connectStyle();
    template <typename Change>
    void edit(Pace pace, Change change);
    void connectNumber(SliderField* field, double ShapeLayerDesign::*number);
    void connectColor(Swatch* swatch, CodableColor ShapeLayerDesign::*color);
    void showRows();
    void showStyle();
    void showRefusals(const ShapeLayer* shape);

    ShapesPanelState m_state;
    std::array<AddShapeButton*, Vocabulary<ShapeKind>::rows.size()> m_add{};
    Badge* m_count;
    QWidget* m_list;
    QList<ShapeRow*> m_rows;    // as many as were ever needed; unused ones are hidden
    Caption* m_note;            // tells that there are no shapes, or how many have no row
    StyleHeader* m_header;
    Swatch* m_fill;
    LineField* m_fillHex;
    SliderField* m_fillOpacity;
    Swatch* m_stroke;
    SliderField* m_strokeOpacity;
    SliderField* m_strokeWidth;
    SliderField* m_radius;
    FrameFields* m_frame;
};
