#include "app/controls/fields/SlotEditor.h"

#include "app/controls/fields/LineField.h"
#include "app/theme/Theme.h"
#include "model/PlainText.h"
#include "model/TextLayer.h"

#include <QAbstractTextDocumentLayout>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTextBlock>

SlotEditor::SlotEditor(const QString& name, QWidget* parent)
    : QTextEdit(parent), m_longest(longestText)
{
    setAccessibleName(name);
    setAcceptRichText(false);
    setUndoRedoEnabled(false);
    setTabChangesFocus(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setFont(fontOf(Type::body));
    setContextMenuPolicy(Qt::NoContextMenu);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    setLineHeights();
    connect(document()->documentLayout(), &QAbstractTextDocumentLayout::documentSizeChanged, this,
            &SlotEditor::fit);
    connect(this, &QTextEdit::textChanged, this, [this] {
        const QString now = text();
        // A highlighter changes only the look, which Qt also reports as a change of the text.
        if (m_showing || now == m_shown.left(m_longest))
            return;
        m_shown = now;
        Q_EMIT edited(m_shown, m_pace);
    });
    fit();
}

void SlotEditor::setText(const QString& text)
{
    if (text == m_shown)
        return;
    m_shown = text;
    m_showing = true;
    const int at = textCursor().position();
    setUndoRedoEnabled(false);    // the history begins with the text as it is shown
    setPlainText(text.left(m_longest));
    setReadOnly(text.size() > m_longest);
    setLineHeights();
    setUndoRedoEnabled(m_isStandalone);
    QTextCursor cursor = textCursor();
    cursor.setPosition(hasFocus() ? std::min(at, document()->characterCount() - 1) : 0);
    setTextCursor(cursor);
    m_showing = false;
}

void SlotEditor::replaceText(const QString& text)
{
    if (text == m_shown)
        return;
    if (isReadOnly() || text.size() > m_longest)
        return setText(text);
    m_shown = text;
    m_showing = true;
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    cursor.insertText(text);
    m_showing = false;
}

// QTextEdit::toPlainText() would turn no-break spaces into spaces.
QString SlotEditor::text() const
{
    return document()
        ->toRawText()
        .replace(QChar::ParagraphSeparator, u'\n')
        .replace(QChar::LineSeparator, u'\n');
}

void SlotEditor::setLineHeights()
{
    QTextBlockFormat format;
    format.setLineHeight(row(Type::body).lineHeight, QTextBlockFormat::FixedHeight);
    QTextCursor cursor(document());
    cursor.select(QTextCursor::Document);
    cursor.mergeBlockFormat(format);
}

void SlotEditor::setStandalone(int longest)
{
    m_longest = longest;
    m_isStandalone = true;
    setUndoRedoEnabled(true);
}

bool SlotEditor::leavesToWindow(const QKeyEvent* event) const
{
    return !m_isStandalone && belongsToWindow(event);
}

void SlotEditor::setLines(int least, int most)
{
    m_leastLines = least;
    m_mostLines = most;
    fit();
}

void SlotEditor::fit()
{
    const int line = row(Type::body).lineHeight;
    const int lines =
        std::clamp(qRound(document()->size().height() / line), m_leastLines, m_mostLines);
    if (height() == lines * line && maximumHeight() == height())
        return;
    setFixedHeight(lines * line);
    Q_EMIT grown();
}

bool SlotEditor::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride &&
        leavesToWindow(static_cast<QKeyEvent*>(event))) {
        event->ignore();
        return true;
    }
    return QTextEdit::event(event);
}

void SlotEditor::keyPressEvent(QKeyEvent* event)
{
    if (leavesToWindow(event))
        return event->ignore();
    if (event->key() == Qt::Key_Escape) {
        clearFocus();
        Q_EMIT leaveRequested();
        return;
    }
    // Accepts no more than m_longest characters: setText() would show a longer text read-only.
    const QString typed = event->text();
    const bool adds = !typed.isEmpty() && (typed[0].isPrint() || typed[0] == u'\r');
    if (adds && !textCursor().hasSelection() && text().size() >= m_longest)
        return;
    m_pace = event->isAutoRepeat() ? Pace::held : Pace::once;
    QTextEdit::keyPressEvent(event);
    m_pace = Pace::once;
    // Accepts the keys that a read-only editor ignores: otherwise the window would get Delete, for
    // example, and hide a layer.
    if (isReadOnly() && event->modifiers() == Qt::NoModifier)
        event->accept();
}

void SlotEditor::inputMethodEvent(QInputMethodEvent* event)
{
    const auto kept = text().size() - textCursor().selectedText().size();
    if (kept + event->commitString().size() > m_longest)
        return;
    QTextEdit::inputMethodEvent(event);
    setComposing(!event->preeditString().isEmpty());
}

void SlotEditor::setComposing(bool isComposing)
{
    if (isComposing == m_isComposing)
        return;
    m_isComposing = isComposing;
    Q_EMIT composingChanged();
}

void SlotEditor::insertFromMimeData(const QMimeData* source)
{
    const auto room = m_longest - (text().size() - textCursor().selectedText().size());
    if (source->hasText() && room > 0)
        textCursor().insertText(plainText(source->text()).left(room));
    ensureCursorVisible();
}

void SlotEditor::focusInEvent(QFocusEvent* event)
{
    QTextEdit::focusInEvent(event);
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        selectAll();
    Q_EMIT focused();
}

void SlotEditor::focusOutEvent(QFocusEvent* event)
{
    QTextEdit::focusOutEvent(event);
    setComposing(false);
    // Does not end the editing: a menu or another window takes the focus only for a while.
    if (event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason)
        return;
    QTextCursor cursor = textCursor();
    cursor.clearSelection();    // a selection would look as if typing still went here
    setTextCursor(cursor);
    Q_EMIT blurred();
}

void SlotEditor::resizeEvent(QResizeEvent* event)
{
    QTextEdit::resizeEvent(event);
    fit();
}

void SlotEditor::wheelEvent(QWheelEvent* event)
{
    if (hasFocus() && verticalScrollBar()->maximum() > 0)
        QTextEdit::wheelEvent(event);
    else
        event->ignore();
}
