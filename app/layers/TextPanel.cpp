#include "app/layers/TextPanel.h"

#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/PanelLayout.h"
#include "app/controls/fields/SegmentedControl.h"
#include "app/controls/fields/SliderField.h"
#include "app/controls/fields/SlotEditor.h"
#include "app/controls/fields/Switch.h"
#include "app/controls/popovers/FontField.h"
#include "app/controls/popovers/Swatch.h"
#include "app/layers/CaptionCard.h"
#include "app/layers/FrameFields.h"
#include "app/layers/SlotCard.h"
#include "app/presets/StyleHeader.h"
#include "app/presets/StyleShelf.h"
#include "canvas/WarningSentences.h"

using namespace Qt::StringLiterals;

namespace {

constexpr SliderRange sizeRange{SliderUnit::multiplier, 0.4, 2.5},
    textPercent{SliderUnit::percent, 0, 1}, textRadiusRange{SliderUnit::plain, 0, 80},
    shadowRange{SliderUnit::plain, 0, 50}, angleRange{SliderUnit::degrees, 0, 360};

QList<Segment> alignments()
{
    const std::array names{u"izquierda"_s, u"centrada"_s, u"derecha"_s, u"justificada"_s};
    QList<Segment> segments;
    for (const auto& alignment : Vocabulary<LayerTextAlignment>::rows) {
        const QString name = u"Alineación "_s + names[std::size_t(alignment.value)];
        segments.append({iconNamed(alignment.icon), {}, name, name});
    }
    return segments;
}

}    // namespace

TextPanel::TextPanel(QWidget* parent)
    : QWidget(parent), m_filename(new Caption(Type::small, &Theme::text3, {}, this)),
      m_caption(new CaptionCard(this)), m_header(new StyleHeader(this)),
      m_font(new FontField(this)), m_size(new SliderField(u"Tamaño"_s, sizeRange, this)),
      m_sizeNote(new Caption(Type::caption, &Theme::warn, {}, this)),
      m_color(new Swatch(u"Color del texto"_s, this)),
      m_alignment(new SegmentedControl(alignments(), this)), m_frame(new FrameFields(this)),
      m_box(new Switch(u"Caja"_s, this)), m_boxColor(new Swatch(u"Color de la caja"_s, this)),
      m_boxOpacity(new SliderField(u"Opacidad"_s, textPercent, this)),
      m_boxRadius(new SliderField(u"Radio"_s, textRadiusRange, this)),
      m_shadowColor(new Swatch(u"Color de la sombra"_s, this)),
      m_shadowOpacity(new SliderField(u"Opacidad"_s, textPercent, this)),
      m_shadowBlur(new SliderField(u"Desenfoque"_s, shadowRange, this)),
      m_shadowDistance(new SliderField(u"Distancia"_s, shadowRange, this)),
      m_shadowAngle(new SliderField(u"Ángulo"_s, angleRange, this)), m_styles(new StyleShelf(this))
{
    m_alignment->setStretched();
    m_sizeNote->setAlignment(Qt::AlignRight);
    m_sizeNote->setFixedHeight(row(Type::caption).lineHeight);    // the same height while empty
    m_boxOpacity->setAccessibleName(u"Opacidad de la caja"_s);
    m_boxRadius->setAccessibleName(u"Radio de la caja"_s);
    m_shadowOpacity->setAccessibleName(u"Opacidad de la sombra"_s);
    buildCards();
    buildStyle();
    connectStyle();
    showCards();
    showStyle();
}

void TextPanel::buildCards()
{
    auto* layout = new PanelLayout(this);
    auto* heading = new QWidget(this);
    heading->setFixedHeight(32);
    auto* line = new QHBoxLayout(heading);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(16);
    line->addWidget(new Caption(Type::heading, &Theme::text, u"Textos"_s, heading));
    line->addStretch(1);
    line->addWidget(m_filename);
    layout->addRow(heading, 10);
    int gap = 6;
    for (const auto& slotRow : Vocabulary<CopySlot>::rows) {
        const CopySlot slot = slotRow.value;
        auto* card = new SlotCard(slot, this);
        m_cards[std::size_t(slot)] = card;
        layout->addRow(card, gap);
        gap = 8;
        connectCard(card, slot);
    }
    layout->addRow(m_caption, gap);
    connectCaption();
}

