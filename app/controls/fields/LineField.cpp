#include "app/controls/fields/LineField.h"

#include "app/theme/Painting.h"

#include <QKeyEvent>

namespace {
constexpr int fieldHeight = 32, lineFieldPadding = 8, lineFieldIconSide = 20, lineFieldIconGap = 6;
}

bool belongsToWindow(const QKeyEvent* event)
{
    const bool turnsPage = event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown;
    // Under X11, QLineEdit would use Ctrl+E to move the cursor to the end of the line.
    const bool exports = event->key() == Qt::Key_E && event->modifiers() == Qt::ControlModifier;
    return exports || (turnsPage && event->modifiers() == Qt::NoModifier) ||
           event->matches(QKeySequence::Undo) || event->matches(QKeySequence::Redo);
}

LineField::LineField(const QString& name, const QString& placeholder, Icon icon, QWidget* parent)
    : QLineEdit(parent), m_icon(icon)
{
    setFrame(false);
    setFont(fontOf(Type::body));
    setAccessibleName(name);
    setPlaceholderText(placeholder);
    setFixedHeight(fieldHeight);
    // QLineEdit itself adds a margin of two pixels.
    const int left = icon == Icon::none
                         ? lineFieldPadding
                         : lineFieldPadding + lineFieldIconSide + lineFieldIconGap - 2;
    setTextMargins(left, 0, lineFieldPadding - 2, 0);
}

void LineField::setShown(const QString& text)
{
    if (text == m_shown)
        return;
    m_shown = text;
    if (!hasFocus() || !isModified())
        setText(text);
}

void LineField::finish()
{
    if (text() == m_shown)
        return;
    m_shown = text();
    setModified(false);
    Q_EMIT edited(m_shown);
}

bool LineField::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride &&
        belongsToWindow(static_cast<QKeyEvent*>(event))) {
        event->ignore();
        return true;
    }
    return QLineEdit::event(event);
}

void LineField::keyPressEvent(QKeyEvent* event)
{
    if (belongsToWindow(event))
        return event->ignore();
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        clearFocus();    // focusOutEvent() ends the editing
        return;
    case Qt::Key_Escape:
        setText(m_shown);
        clearFocus();
        Q_EMIT abandoned();
        return;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

void LineField::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        finish();
    update();
}

void LineField::paintEvent(QPaintEvent* event)
{
    const Theme& theme = themeOf(this);
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        fillRounded(painter, rect(), Radius::field,
                    isEnabled() ? theme.control : mixed(theme.panel, theme.control, 0.65));
        if (hasFocus())
            strokeRounded(painter, rect(), Radius::field, theme.accentLine, 1.5);
        paintIcon(painter, m_icon, QRectF(lineFieldPadding, 0, lineFieldIconSide, height()), 16,
                  isEnabled() ? theme.text2 : theme.dis);
    }
    QLineEdit::paintEvent(event);
}
