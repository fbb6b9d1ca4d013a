#include "app/layers/CaptionCard.h"

#include "account/CreditAmounts.h"
#include "app/controls/AccessibleRole.h"
#include "app/controls/Grounds.h"
#include "app/controls/Paragraph.h"
#include "app/controls/fields/SlotEditor.h"
#include "app/theme/Icons.h"
#include "app/theme/Painting.h"
#include "model/Characters.h"

#include <QMouseEvent>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace {
constexpr int captionPadding = 12, captionHeaderTop = 6, captionHeader = 24, captionTop = 32,
              captionBottom = 8, captionRadius = 10;
constexpr int captionIconSide = 16, captionIconGap = 8, alertSide = 14, alertGap = 4;
constexpr int linesInEdit = 5;
constexpr qsizetype captionGuide = 2200;    // characters that every network takes
}    // namespace

CaptionCard::CaptionCard(QWidget* parent)
    : QWidget(parent), m_info(new IconView(Icon::info, &Theme::text2, this)),
      m_editor(new SlotEditor(u"Texto de la publicación"_s, this)),
      m_rest(new Paragraph(Type::body, &Theme::text, {}, this))
{
    setCursor(Qt::IBeamCursor);
    m_info->setCursor(Qt::ArrowCursor);
    m_info->hide();
    setAccessibleRole(m_info, QAccessible::Graphic);
    m_info->setAccessibleName(u"Notas"_s);
    m_rest->setSpoken(Spoken::byOwner);
    m_rest->setCursor(Qt::IBeamCursor);
    m_rest->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_rest->setGround(&Theme::card);
    connect(m_editor, &SlotEditor::edited, this, [this](const QString& caption, Pace pace) {
        m_caption = caption;
        describe();
        Q_EMIT edited(caption, pace);
    });
    connect(m_editor, &SlotEditor::leaveRequested, this, &CaptionCard::leaveRequested);
    connect(m_editor, &SlotEditor::grown, this, &CaptionCard::place);
    connect(m_editor, &SlotEditor::focused, this, [this] { setEditing(true); });
    connect(m_editor, &SlotEditor::blurred, this, [this] { setEditing(false); });
    describe();
    fitEditor();
}

void CaptionCard::setCaption(const QString& caption)
{
    if (caption == m_caption)
        return;
    m_caption = caption;
    m_editor->setText(caption);
    describe();
}

void CaptionCard::setNotes(const QString& notes)
{
    if (notes == m_notes)
        return;
    m_notes = notes;
    m_info->setVisible(!notes.isEmpty());
    m_info->setToolTip(plainToolTip(notes));
    describe();
}

void CaptionCard::setRestLines(int lines)
{
    if (lines == m_restLines)
        return;
    m_restLines = lines;
    fitEditor();
}

// Counts anew, and tells screen readers what the card shows beside the text.
void CaptionCard::describe()
{
    m_count = characterCount(m_caption);
    m_rest->setText(m_caption);
    QStringList told{
        u"%1 de %2 caracteres."_s.arg(groupedThousands(m_count), groupedThousands(captionGuide))};
    if (!m_notes.isEmpty())
        told.append(m_notes);
    m_editor->setAccessibleDescription(told.join(u' '));
    update();
}

void CaptionCard::setEditing(bool isEditing)
{
    if (isEditing == m_isEditing)
        return;
    m_isEditing = isEditing;
    fitEditor();
}

void CaptionCard::fitEditor()
{
    m_rest->setMostRows(m_restLines);
    m_rest->setVisible(!m_isEditing);
    m_editor->setLines(m_restLines, m_isEditing ? linesInEdit : m_restLines);
    place();
}

void CaptionCard::place()
{
    const int before = height();
    setFixedHeight(captionTop + m_editor->height() + captionBottom);
    m_editor->setGeometry(captionPadding, captionTop, width() - 2 * captionPadding,
                          m_editor->height());
    if (!m_isEditing)    // a press on a line that is seen puts the cursor there
        m_editor->verticalScrollBar()->setValue(0);
    m_rest->setGeometry(m_editor->geometry());
    m_rest->raise();
    const int name = qCeil(textWidth(Type::small, m_editor->accessibleName()));
    m_info->move(captionPadding + captionIconSide + captionIconGap + name + 4,
                 captionHeaderTop + (captionHeader - m_info->height()) / 2);
    if (height() != before)
        Q_EMIT grown();
}

void CaptionCard::resizeEvent(QResizeEvent*)
{
    place();
}

void CaptionCard::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        m_editor->setFocus(Qt::OtherFocusReason);
}

void CaptionCard::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), captionRadius, theme.card);
    strokeRounded(painter, rect(), captionRadius, m_isEditing ? theme.accentLine : theme.line,
                  m_isEditing ? 1.5 : 1);
    const QColor ink = m_isEditing ? theme.accentText : theme.text2;
    paintIcon(painter, Icon::caption,
              QRectF(captionPadding, captionHeaderTop, captionIconSide, captionHeader),
              captionIconSide, ink);
    QRectF header(captionPadding + captionIconSide + captionIconGap, captionHeaderTop, 0,
                  captionHeader);
    header.setRight(width() - captionPadding);
    paintText(painter, header, Qt::AlignLeft, Type::small, ink, m_editor->accessibleName());
    const bool isLong = m_count > captionGuide;
    QString counter = groupedThousands(m_count);
    const QString ofGuide = counter + u" / "_s + groupedThousands(captionGuide);
    const bool hasInfo = !m_info->isHidden();
    const int named = hasInfo ? m_info->geometry().right()
                              : captionPadding + captionIconSide + captionIconGap +
                                    qCeil(textWidth(Type::small, m_editor->accessibleName()));
    const double alert = isLong ? alertGap + alertSide : 0;
    if (named + captionIconGap + alert + textWidth(Type::caption, ofGuide) <= header.right())
        counter = ofGuide;
    const QColor counterInk = isLong ? theme.warn : theme.text3;
    paintText(painter, header, Qt::AlignRight, Type::caption, counterInk, counter, Qt::ElideNone);
    if (isLong)
        paintIcon(painter, Icon::alert,
                  QRectF(header.right() - textWidth(Type::caption, counter) - alertGap - alertSide,
                         captionHeaderTop, alertSide, captionHeader),
                  alertSide, theme.warn);
}
