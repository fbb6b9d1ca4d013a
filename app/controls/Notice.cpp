#include "app/controls/Notice.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/CopyButton.h"
#include "app/controls/Paragraph.h"

#include <QRegularExpression>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int noticeIconSide = 16, noticeIconGap = 8;

bool holds(QLayout* layout, const QWidget* part)
{
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        if (item->widget() == part || (item->layout() && holds(item->layout(), part)))
            return true;
    }
    return false;
}

// Inserts `inserted` below `part`, in the innermost vertical layout that contains `part`, searched
// from `layout` inwards. Returns that layout; null if there is none.
QBoxLayout* insertBelow(QLayout* layout, const QWidget* part, QWidget* inserted)
{
    auto* rows = qobject_cast<QBoxLayout*>(layout);
    for (int i = 0; i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        QLayout* inner = item->layout();
        if (item->widget() != part && !(inner && holds(inner, part)))
            continue;
        if (QBoxLayout* place = inner ? insertBelow(inner, part, inserted) : nullptr)
            return place;
        if (!rows || rows->direction() != QBoxLayout::TopToBottom)
            return nullptr;
        rows->insertWidget(i + 1, inserted);
        return rows;
    }
    return nullptr;
}

QString addressIn(const QString& text)
{
    static const QRegularExpression address(u"https?://\\S+"_s);
    return address.match(text).captured();
}

}    // namespace

Notice::Notice(int rows, Qt::Alignment place, QWidget* parent)
    : QWidget(parent), m_rows(rows), m_text(new Paragraph(Type::small, &Theme::text2)),
      m_copy(new CopyButton(u"Copiar dirección"_s))
{
    setAccessibleRole(this, QAccessible::StatusBar);
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
}

void Notice::tell(NoticeKind kind, const QString& text)
{
    if (kind == m_kind && text == m_text->text())
        return;
    m_kind = kind;
    m_text->setInk(kind == NoticeKind::problem ? &Theme::err : &Theme::text2);
    m_text->setText(text);
    const QString address = addressIn(text);
    m_text->setMostRows(address.isEmpty() ? m_rows : m_rows - 1);
    m_copy->setAddress(address);
    m_copy->setVisible(!address.isEmpty());
    setAccessibleName(text);
    update();
}

void Notice::standBelow(QWidget* control)
{
    if (m_place)
        m_place->removeWidget(this);
    m_place = nullptr;
    for (QWidget* part = control; QWidget* around = part->parentWidget(); part = around) {
        m_place = around->layout() ? insertBelow(around->layout(), part, this) : nullptr;
        if (m_place)
            break;
    }
    setTabOrder(control, m_copy);
}

void Notice::standIn(QBoxLayout* place)
{
    if (m_place)
        m_place->removeWidget(this);
    m_place = place;
    place->addWidget(this);
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
