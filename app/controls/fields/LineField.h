#pragma once
#include "app/theme/Icons.h"

#include <QLineEdit>

class QKeyEvent;

// Keys that act on the whole window even while a text is typed: undo and redo, the next and the
// previous image, and exporting.
bool belongsToWindow(const QKeyEvent* event);

// A one-line edit. Enter and Esc end the edit and give up the focus, so that the arrow keys act on
// the window again.
class LineField : public QLineEdit {
    Q_OBJECT
public:
    LineField(const QString& name, const QString& placeholder = {}, Icon icon = Icon::none,
              QWidget* parent = nullptr);
    // Shows a value; emits nothing. Text that is being typed stays.
    void setShown(const QString& text);

Q_SIGNALS:
    void edited(const QString& text);    // the edit has ended with another text
    void abandoned();    // the edit was ended by Esc; the value from before it is shown

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
