#include "app/layers/ShapesPanel.h"

#include "app/controls/Badge.h"
#include "app/controls/Caption.h"
#include "app/controls/PanelLayout.h"
#include "app/controls/fields/LineField.h"
#include "app/controls/fields/SliderField.h"
#include "app/controls/popovers/Swatch.h"
#include "app/layers/AddShapeButton.h"
#include "app/layers/FrameFields.h"
#include "app/layers/ShapeRow.h"
#include "app/presets/StyleHeader.h"

using namespace Qt::StringLiterals;

namespace {

// Largest number of rows in the list: the image may have any number of shapes.
constexpr int shapesMostRows = 60;
constexpr SliderRange shapesPercent{SliderUnit::percent, 0, 1},
    widthRange{SliderUnit::plain, 0, 40}, shapesRadiusRange{SliderUnit::plain, 0, 80};

}    // namespace

ShapesPanel::ShapesPanel(QWidget* parent)
    : QWidget(parent), m_count(new Badge(QString(), this)), m_list(new QWidget(this)),
      m_note(new Caption(Type::small, &Theme::text3, {}, m_list)), m_header(new StyleHeader(this)),
      m_fill(new Swatch(u"Color del relleno"_s, this)),
      m_fillHex(new LineField(u"Color hexadecimal del relleno"_s, {}, Icon::none, this)),
      m_fillOpacity(new SliderField(u"Opacidad"_s, shapesPercent, this)),
      m_stroke(new Swatch(u"Color del trazo"_s, this)),
      m_strokeOpacity(new SliderField(u"Opacidad"_s, shapesPercent, this)),
      m_strokeWidth(new SliderField(u"Grosor"_s, widthRange, this)),
      m_radius(new SliderField(u"Radio"_s, shapesRadiusRange, this)), m_frame(new FrameFields(this))
{
    m_fillHex->setMaxLength(7);
    m_fillOpacity->setAccessibleName(u"Opacidad del relleno"_s);
    m_strokeOpacity->setAccessibleName(u"Opacidad del trazo"_s);
    m_strokeWidth->setAccessibleName(u"Grosor del trazo"_s);
    m_radius->setAccessibleName(u"Radio de las esquinas"_s);
    build();
    connectStyle();
    showRows();
    showStyle();
}

void ShapesPanel::build()
{
    auto* layout = new PanelLayout(this);
    auto* add = new Caption(Type::heading, &Theme::text, u"Añadir"_s, this);
    add->setFixedHeight(32);
    layout->addRow(add, 0);
    QList<QWidget*> buttons;
    for (const auto& kindRow : Vocabulary<ShapeKind>::rows) {
        const ShapeKind kind = kindRow.value;
        auto* button = new AddShapeButton(kind, this);
        m_add[std::size_t(kind)] = button;
        buttons.append(button);
        connect(button, &AddShapeButton::clicked, this,
                [this, kind] { Q_EMIT addRequested(kind); });
    }
    layout->addRow(buttons, 6);

    auto* heading = new QWidget(this);
    heading->setFixedHeight(32);
    auto* line = new QHBoxLayout(heading);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(8);
    line->addWidget(new Caption(Type::heading, &Theme::text, u"En esta imagen"_s, heading));
    line->addWidget(m_count);
    line->addStretch(1);
    layout->addRow(heading, 16);
    auto* rows = new QVBoxLayout(m_list);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(8);
    rows->addWidget(m_note);
    layout->addRow(m_list, 6);

    layout->addRow(m_header, 16);
    layout->addRow(sectionTitle(u"Relleno"_s, this), 4);
    layout->addRow({m_fill, m_fillHex, m_fillOpacity}, 10);
    layout->addRow(sectionTitle(u"Trazo"_s, this), 12);
    layout->addRow({m_stroke, m_strokeOpacity, m_strokeWidth}, 10);
    layout->addRow(sectionTitle(u"Esquinas"_s, this), 12);
    layout->addRow(m_radius, 10);
    layout->addRow(m_frame, 16);
    layout->addStretch(1);
}

template <typename Change>
void ShapesPanel::edit(Pace pace, Change change)
{
    const ShapeLayer* shape = selected();
    if (!shape)
        return;
    ShapeLayer changed = *shape;
    change(changed);
    Q_EMIT shapeEdited(changed, pace);
}

