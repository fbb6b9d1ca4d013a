#include "app/SlotCard.h"

#include "app/controls/Button.h"
#include "app/controls/SlotEditor.h"
#include "model/TextLayer.h"

#include <QMouseEvent>

using namespace Qt::StringLiterals;

namespace {
constexpr int padding = 12, headerTop = 6, headerHeight = 24, textTop = 32, bottom = 8;
constexpr int iconSide = 16, eyeWidth = 28, cardRadius = 10;
}    // namespace

SlotCard::SlotCard(CopySlot slot, QWidget* parent)
    : QWidget(parent), m_slot(slot), m_icon(iconNamed(row(slot).icon)),
      m_name(row(slot).displayName.toString()),
      m_eye(new IconButton(Icon::visible, u"Ocultar %1"_s.arg(m_name), eyeWidth, this)),
      m_editor(new SlotEditor(m_name, this))
{
    m_eye->setFixedSize(eyeWidth, headerHeight);
    m_eye->setIconSize(18);
    setCursor(Qt::IBeamCursor);
    m_eye->setCursor(Qt::ArrowCursor);
    connect(m_eye, &IconButton::clicked, this, &SlotCard::visibilityToggled);
    connect(m_editor, &SlotEditor::edited, this, &SlotCard::edited);
    connect(m_editor, &SlotEditor::leaveRequested, this, &SlotCard::leaveRequested);
    connect(m_editor, &SlotEditor::grown, this, [this] {
        place();
        Q_EMIT grown();
    });
    connect(m_editor, &SlotEditor::focused, this, [this] {
        m_editing = true;
        place();
        Q_EMIT focused();
    });
    connect(m_editor, &SlotEditor::blurred, this, [this] {
        m_editing = false;
        place();
    });
    place();
}

void SlotCard::setLayer(const TextLayer& layer, CardMark mark)
{
    // A style changes at every tick of a slider, and none of it shows here.
    const bool isShown =
        m_visible == layer.isVisible && m_mark == mark && m_editor->text() == layer.text;
    if (m_isShown && isShown)
        return;
    m_isShown = true;
    m_visible = layer.isVisible;
    m_mark = mark;
    m_eye->setMeaning(m_visible ? Icon::visible : Icon::hidden,
                      m_visible ? u"Ocultar %1"_s.arg(m_name) : u"Mostrar %1"_s.arg(m_name));
    m_editor->setText(layer.text);
    place();
    update();
}

void SlotCard::edit()
{
    open();
    m_editor->selectAll();
}

void SlotCard::open()
{
    m_editing = true;
    place();
    m_editor->setFocus(Qt::OtherFocusReason);
}

void SlotCard::place()
{
    const bool unfolded = m_visible || m_editing;
    m_editor->setVisible(unfolded);
    setFixedHeight(unfolded ? textTop + m_editor->height() + bottom
                            : headerTop + headerHeight + headerTop);
    m_eye->move(width() - eyeWidth - 4, headerTop);
    m_editor->setGeometry(padding, textTop, width() - 2 * padding, m_editor->height());
}

void SlotCard::resizeEvent(QResizeEvent*)
{
    place();
}

void SlotCard::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && !m_editor->hasFocus())
        open();
}

void SlotCard::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool selected = m_mark == CardMark::selected;
    fillRounded(painter, rect(), cardRadius, theme.card);
    strokeRounded(painter, rect(), cardRadius, selected ? theme.accentLine : theme.line,
                  selected ? 1.5 : 1);
    QColor ink = m_visible ? theme.text2 : theme.text3;
    if (selected)
        ink = theme.accentText;
    paintIcon(painter, m_icon, QRectF(padding, headerTop, iconSide, headerHeight), iconSide, ink);
    const int left = padding + iconSide + 8;
    paintText(painter, QRectF(left, headerTop, width(), headerHeight), Qt::AlignLeft, Type::small,
              ink, m_name, Qt::ElideNone);
    if (!m_visible)
        paintText(
            painter,
            QRectF(left + textWidth(Type::small, m_name) + 10, headerTop, width(), headerHeight),
            Qt::AlignLeft, Type::caption, theme.text3, u"Oculto"_s, Qt::ElideNone);
}
