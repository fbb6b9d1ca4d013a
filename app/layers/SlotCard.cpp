#include "app/layers/SlotCard.h"

#include "app/controls/Button.h"
#include "app/controls/fields/SlotEditor.h"
#include "model/TextLayer.h"

#include <QGuiApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {
constexpr int slotCardPadding = 12, headerTop = 6, slotHeaderHeight = 24, textTop = 32,
              slotCardBottom = 8;
constexpr int warningGap = 4, warningHeight = row(Type::caption).lineHeight;
constexpr int slotCardIconSide = 16, eyeWidth = 28, slotCardRadius = 10;
constexpr int releasePause = 50;    // ms between checks whether the mouse button is released
}    // namespace

SlotCard::SlotCard(CopySlot slot, QWidget* parent)
    : QWidget(parent), m_slot(slot), m_icon(iconNamed(row(slot).icon)),
      m_name(row(slot).displayName.toString()),
      m_proposal(new IconButton(Icon::refresh, u"Otra propuesta"_s, eyeWidth, this)),
      m_eye(new IconButton(Icon::visible, u"Ocultar %1"_s.arg(m_name), eyeWidth, this)),
      m_editor(new SlotEditor(m_name, this))
{
    setCursor(Qt::IBeamCursor);
    for (IconButton* button : {m_proposal, m_eye}) {
        button->setFixedSize(eyeWidth, slotHeaderHeight);
        button->setCursor(Qt::ArrowCursor);
    }
    m_proposal->setIconSize(16);
    m_proposal->hide();
    m_eye->setIconSize(18);
    m_tellLater.setSingleShot(true);
    m_tellLater.setInterval(releasePause);
    connect(&m_tellLater, &QTimer::timeout, this, &SlotCard::place);
    connect(m_proposal, &IconButton::clicked, this, &SlotCard::proposalRequested);
    connect(m_eye, &IconButton::clicked, this, &SlotCard::visibilityToggled);
    connect(m_editor, &SlotEditor::edited, this, &SlotCard::edited);
    connect(m_editor, &SlotEditor::leaveRequested, this, &SlotCard::leaveRequested);
    connect(m_editor, &SlotEditor::grown, this, &SlotCard::place);
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
    // Ignores changes of style, which the card does not show: dragging a slider makes many.
    const bool isShown =
        m_visible == layer.isVisible && m_mark == mark && m_editor->text() == layer.text;
    if (m_hasLayer && isShown)
        return;
    m_hasLayer = true;
    m_visible = layer.isVisible;
    m_mark = mark;
    m_eye->setMeaning(m_visible ? Icon::visible : Icon::hidden,
                      m_visible ? u"Ocultar %1"_s.arg(m_name) : u"Mostrar %1"_s.arg(m_name));
    m_editor->setText(layer.text);
    m_proposal->setVisible(mark == CardMark::selected);
    place();
    update();
}

void SlotCard::setProposalRefused(const QString& reason)
{
    // A focused button that is disabled would hand the focus to the eye, whose press hides the
    // text.
    m_proposal->setEnabled(reason.isEmpty() || m_proposal->hasFocus());
    m_proposal->setToolTip(reason.isEmpty() ? m_proposal->accessibleName() : plainToolTip(reason));
}

void SlotCard::setWarnings(const QStringList& warnings)
{
    if (warnings == m_warnings)
        return;
    m_warnings = warnings;
    m_editor->setAccessibleDescription(warnings.join(u' '));
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

// Shows or hides the warning. Waits until no mouse button is pressed: the height of the card
// changes, which would turn a click into a selection and move a slider away from the pointer.
void SlotCard::updateWarningLine()
{
    const bool tells = !m_warnings.isEmpty() && m_editing;
    if (tells == m_tellsWarning)
        m_tellLater.stop();
    else if (QGuiApplication::mouseButtons() != Qt::NoButton)
        m_tellLater.start();
    else
        m_tellsWarning = tells;
}

void SlotCard::place()
{
    updateWarningLine();
    const bool unfolded = m_visible || m_editing;
    m_editor->setVisible(unfolded);
    const int before = height();
    const int text = m_editor->height() + (m_tellsWarning ? warningGap + warningHeight : 0);
    setFixedHeight(unfolded ? textTop + text + slotCardBottom
                            : headerTop + slotHeaderHeight + headerTop);
    m_eye->move(width() - eyeWidth - 4, headerTop);
    m_proposal->move(m_eye->x() - eyeWidth, headerTop);
    m_editor->setGeometry(slotCardPadding, textTop, width() - 2 * slotCardPadding,
                          m_editor->height());
    if (height() != before)
        Q_EMIT grown();
}

bool SlotCard::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const QRect header(0, 0, width(), textTop);
    if (m_warnings.isEmpty() || !header.contains(help->pos()))
        QToolTip::hideText();
    else
        QToolTip::showText(help->globalPos(), m_warnings.join(u'\n'), this, header);
    return true;
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
    fillRounded(painter, rect(), slotCardRadius, theme.card);
    strokeRounded(painter, rect(), slotCardRadius, selected ? theme.accentLine : theme.line,
                  selected ? 1.5 : 1);
    QColor ink = m_visible ? theme.text2 : theme.text3;
    if (selected)
        ink = theme.accentText;
    paintIcon(painter, m_icon,
              QRectF(slotCardPadding, headerTop, slotCardIconSide, slotHeaderHeight),
              slotCardIconSide, ink);
    double left = slotCardPadding + slotCardIconSide + 8;
    const auto add = [&](Type type, const QColor& color, const QString& text) {
        paintText(painter, QRectF(left, headerTop, width(), slotHeaderHeight), Qt::AlignLeft, type,
                  color, text, Qt::ElideNone);
        left += textWidth(type, text) + 10;
    };
    add(Type::small, ink, m_name);
    if (!m_visible)
        add(Type::caption, theme.text3, u"Oculto"_s);
    if (!m_warnings.isEmpty())
        paintIcon(painter, Icon::alert, QRectF(left - 2, headerTop, 14, slotHeaderHeight), 14,
                  theme.warn);
    if (m_tellsWarning && !m_warnings.isEmpty()) {
        const QRectF line(slotCardPadding, textTop + m_editor->height() + warningGap,
                          width() - 2 * slotCardPadding, warningHeight);
        paintText(painter, line, Qt::AlignLeft, Type::caption, theme.warn, m_warnings.first());
    }
}
