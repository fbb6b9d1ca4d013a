#pragma once
#include "app/theme/Icons.h"

#include <QLineEdit>
#include <QWidget>

#include <functional>

class Caption;
class IconButton;

enum class FieldKind { text, email, password };
enum class FieldSize { regular, large };    // 32 and 44 high

// One line of a form on a ground of its own. A password is shown on demand only, and leaves it by
// no copy even then.
class FormEdit : public QLineEdit {
    Q_OBJECT
public:
    FormEdit(const QString& name, FieldKind kind, FieldSize size, Icon icon, QWidget* parent);
    // Neither changed nor left: what it was typed for goes on.
    void setLocked(bool locked);
    void setProblem(bool problem);
    void setRevealed(bool revealed);
    IconButton* eye() const { return m_eye; }    // of a password only

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    // Does `handle` as if a password could not be seen.
    void unseen(const std::function<void()>& handle);

    FieldKind m_kind;
    FieldSize m_size;
    Icon m_icon;
    bool m_problem = false;
    IconButton* m_eye = nullptr;
};

// A label above a line that is typed for a form. Enter asks to send the form.
class FormField : public QWidget {
    Q_OBJECT
public:
    FormField(const QString& label, FieldKind kind, FieldSize size = FieldSize::regular,
              Icon icon = Icon::none, QWidget* parent = nullptr);
    // At the right end of the label's row.
    void addToLabel(QWidget* widget);
    QString text() const { return m_edit->text(); }
    FormEdit* edit() const { return m_edit; }
    // Shows; emits nothing, and leaves alone what is being typed.
    void setShown(const QString& text);
    // What was typed is what it was sent for: what is shown takes its place.
    void setSaved();
    void clear();
    void setLocked(bool locked) { m_edit->setLocked(locked); }
    void setProblem(bool problem) { m_edit->setProblem(problem); }

Q_SIGNALS:
    void typed();
    void submitted();

private:
    FormEdit* m_edit;
    QWidget* m_labelRow;
    QString m_shown;
};
