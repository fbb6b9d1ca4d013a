#include "app/controls/Notice.h"

#include "app/Icons.h"
#include "app/controls/Painting.h"
#include "app/controls/Paragraph.h"

#include <QVBoxLayout>

namespace {
constexpr int iconSide = 16, iconGap = 8;
}

Notice::Notice(int rows, QWidget* parent)
    : QWidget(parent), m_text(new Paragraph(Type::small, &Theme::text2))
{
    m_text->setMostRows(rows);
    m_text->setLeastRows(rows);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(iconSide + iconGap, 0, 0, 0);
    layout->addWidget(m_text);
}

void Notice::tell(NoticeKind kind, const QString& text)
{
    m_kind = kind;
    m_text->setInk(kind == NoticeKind::problem ? &Theme::err : &Theme::text2);
    m_text->setText(text);
    setAccessibleName(text);
    update();
}

QString Notice::text() const
{
    return m_text->text();
}

void Notice::paintEvent(QPaintEvent*)
{
    if (m_text->text().isEmpty())
        return;
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    const bool isProblem = m_kind == NoticeKind::problem;
    paintIcon(painter, isProblem ? Icon::alert : Icon::info, QRectF(0, 0, iconSide, iconSide),
              iconSide, isProblem ? theme.err : theme.text2);
}