void TextPanel::connectCard(SlotCard* card, CopySlot slot)
{
    connect(card, &SlotCard::edited, this,
            [this, slot](const QString& text, Pace pace) { Q_EMIT textEdited(slot, text, pace); });
    connect(card, &SlotCard::visibilityToggled, this,
            [this, slot] { Q_EMIT visibilityToggled(slot); });
    connect(card, &SlotCard::proposalRequested, this,
            [this, slot] { Q_EMIT proposalRequested(slot); });
    connect(card, &SlotCard::focused, this, [this, slot] { Q_EMIT slotFocused(slot); });
    connect(card, &SlotCard::leaveRequested, this, &TextPanel::leaveRequested);
    connect(card, &SlotCard::grown, this, [this, card] {
        if (card->editor()->hasFocus())
            Q_EMIT scrollToRequested(card);
    });
    connect(card->editor(), &SlotEditor::composingChanged, this, &TextPanel::composingChanged);
}

void TextPanel::connectCaption()
{
    connect(m_caption, &CaptionCard::edited, this, &TextPanel::captionEdited);
    connect(m_caption, &CaptionCard::leaveRequested, this, &TextPanel::leaveRequested);
    connect(m_caption, &CaptionCard::grown, this, [this] {
        if (isCaptionEdited())
            Q_EMIT scrollToRequested(m_caption);
    });
    connect(m_caption->editor(), &SlotEditor::composingChanged, this, &TextPanel::composingChanged);
}

void TextPanel::editCaption()
{
    m_caption->editor()->setFocus(Qt::OtherFocusReason);
    m_caption->editor()->selectAll();
}

bool TextPanel::isCaptionEdited() const
{
    return m_caption->editor()->hasFocus();
}

QList<SlotEditor*> TextPanel::editors() const
{
    QList<SlotEditor*> editors;
    for (const SlotCard* card : m_cards)
        editors.append(card->editor());
    editors.append(m_caption->editor());
    return editors;
}

bool TextPanel::isComposing() const
{
    return std::ranges::any_of(editors(), &SlotEditor::isComposing);
}

void TextPanel::setCaptionLines(int lines)
{
    m_caption->setRestLines(lines);
}

void TextPanel::showHeader(QWidget* row)
{
    static_cast<PanelLayout*>(layout())->insertWidget(0, row);
}

std::optional<CopySlot> TextPanel::editedSlot() const
{
    for (const CopySlot slot : allCases<CopySlot>()) {
        if (m_cards[std::size_t(slot)]->editor()->hasFocus())
            return slot;
    }
    return std::nullopt;
}

void TextPanel::buildStyle()
{
    auto* layout = static_cast<PanelLayout*>(this->layout());
    layout->addRow(m_header, 8);
    layout->addRow({m_font, m_size}, 6);
    layout->addRow(m_sizeNote, 2);
    layout->addRow({m_color, m_alignment}, 2);
    layout->addRow(m_frame, 12);
    layout->addRow({sectionTitle(u"Caja"_s, this), m_box}, 8);
    layout->addRow({m_boxColor, m_boxOpacity, m_boxRadius}, 8);
    layout->addRow(sectionTitle(u"Sombra"_s, this), 12);
    m_shadowRow = layout->addRow({m_shadowColor, m_shadowOpacity, m_shadowBlur}, 10);
    m_blurRow = layout->addRow(QList<QWidget*>{}, 0);
    layout->addRow({m_shadowDistance, m_shadowAngle}, 8);
    layout->addRow(m_styles, 8);
    layout->addStretch(1);
}

// Beside a swatch in a compact window, a field is too narrow for the label of the blur.
void TextPanel::setClass(WindowClass windowClass)
{
    const bool isCompact = windowClass == WindowClass::compact;
    (isCompact ? m_blurRow : m_shadowRow)->addWidget(m_shadowBlur, 1);
    m_blurRow->setContentsMargins(0, isCompact ? Space::small : 0, 0, 0);
}

template <typename Change>
void TextPanel::edit(Pace pace, Change change)
{
    const TextLayer* layer = selected();
    if (!layer)
        return;
    TextLayer changed = *layer;
    change(changed);
    Q_EMIT layerEdited(changed, pace);
}

void TextPanel::connectNumber(SliderField* field, double TextLayerDesign::*number)
{
    connect(field, &SliderField::valueChanged, this, [this, number](double value, Pace pace) {
        edit(pace, [&](TextLayer& layer) { layer.*number = value; });
    });
}

