#include "app/controls/EmptyNote.h"

#include "app/controls/AccessibleRole.h"
#include "app/theme/Painting.h"

#include <QTextLayout>

namespace {
constexpr int emptyNoteLineHeight = 18, emptyNoteIconSide = 24, titleGap = 12, titleHeight = 18,
              sentenceGap = 8, emptyNoteWidest = 260, sideMargin = 32;
}

EmptyNote::EmptyNote(Icon icon, const QString& title, const QString& sentence, QWidget* parent)
    : QWidget(parent), m_icon(icon), m_title(title), m_sentence(sentence)
{
    setAccessibleRole(this, QAccessible::StaticText);
    setAccessibleName(title.isEmpty() ? sentence : title);
    setAccessibleDescription(sentence);
}

void EmptyNote::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int wrapWidth = std::min(emptyNoteWidest, width() - 2 * sideMargin);
    QTextLayout sentence(m_sentence, fontOf(Type::small));
    QTextOption centred(Qt::AlignHCenter);
    sentence.setTextOption(centred);
    sentence.beginLayout();
    int lines = 0;
    for (QTextLine line = sentence.createLine(); line.isValid(); line = sentence.createLine()) {
        line.setLineWidth(wrapWidth);
        line.setPosition(QPointF(0, lines++ * emptyNoteLineHeight));
    }
    sentence.endLayout();
    const int title = m_title.isEmpty() ? 0 : titleHeight + sentenceGap;
    double top =
        (height() - (emptyNoteIconSide + titleGap + title + lines * emptyNoteLineHeight)) / 2.0;
    paintIcon(painter, m_icon, QRectF(0, top, width(), emptyNoteIconSide), emptyNoteIconSide,
              theme.text3);
    top += emptyNoteIconSide + titleGap;
    paintText(painter, QRectF(0, top, width(), titleHeight), Qt::AlignHCenter, Type::heading,
              theme.text, m_title);
    painter.setPen(theme.text2);
    sentence.draw(&painter, QPointF((width() - wrapWidth) / 2.0, top + title));
}
