#include "app/EmptyNote.h"

#include "app/controls/Painting.h"

namespace {
constexpr int iconSide = 24, titleGap = 12, titleHeight = 18, sentenceGap = 8, widest = 260,
              sideMargin = 32;
}

EmptyNote::EmptyNote(Icon icon, const QString& title, const QString& sentence, QWidget* parent)
    : QWidget(parent), m_icon(icon), m_title(title), m_sentence(sentence)
{
    setAccessibleName(title.isEmpty() ? sentence : title);
    setAccessibleDescription(sentence);
}

void EmptyNote::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int textWidth = std::min(widest, width() - 2 * sideMargin);
    painter.setFont(fontOf(Type::small));
    const int flags = int(Qt::AlignHCenter) | Qt::TextWordWrap;
    const QRectF room((width() - textWidth) / 2.0, 0, textWidth, height());
    const double sentence = painter.boundingRect(room, flags, m_sentence).height();
    const int title = m_title.isEmpty() ? 0 : titleHeight + sentenceGap;
    double top = (height() - (iconSide + titleGap + title + sentence)) / 2;
    paintIcon(painter, m_icon, QRectF(0, top, width(), iconSide), iconSide, theme.text3);
    top += iconSide + titleGap;
    paintText(painter, QRectF(0, top, width(), titleHeight), Qt::AlignHCenter, Type::heading,
              theme.text, m_title);
    painter.setFont(fontOf(Type::small));
    painter.setPen(theme.text2);
    painter.drawText(room.translated(0, top + title), flags, m_sentence);
}
