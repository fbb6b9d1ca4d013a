#pragma once
#include "app/theme/Icons.h"

#include <QLineEdit>
#include <QWidget>

#include <functional>

class Caption;
class IconButton;

enum class FieldKind { text, email, password };
enum class FieldSize { regular, large };    // 32 and 44 pixels high

// The line edit of a form. A password is hidden until the user asks to see it, and can never be
// copied.
class FormEdit : public QLineEdit {
    Q_OBJECT
public:
    FormEdit(const QString& name, FieldKind kind, FieldSize size, Icon icon, QWidget* parent);
    // Makes the edit read-only while the form is being sent. Unlike a disabled edit, it keeps the
    // focus.
    void setLocked(bool locked);
    void setProblem(bool problem);
    void setRevealed(bool revealed);
    IconButton* eye() const { return m_eye; }    // shows or hides a password; null in other fields

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
    // Hides the password while `handle` runs.
    void unseen(const std::function<void()>& handle);

    FieldKind m_kind;
    FieldSize m_size;
    Icon m_icon;
    bool m_problem = false;
    IconButton* m_eye = nullptr;
};

// A FormEdit below its label. Enter in the edit emits submitted().
class FormField : public QWidget {
    Q_OBJECT
public:
    FormField(const QString& label, FieldKind kind, FieldSize size = FieldSize::regular,
              Icon icon = Icon::none, QWidget* parent = nullptr);
    // Adds a widget at the right end of the label's row.
    void addToLabel(QWidget* widget);
    QString text() const { return m_edit->text(); }
    FormEdit* edit() const { return m_edit; }
    // Shows a stored value; emits nothing. Does not replace text that the user has typed and not
    // saved.
    void setShown(const QString& text);
    // Call it when the typed text has been saved: shows the stored value in its place.
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
