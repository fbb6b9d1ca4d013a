#pragma once
#include "model/Pace.h"

#include <QTextEdit>

// A plain text editor that grows from one line to five, unless setLines() says otherwise, and
// scrolls beyond. Tab moves the focus on. Undo and other keys of the window are left to the window,
// so the editor has no undo history of its own.
class SlotEditor : public QTextEdit {
    Q_OBJECT
public:
    explicit SlotEditor(const QString& name, QWidget* parent = nullptr);

    // Shows a text; emits nothing. Setting the current text again does not change cursor or
    // selection. If a text is longer than longestText, or the limit of setStandalone(), only its
    // beginning is shown, read-only.
    void setText(const QString& text);
    // As setText(), but in a standalone editor its undo brings back what stood there.
    void replaceText(const QString& text);
    QString text() const;
    // For a text that is no layer's: it may have `longest` characters, and its undo and the other
    // keys of the window act in the editor.
    void setStandalone(int longest);
    // How many lines it may be high.
    void setLines(int least, int most);
    // Whether it holds letters that the text has not got yet, as input methods do.
    bool isComposing() const { return m_isComposing; }
    QSize sizeHint() const override { return {280, height()}; }
    QSize minimumSizeHint() const override { return {80, height()}; }

Q_SIGNALS:
    void edited(const QString& text, Pace pace);    // Pace::held while a key repeats
    void grown();                                   // the height has changed
    void focused();
    void blurred();
    void leaveRequested();    // Esc was pressed
    void composingChanged();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void insertFromMimeData(const QMimeData* source) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void fit();
    void setLineHeights();
    bool leavesToWindow(const QKeyEvent* event) const;
    void setComposing(bool isComposing);

    int m_leastLines = 1, m_mostLines = 5;
    int m_longest;    // characters
    bool m_isStandalone = false;
    bool m_isComposing = false;
    QString m_shown;    // the text of the last setText() or edited()
    Pace m_pace = Pace::once;
    bool m_showing = false;
};
