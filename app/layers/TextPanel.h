#pragma once
#include "app/controls/popovers/ColorPopover.h"
#include "app/theme/WindowClass.h"
#include "canvas/LayerFrame.h"
#include "canvas/TextWarnings.h"
#include "model/Pace.h"
#include "model/TextLayer.h"

#include <array>

class Caption;
class CaptionCard;
class FontField;
class FrameFields;
class SegmentedControl;
class SliderField;
class SlotCard;
class SlotEditor;
class QHBoxLayout;
class StyleHeader;
class StyleShelf;
class Swatch;
class Switch;

struct TextPanelState {
    QString filename = {};
    QString caption = {};            // posted with the image
    QString notes = {};              // of the engine that wrote the texts
    QString proposalRefusal = {};    // why no other text can be proposed; empty: one can
    QList<TextLayer> layers = {};
    QList<TextWarning> warnings = {};        // about the texts in `layers`
    QUuid selectedLayer = {};                // id of a text or a shape; null: none
    std::optional<double> sizeLimit = {};    // font scale at which the selected text fills its box
    int reachedImages = 1;                   // number of images that a change of style reaches
    QSizeF output = {};                      // of the exported picture in pixels
    bool canPaste = false;
    ColorOffers colors = {};
    bool operator==(const TextPanelState&) const = default;
};

// Shows the texts of the current image, and the style of the selected text, for editing.
class TextPanel : public QWidget {
    Q_OBJECT
public:
    explicit TextPanel(QWidget* parent = nullptr);

    // Shows `state`. Emits nothing, and does not move the cursor in a text that is being edited.
    void setState(const TextPanelState& state);
    void editSlot(CopySlot slot);                  // focuses the slot's editor and selects all text
    std::optional<CopySlot> editedSlot() const;    // the slot whose editor has the focus
    void editCaption();
    bool isCaptionEdited() const;
    bool isComposing() const;               // letters that no text has got yet are in an editor
    void setCaptionLines(int lines);        // seen of the caption while it is not edited
    void showHeader(QWidget* row);          // takes the row over, above the texts
    const QWidget* selectedCard() const;    // null if no text is selected
    StyleShelf* styles() const { return m_styles; }
    QList<QWidget*> focusOrder() const;

    void setClass(WindowClass windowClass);

Q_SIGNALS:
    void textEdited(CopySlot slot, const QString& text, Pace pace);
    void captionEdited(const QString& caption, Pace pace);
    void composingChanged();
    void proposalRequested(CopySlot slot);
    void visibilityToggled(CopySlot slot);
    void slotFocused(CopySlot slot);
    void layerEdited(const TextLayer& changed, Pace pace);
    void frameEdited(const CodableRect& frame, Pace pace);    // of the selected layer
    void alignmentRequested(LayerAlignment alignment);
    void colorUsed(const QColor& color);
    void copyStyleRequested();
    void pasteStyleRequested();
    void leaveRequested();                      // the focus should go back to the canvas
    void scrollToRequested(QWidget* editor);    // `editor` has grown and should be visible

private:
    const TextLayer* selected() const;
    const TextLayer* layerOf(CopySlot slot) const;
    void buildCards();
    void connectCard(SlotCard* card, CopySlot slot);
    void connectCaption();
    QList<SlotEditor*> editors() const;
    void buildStyle();
    void connectStyle();
    template <typename Change>
    void edit(Pace pace, Change change);
    void connectNumber(SliderField* field, double TextLayerDesign::*number);
    void connectColor(Swatch* swatch, CodableColor TextLayerDesign::*color);
    void showCards();
    void showStyle();
    void showRefusals(bool hasBox);

    TextPanelState m_state;
    Caption* m_filename;
    std::array<SlotCard*, Vocabulary<CopySlot>::rows.size()> m_cards{};
    CaptionCard* m_caption;
    StyleHeader* m_header;
    FontField* m_font;
    SliderField* m_size;
    Caption* m_sizeNote;
    Swatch* m_color;
    SegmentedControl* m_alignment;
    FrameFields* m_frame;
    Switch* m_box;
    Swatch* m_boxColor;
    SliderField* m_boxOpacity;
    SliderField* m_boxRadius;
    Swatch* m_shadowColor;
    SliderField* m_shadowOpacity;
    SliderField* m_shadowBlur;
    QHBoxLayout* m_shadowRow;
    QHBoxLayout* m_blurRow;    // empty unless m_shadowRow has no room for the blur
    SliderField* m_shadowDistance;
    SliderField* m_shadowAngle;
    StyleShelf* m_styles;
};