void TextPanel::connectColor(Swatch* swatch, CodableColor TextLayerDesign::*color)
{
    connect(swatch, &Swatch::colorUsed, this, &TextPanel::colorUsed);
    connect(swatch, &Swatch::colorChanged, this, [this, color](const QColor& chosen, Pace pace) {
        edit(pace, [&](TextLayer& layer) {
            const double alpha = (layer.*color).alpha;
            layer.*color = CodableColor(chosen);
            (layer.*color).alpha = alpha;
        });
    });
}

void TextPanel::connectStyle()
{
    connectNumber(m_size, &TextLayer::fontScale);
    connectNumber(m_boxOpacity, &TextLayer::backgroundOpacity);
    connectNumber(m_boxRadius, &TextLayer::cornerRadius);
    connectNumber(m_shadowOpacity, &TextLayer::shadowOpacity);
    connectNumber(m_shadowBlur, &TextLayer::shadowRadius);
    connectNumber(m_shadowDistance, &TextLayer::shadowDistance);
    connectNumber(m_shadowAngle, &TextLayer::shadowAngle);
    connectColor(m_color, &TextLayer::foreground);
    connectColor(m_boxColor, &TextLayer::background);
    connectColor(m_shadowColor, &TextLayer::shadowColor);
    connect(m_font, &FontField::chosen, this, [this](const QString& name) {
        edit(Pace::once, [&](TextLayer& layer) { layer.fontName = name; });
    });
    connect(m_alignment, &SegmentedControl::chosen, this, [this](int index) {
        edit(Pace::once, [&](TextLayer& layer) { layer.alignment = LayerTextAlignment(index); });
    });
    connect(m_box, &Switch::clicked, this,
            [this](bool on) { edit(Pace::once, [&](TextLayer& layer) { layer.hasBox = on; }); });
    connect(m_frame, &FrameFields::frameEdited, this, &TextPanel::frameEdited);
    connect(m_frame, &FrameFields::alignmentRequested, this, &TextPanel::alignmentRequested);
    connect(m_header, &StyleHeader::copyRequested, this, &TextPanel::copyStyleRequested);
    connect(m_header, &StyleHeader::pasteRequested, this, &TextPanel::pasteStyleRequested);
}

void TextPanel::setState(const TextPanelState& state)
{
    if (state == m_state)
        return;
    m_state = state;
    showCards();
    showStyle();
}

void TextPanel::editSlot(CopySlot slot)
{
    m_cards[std::size_t(slot)]->edit();
}

QList<QWidget*> TextPanel::focusOrder() const
{
    // The editors come first, so that Tab goes from one text to the next.
    QList<QWidget*> order;
    for (SlotEditor* editor : editors())
        order.append(editor);
    for (const SlotCard* card : m_cards)
        order += {card->proposal(), card->eye()};
    order += m_header->focusOrder();
    order += {m_font, m_size, m_color, m_alignment};
    order += m_frame->focusOrder();
    order += {m_box,           m_boxColor,   m_boxOpacity,     m_boxRadius,  m_shadowColor,
              m_shadowOpacity, m_shadowBlur, m_shadowDistance, m_shadowAngle};
    return order + m_styles->focusOrder();
}

const TextLayer* TextPanel::selected() const
{
    const auto found = std::ranges::find(m_state.layers, m_state.selectedLayer, &TextLayer::id);
    return found == m_state.layers.cend() ? nullptr : &*found;
}

const QWidget* TextPanel::selectedCard() const
{
    const TextLayer* layer = selected();
    return layer ? m_cards[std::size_t(layer->slot)] : nullptr;
}

const TextLayer* TextPanel::layerOf(CopySlot slot) const
{
    const auto found = std::ranges::find(m_state.layers, slot, &TextLayer::slot);
    return found == m_state.layers.cend() ? nullptr : &*found;
}

