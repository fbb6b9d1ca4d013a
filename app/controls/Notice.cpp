#include "app/controls/Notice.h"

#include "app/controls/Button.h"
#include "app/controls/Paragraph.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int noticeIconSide = 16, noticeIconGap = 8;

QString addressIn(const QString& text)
{
    static const QRegularExpression address(u"https?://\\S+"_s);
    return address.match(text).captured();
}

}    // namespace

Notice::Notice(int rows, Qt::Alignment place, QWidget* parent)
    : QWidget(parent), m_rows(rows), m_text(new Paragraph(Type::small, &Theme::text2)),
      m_copy(new PushButton(Icon::none, u"Copiar dirección"_s, ButtonKind::link, ButtonSize::small))
{
    const int rowHeight = row(Type::small).lineHeight;
    setMinimumHeight(rows * rowHeight);
    m_text->setMostRows(rows);
    m_text->setSpoken(Spoken::byOwner);
    m_copy->setFlush();
    m_copy->setFixedHeight(rowHeight);
    m_copy->hide();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(noticeIconSide + noticeIconGap, 0, 0, 0);
    layout->setSpacing(0);
    if (place & Qt::AlignVCenter)
        layout->addStretch(1);
    layout->addWidget(m_text);
    layout->addWidget(m_copy);
    layout->addStretch(1);
    connect(m_copy, &PushButton::clicked, this, [this] {
        QGuiApplication::clipboard()->setText(addressIn(m_text->text()));
        m_copy->setAccessibleDescription(u"Copiada"_s);
        m_copy->setText(u"Dirección copiada"_s);
        m_copy->updateGeometry();
    });
}

void Notice::tell(NoticeKind kind, const QString& text)
{
    if (kind == m_kind && text == m_text->text())
        return;
    m_kind = kind;
    m_text->setInk(kind == NoticeKind::problem ? &Theme::err : &Theme::text2);
    m_text->setText(text);
    const bool hasAddress = !addressIn(text).isEmpty();
    m_text->setMostRows(hasAddress ? m_rows - 1 : m_rows);
    m_copy->setText(m_copy->accessibleName());
    m_copy->setAccessibleDescription({});
    m_copy->setVisible(hasAddress);
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
    paintIcon(painter, isProblem ? Icon::alert : Icon::info,
              QRectF(0, m_text->y(), noticeIconSide, noticeIconSide), noticeIconSide,
              isProblem ? theme.err : theme.text2);
}