void ShapesPanel::connectNumber(SliderField* field, double ShapeLayerDesign::*number)
{
    connect(field, &SliderField::valueChanged, this, [this, number](double value, Pace pace) {
        edit(pace, [&](ShapeLayer& shape) { shape.*number = value; });
    });
}

void ShapesPanel::connectColor(Swatch* swatch, CodableColor ShapeLayerDesign::*color)
{
    connect(swatch, &Swatch::colorUsed, this, &ShapesPanel::colorUsed);
    connect(swatch, &Swatch::colorChanged, this, [this, color](const QColor& chosen, Pace pace) {
        edit(pace, [&](ShapeLayer& shape) {
            const double alpha = (shape.*color).alpha;
            shape.*color = CodableColor(chosen);
            (shape.*color).alpha = alpha;
        });
    });
}

void ShapesPanel::connectStyle()
{
    connectNumber(m_fillOpacity, &ShapeLayer::fillOpacity);
    connectNumber(m_strokeOpacity, &ShapeLayer::strokeOpacity);
    connectNumber(m_strokeWidth, &ShapeLayer::strokeWidth);
    connectNumber(m_radius, &ShapeLayer::cornerRadius);
    connectColor(m_fill, &ShapeLayer::fill);
    connectColor(m_stroke, &ShapeLayer::stroke);
    connect(m_fillHex, &LineField::edited, this, [this](const QString& text) {
        if (const auto typed = CodableColor::fromHexRGB(text.trimmed())) {
            Q_EMIT colorUsed(typed->color());
            edit(Pace::once, [&](ShapeLayer& shape) {
                const double alpha = shape.fill.alpha;
                shape.fill = *typed;
                shape.fill.alpha = alpha;
            });
        }
        showStyle();    // also replaces a typed text that is no colour
    });
    connect(m_frame, &FrameFields::frameEdited, this, &ShapesPanel::frameEdited);
    connect(m_frame, &FrameFields::alignmentRequested, this, &ShapesPanel::alignmentRequested);
    connect(m_header, &StyleHeader::copyRequested, this, &ShapesPanel::copyStyleRequested);
    connect(m_header, &StyleHeader::pasteRequested, this, &ShapesPanel::pasteStyleRequested);
}

void ShapesPanel::setState(const ShapesPanelState& state)
{
    if (state == m_state)
        return;
    m_state = state;
    showRows();
    showStyle();
}

QList<QWidget*> ShapesPanel::focusOrder() const
{
    QList<QWidget*> order;
    for (AddShapeButton* button : m_add)
        order.append(button);
    for (ShapeRow* shape : m_rows) {
        order.append(shape);
        order.append(shape->deleteButton());
    }
    order += m_header->focusOrder();
    order += {m_fill, m_fillHex, m_fillOpacity, m_stroke, m_strokeOpacity, m_strokeWidth, m_radius};
    return order + m_frame->focusOrder();
}

const ShapeLayer* ShapesPanel::selected() const
{
    const auto found = std::ranges::find(m_state.shapes, m_state.selectedLayer, &ShapeLayer::id);
    return found == m_state.shapes.cend() ? nullptr : &*found;
}

// The name of the kind. If the image has several shapes of the same kind, the name ends in a
// number, counted from the bottommost shape.
void ShapesPanel::showRows()
{
    const auto count = m_state.shapes.size();
    const auto shown = std::min<qsizetype>(count, shapesMostRows);
    auto* layout = static_cast<QVBoxLayout*>(m_list->layout());
    while (m_rows.size() < shown) {
        auto* shape = new ShapeRow(m_list);
        QWidget* before = m_add.back();
        if (!m_rows.isEmpty())
            before = m_rows.last()->deleteButton();
        setTabOrder(before, shape);
        setTabOrder(shape, shape->deleteButton());
        layout->insertWidget(int(m_rows.size()), shape);
        m_rows.append(shape);
        connect(shape, &ShapeRow::clicked, this,
                [this, shape] { Q_EMIT shapeSelected(shape->shapeId()); });
        connect(shape, &ShapeRow::deleteRequested, this, &ShapesPanel::deleteRequested);
    }
    for (qsizetype i = 0; i < m_rows.size(); ++i) {
        // Moves the focus out of a row that is about to be hidden, to the last visible row or,
        // without rows, to an add button.
        QWidget* focus = window()->focusWidget();
        if (i >= shown && focus && m_rows[i]->isAncestorOf(focus)) {
            QWidget* next = m_add.front();
            if (shown > 0)
                next = m_rows[shown - 1]->deleteButton();
            next->setFocus(Qt::TabFocusReason);
        }
        m_rows[i]->setVisible(i < shown);
        if (i >= shown)
            continue;
        // Shows the topmost shape, which is drawn last, in the first row.
        const ShapeLayer& shape = m_state.shapes[count - 1 - i];
        m_rows[i]->setShape(shape, shapeName(m_state.shapes, shape.id),
                            shape.id == m_state.selectedLayer ? ShapeRow::Mark::selected
                                                              : ShapeRow::Mark::none);
    }
    m_count->setText(count > 0 ? QString::number(count) : QString());
    m_note->setText(count == 0 ? u"Esta imagen no tiene formas."_s
                               : u"Y %1 más debajo."_s.arg(count - shown));
    m_note->setVisible(count == 0 || count > shown);
    for (AddShapeButton* button : m_add)
        setRefused(button,
                   m_state.hasImage ? QString() : u"Importa una imagen para añadir formas."_s);
}