void TextPanel::showCards()
{
    m_filename->setText(m_state.filename);
    for (const auto& slotRow : Vocabulary<CopySlot>::rows) {
        SlotCard* card = m_cards[std::size_t(slotRow.value)];
        const TextLayer* layer = layerOf(slotRow.value);
        card->setVisible(layer != nullptr);
        if (!layer)
            continue;
        card->setLayer(*layer,
                       layer->id == m_state.selectedLayer ? CardMark::selected : CardMark::none);
        QList<TextWarning> own = m_state.warnings;
        own.removeIf([&](const TextWarning& warning) { return warning.layer != layer->id; });
        card->setWarnings(warningSentences(own));
        card->setProposalRefused(m_state.proposalRefusal);
    }
    m_caption->setCaption(m_state.caption);
    m_caption->setNotes(m_state.notes);
}

void TextPanel::showStyle()
{
    const TextLayer* layer = selected();
    const TextLayer shown = layer ? *layer : TextLayer();
    m_header->setTitle(layer ? u"Estilo de %1"_s.arg(row(layer->slot).displayName) : u"Estilo"_s);
    const int reached = layer ? m_state.reachedImages : 1;
    m_header->setReached(reached,
                         u"El estilo y la posición se aplican a las %1 imágenes seleccionadas. "
                         "El texto solo cambia en esta."_s.arg(reached));
    m_font->setFontName(layer ? shown.fontName : QString());
    m_alignment->setCurrent(layer ? std::optional(int(shown.alignment)) : std::nullopt);
    if (!layer)
        m_alignment->setAccessibleName(u"Alineación"_s);
    m_frame->setState(
        {.frame = layer ? std::optional(layer->frame) : std::nullopt,
         .output = m_state.output,
         .refusal = layer ? QString() : u"Selecciona un texto para cambiar su posición."_s});
    m_box->setChecked(layer && shown.hasBox);
    const QString limit = m_state.sizeLimit && layer ? u"La caja limita el tamaño"_s : QString();
    m_size->setLimit(layer ? m_state.sizeLimit : std::nullopt);
    m_size->setAccessibleDescription(limit);
    m_sizeNote->setText(limit);

    const TextLayerDesign usual(shown.slot);
    const auto showNumber = [&](SliderField* field, double TextLayerDesign::*number) {
        field->setBlank(!layer);
        field->setDefault(usual.*number);
        field->setValue(shown.*number);
    };
    showNumber(m_size, &TextLayer::fontScale);
    showNumber(m_boxOpacity, &TextLayer::backgroundOpacity);
    showNumber(m_boxRadius, &TextLayer::cornerRadius);
    showNumber(m_shadowOpacity, &TextLayer::shadowOpacity);
    showNumber(m_shadowBlur, &TextLayer::shadowRadius);
    showNumber(m_shadowDistance, &TextLayer::shadowDistance);
    showNumber(m_shadowAngle, &TextLayer::shadowAngle);
    const auto showColor = [&](Swatch* swatch, const CodableColor& color) {
        swatch->setOffers(m_state.colors);
        swatch->setColor(layer ? color.withAlpha(1) : QColor());
    };
    showColor(m_color, shown.foreground);
    showColor(m_boxColor, shown.background);
    showColor(m_shadowColor, shown.shadowColor);
    showRefusals(shown.hasBox);
}

void TextPanel::showRefusals(bool hasBox)
{
    const QString nothing =
        selected() ? QString() : u"Selecciona un texto para cambiar su estilo."_s;
    m_header->setCopyRefused(nothing);
    m_header->setPasteRefused(nothing.isEmpty() && !m_state.canPaste ? u"Copia antes un estilo."_s
                                                                     : nothing);
    for (QWidget* widget : QList<QWidget*>{m_alignment, m_box})
        setRefused(widget, nothing);
    setRefused(m_size, nothing, m_size->accessibleDescription());
    setRefused(m_font, nothing, m_font->accessibleDescription());
    setRefused(m_color, nothing, m_color->accessibleName());
    const auto unlessBox = [&](const QString& reason) {
        return nothing.isEmpty() && !hasBox ? reason : nothing;
    };
    const QString noBox = unlessBox(u"La caja está desactivada."_s);
    const QString noShadow = unlessBox(u"La sombra es de la caja."_s);
    setRefused(m_boxColor, noBox, m_boxColor->accessibleName());
    setRefused(m_boxOpacity, noBox);
    setRefused(m_boxRadius, noBox);
    setRefused(m_shadowColor, noShadow, m_shadowColor->accessibleName());
    for (SliderField* field : {m_shadowOpacity, m_shadowBlur, m_shadowDistance, m_shadowAngle})
        setRefused(field, noShadow);
}
