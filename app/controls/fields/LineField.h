#pragma once
#include "app/theme/Icons.h"

#include <QLineEdit>

class QKeyEvent;

// Keys that act on the whole window even while a text is typed: undo and redo, the next and the
// previous image, and exporting.
bool belongsToWindow(const QKeyEvent* event);

// One line on a ground of its own. Enter and Esc end the edit and give the arrows back.
class LineField : public QLineEdit {
    Q_OBJECT
public:
    LineField(const QString& name, const QString& placeholder = {}, Icon icon = Icon::none,
              QWidget* parent = nullptr);
    // Shows; emits nothing, and leaves alone what is being typed.
    void setShown(const QString& text);

Q_SIGNALS:
    void edited(const QString& text);    // once the edit has ended, and the text is another
    void abandoned();                    // by Esc: what was shown is back

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