void ShapesPanel::showStyle()
{
    const ShapeLayer* shape = selected();
    const ShapeLayer shown = shape ? *shape : ShapeLayer({}, ShapeKind::rectangle, {});
    m_header->setTitle(shape ? u"Estilo de %1"_s.arg(shapeName(m_state.shapes, shape->id))
                             : u"Estilo"_s);
    const int reached = shape ? m_state.reachedImages : 1;
    m_header->setReached(
        reached,
        u"El estilo se aplica a las %1 imágenes seleccionadas; la posición, al mover la forma."_s
            .arg(reached));
    const ShapeLayerDesign usual(shown.kind);
    const auto showNumber = [&](SliderField* field, double ShapeLayerDesign::*number) {
        field->setDefault(usual.*number);
        field->setValue(shown.*number);
    };
    // Blanks the fields of properties that this kind of shape does not have.
    const bool hasFill = shape && shape->kind != ShapeKind::line;
    m_fillOpacity->setBlank(!hasFill);
    m_strokeOpacity->setBlank(!shape);
    m_strokeWidth->setBlank(!shape);
    m_radius->setBlank(!shape || shape->kind != ShapeKind::rectangle);
    showNumber(m_fillOpacity, &ShapeLayer::fillOpacity);
    showNumber(m_strokeOpacity, &ShapeLayer::strokeOpacity);
    showNumber(m_strokeWidth, &ShapeLayer::strokeWidth);
    showNumber(m_radius, &ShapeLayer::cornerRadius);
    m_frame->setState(
        {.frame = shape ? std::optional(shape->frame) : std::nullopt,
         .smallest = smallestFrameOf(shown.kind),
         .output = m_state.output,
         .refusal = shape ? QString() : u"Selecciona una forma para cambiar su posición."_s});
    m_fillHex->setShown(hasFill ? shown.fill.hexRGB() : QString());
    for (Swatch* swatch : {m_fill, m_stroke})
        swatch->setOffers(m_state.colors);
    m_fill->setColor(hasFill ? shown.fill.withAlpha(1) : QColor());
    m_stroke->setColor(shape ? shown.stroke.withAlpha(1) : QColor());
    showRefusals(shape);
}

void ShapesPanel::showRefusals(const ShapeLayer* shape)
{
    const QString nothing = shape ? QString() : u"Selecciona una forma para cambiar su estilo."_s;
    m_header->setCopyRefused(nothing);
    m_header->setPasteRefused(shape && !m_state.canPaste ? u"Copia antes un estilo."_s : nothing);
    const bool line = shape && shape->kind == ShapeKind::line;
    const QString noFill = line ? u"Una línea solo tiene trazo."_s : nothing;
    setRefused(m_fill, noFill, m_fill->accessibleName());
    setRefused(m_fillHex, noFill);
    setRefused(m_fillOpacity, noFill);
    setRefused(m_stroke, nothing, m_stroke->accessibleName());
    setRefused(m_strokeOpacity, nothing);
    setRefused(m_strokeWidth, nothing);
    const bool corners = shape && shape->kind == ShapeKind::rectangle;
    setRefused(m_radius, shape && !corners ? u"Solo los rectángulos tienen esquinas."_s : nothing);
}
