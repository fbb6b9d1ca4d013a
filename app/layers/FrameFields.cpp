#include "app/layers/FrameFields.h"

#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/PanelLayout.h"
#include "app/controls/fields/SliderField.h"
#include "app/presets/StyleHeader.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int frameFieldGap = 8;
constexpr int narrowestFrameField = 64;    // has room for "An" and four digits
constexpr SliderRange pixelRange{SliderUnit::pixels, 0, 0};

struct AlignmentRow {
    LayerAlignment alignment;
    Icon icon;
    QStringView name;
};
constexpr std::array alignmentRows{
    AlignmentRow{LayerAlignment::left, Icon::placeLeft, u"Alinear a la izquierda"},
    AlignmentRow{LayerAlignment::horizontalCentre, Icon::placeCenterHorizontal,
                 u"Centrar en horizontal"},
    AlignmentRow{LayerAlignment::right, Icon::placeRight, u"Alinear a la derecha"},
    AlignmentRow{LayerAlignment::top, Icon::placeTop, u"Alinear arriba"},
    AlignmentRow{LayerAlignment::verticalCentre, Icon::placeCenterVertical, u"Centrar en vertical"},
    AlignmentRow{LayerAlignment::bottom, Icon::placeBottom, u"Alinear abajo"},
};

}    // namespace

FrameFields::FrameFields(QWidget* parent)
    : QWidget(parent), m_x(new SliderField(u"X"_s, pixelRange, this)),
      m_y(new SliderField(u"Y"_s, pixelRange, this)),
      m_width(new SliderField(u"An"_s, pixelRange, this)),
      m_height(new SliderField(u"Al"_s, pixelRange, this))
{
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    const auto addRow = [&](int gapAbove) {
        auto* row = new QHBoxLayout;
        row->setSpacing(frameFieldGap);
        row->setContentsMargins(0, gapAbove, 0, 0);
        rows->addLayout(row);
        return row;
    };
    QHBoxLayout* title = addRow(0);
    title->addWidget(sectionTitle(u"Posición y tamaño"_s, this));
    title->addStretch(1);
    title->addWidget(new Caption(Type::small, &Theme::text3, u"píxeles de salida"_s, this));
    m_fieldRows = {addRow(frameFieldGap), addRow(0)};
    for (const auto& [field, name] :
         {std::pair(m_x, u"Posición horizontal"_s), std::pair(m_y, u"Posición vertical"_s),
          std::pair(m_width, u"Ancho"_s), std::pair(m_height, u"Alto"_s)}) {
        field->setAccessibleName(name);
        field->setMinimumWidth(narrowestFrameField);
        field->raise();    // screen readers go through widgets in the order of their stack
    }
    m_groupRows = {addRow(frameFieldGap), addRow(0)};
    QList<PushButton*> group;
    for (const AlignmentRow& row : alignmentRows) {
        auto* button = new PushButton(row.icon, row.name.toString(), ButtonKind::neutral,
                                      ButtonSize::small, this);
        connect(button, &PushButton::clicked, this,
                [this, row] { Q_EMIT alignmentRequested(row.alignment); });
        m_alignments.append(button);
        group.append(button);
        if (group.size() < 3)
            continue;
        auto* joined = new JoinedButtons(std::exchange(group, {}), this);
        joined->setLabels(Labels::hidden);
        joined->setStretched();
        m_groups.append(joined);
    }
    setClass(WindowClass::roomy);
    connectFields();
    setState({});
}

// In a compact window a row has room for two fields, or for one group of buttons.
void FrameFields::setClass(WindowClass windowClass)
{
    const bool isCompact = windowClass == WindowClass::compact;
    for (QWidget* field : {m_x, m_y})
        m_fieldRows.first()->addWidget(field, 1);
    for (QWidget* field : {m_width, m_height})
        m_fieldRows[isCompact ? 1 : 0]->addWidget(field, 1);
    m_groupRows.first()->addWidget(m_groups.first(), 1);
    m_groupRows[isCompact ? 1 : 0]->addWidget(m_groups.last(), 1);
    // An empty row would still have the gap above it.
    for (QHBoxLayout* row : {m_fieldRows.last(), m_groupRows.last()})
        row->setContentsMargins(0, isCompact ? frameFieldGap : 0, 0, 0);
}

void FrameFields::connectFields()
{
    // `change` gives the frame for the number of pixels that was entered.
    const auto connectField = [this](SliderField* field, auto change) {
        connect(field, &SliderField::valueChanged, this, [this, change](double pixels, Pace pace) {
            if (!m_state.frame)
                return;
            const CodableRect frame = change(*m_state.frame, pixels);
            Q_EMIT frameEdited(frame, pace);
        });
    };
    const auto moved = &LayerFrame::moved;
    connectField(m_x, [this, moved](const CodableRect& frame, double pixels) {
        return moved(frame, pixels / m_state.output.width() - frame.x, 0);
    });
    connectField(m_y, [this, moved](const CodableRect& frame, double pixels) {
        return moved(frame, 0, pixels / m_state.output.height() - frame.y);
    });
    const auto resized = &LayerFrame::resized;
    connectField(m_width, [this, resized](const CodableRect& frame, double pixels) {
        return resized(frame, pixels / m_state.output.width() - frame.width, 0, m_state.smallest);
    });
    connectField(m_height, [this, resized](const CodableRect& frame, double pixels) {
        return resized(frame, 0, pixels / m_state.output.height() - frame.height, m_state.smallest);
    });
}

void FrameFields::setState(const FrameFieldsState& state)
{
    m_state = state;
    const QList<SliderField*> fields{m_x, m_y, m_width, m_height};
    for (SliderField* field : fields) {
        field->setBlank(!state.frame);
        setRefused(field, state.refusal, field->accessibleName());
    }
    for (PushButton* button : m_alignments)
        setRefused(button, state.refusal, button->accessibleName());
    if (state.frame)
        show(*state.frame);
}

void FrameFields::show(const CodableRect& frame)
{
    // A template may have put the layer outside of the limits.
    const auto showNumber = [](SliderField* field, double value, double from, double to,
                               double pixels) {
        field->setValue(value * pixels, std::min(value, from) * pixels,
                        std::max(value, to) * pixels);
    };
    const double across = m_state.output.width(), down = m_state.output.height();
    showNumber(m_x, frame.x, LayerFrame::minimumVisibleOrigin(frame.width),
               LayerFrame::maximumVisibleOrigin(frame.width), across);
    showNumber(m_y, frame.y, LayerFrame::minimumVisibleOrigin(frame.height),
               LayerFrame::maximumVisibleOrigin(frame.height), down);
    showNumber(m_width, frame.width, m_state.smallest.width,
               LayerFrame::maximumOverflowSize(frame.x), across);
    showNumber(m_height, frame.height, m_state.smallest.height,
               LayerFrame::maximumOverflowSize(frame.y), down);
}

QList<QWidget*> FrameFields::focusOrder() const
{
    QList<QWidget*> order{m_x, m_y, m_width, m_height};
    for (PushButton* button : m_alignments)
        order.append(button);
    return order;
}
