#pragma once
#include <QPixmap>
#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

class IconButton;
class QHBoxLayout;
class QVBoxLayout;
enum class Type;

// A large box over the whole window, which takes nothing else meanwhile: neither a click nor the
// focus gets past it. Esc and the cross ask to close it; closed, the focus is back where it was.
// Its content has a column at the left and the rest.
class Sheet : public QWidget {
    Q_OBJECT
public:
    // `size`: of the box, less where the window is smaller.
    Sheet(const QString& title, QSize size, QWidget* window);

    void present();    // the focus goes to `firstFocus`
    void dismiss();
    bool isPresented() const { return m_isPresented; }
    QWidget* box() const { return m_box; }
    void setFirstFocus(QWidget* widget) { m_firstFocus = widget; }

Q_SIGNALS:
    void closeRequested();

protected:
    QVBoxLayout* column() const { return m_column; }
    QVBoxLayout* content() const { return m_content; }

    bool event(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void place();
    void settle();
    void keepFocus(QWidget* now);

    const QSize m_size;
    QWidget* m_box;
    QVBoxLayout* m_column;
    QVBoxLayout* m_content;
    IconButton* m_close;
    QPointer<QWidget> m_firstFocus;
    QPointer<QWidget> m_before, m_last;    // had the focus before it, and last inside of it
    QVariantAnimation m_rise;
    QPixmap m_picture;    // of the box while it comes
    bool m_isPresented = false;
};
