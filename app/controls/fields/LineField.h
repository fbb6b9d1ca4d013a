#pragma once
#include "app/theme/Icons.h"

#include <QLineEdit>

class QKeyEvent;

// Whether `event` is a key that acts on the window even while a text is being typed: undo, redo,
// the previous or the next image, or export.
bool belongsToWindow(const QKeyEvent* event);

// A one-line edit. Enter and Esc end the editing and take the focus away, so that the arrow keys
// act on the window again.
class LineField : public QLineEdit {
    Q_OBJECT
public:
    LineField(const QString& name, const QString& placeholder = {}, Icon icon = Icon::none,
              QWidget* parent = nullptr);
    // Shows `text`; emits nothing. Does not replace text that the user is typing.
    void setShown(const QString& text);

Q_SIGNALS:
    void edited(const QString& text);    // editing has ended, and the text has changed
    void abandoned();                    // Esc ended the editing and restored the former text

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void finish();

    Icon m_icon;
    QString m_shown;
};
