#include "app/controls/fields/TextField.h"

#include "app/controls/fields/LineField.h"
#include "app/theme/Painting.h"

#include <QEvent>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace {
constexpr int sidePadding = 8, labelTop = 6;

// Elides its text while it is not being edited. The text starts at the left edge.
class RestingEdit : public QLineEdit {
public:
    using QLineEdit::QLineEdit;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        if (hasFocus() || textWidth(Type::body, text()) <= width())
            return QLineEdit::paintEvent(event);
        QPainter painter(this);
        paintText(painter, rect(), Qt::AlignLeft, Type::body, themeOf(this).text, text());
    }
};

}    // namespace

TextField::TextField(const QString& label, const QString& placeholder, QWidget* parent)
    : QWidget(parent), m_label(label), m_edit(new RestingEdit(this))
{
    m_edit->setFrame(false);
    m_edit->setTextMargins(-2, 0, 0, 0);    // QLineEdit itself adds a margin of two pixels
    m_edit->setFont(fontOf(Type::body));
    m_edit->setPlaceholderText(placeholder);
    m_edit->setAccessibleName(label);
    m_edit->setFixedHeight(row(Type::body).lineHeight);
    m_edit->installEventFilter(this);
    setFixedHeight(44);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(sidePadding, labelTop + row(Type::caption).lineHeight, sidePadding,
                               0);
    layout->setSpacing(0);
    layout->addWidget(m_edit, 0, Qt::AlignTop);
    connect(m_edit, &QLineEdit::editingFinished, this, &TextField::finish);
    connect(m_edit, &QLineEdit::textChanged, m_edit,
            [this](const QString& text) { m_edit->setToolTip(text); });
}

void TextField::setText(const QString& text)
{
    if (m_shown == text)
        return;
    m_shown = text;
    if (m_edit->text() == text)
        return;
    m_edit->setText(text);
    m_edit->setCursorPosition(0);    // shows the beginning of a long text
}

void TextField::finish()
{
    if (m_edit->text() == m_shown)
        return;
    m_shown = m_edit->text();
    Q_EMIT edited(m_shown);
}

bool TextField::eventFilter(QObject* object, QEvent* event)
{
    switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        update();
        break;
    case QEvent::ShortcutOverride: {
        if (belongsToWindow(static_cast<QKeyEvent*>(event))) {
            event->ignore();
            return true;
        }
        break;
    }
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) {
            m_edit->clearFocus();    // ends the editing; the arrow keys act on the window again
            m_edit->setCursorPosition(0);
            return true;
        }
        break;
    }
    default:
        break;
    }
    return QWidget::eventFilter(object, event);
}

void TextField::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_edit->hasFocus())
        strokeRounded(painter, rect(), Radius::field, theme.accentLine, 1.5);
    paintText(
        painter,
        QRectF(sidePadding, labelTop, width() - 2 * sidePadding, row(Type::caption).lineHeight),
        Qt::AlignLeft, Type::caption, theme.text3, m_label);
}

void TextField::mousePressEvent(QMouseEvent*)
{
    m_edit->setFocus(Qt::MouseFocusReason);
}
