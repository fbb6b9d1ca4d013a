#pragma once
#include "model/Pace.h"

#include <QTextEdit>

// A plain text that grows from one line to five and scrolls beyond. Tab leaves it; what belongs to
// the window reaches the window, undo included, so it keeps no history of its own.
class SlotEditor : public QTextEdit {
    Q_OBJECT
public:
    explicit SlotEditor(const QString& name, QWidget* parent = nullptr);

    // Shows; emits nothing. The same text leaves cursor and selection alone. One over longestText
    // is shown in part and cannot be changed here.
    void setText(const QString& text);
    QString text() const;
    QSize sizeHint() const override { return {280, height()}; }
    QSize minimumSizeHint() const override { return {80, height()}; }

Q_SIGNALS:
    void edited(const QString& text, Pace pace);    // held by a key that repeats
    void grown();                                   // or shrunk
    void focused();
    void blurred();
    void leaveRequested();    // by Esc

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

    QString m_shown;    // what the owner last set or was told
    Pace m_pace = Pace::once;
    bool m_showing = false;
};
