#pragma once
#include <QPixmap>
#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

class IconButton;
class QHBoxLayout;
class QVBoxLayout;
enum class Type;

// A large box over the whole window. While it is presented, neither a click nor the focus gets past
// it. Esc and the cross ask to close it; dismissed, it gives the focus back. Inside are a column at
// the left and the content.
class Sheet : public QWidget {
    Q_OBJECT
public:
    // `size`: of the box, which is smaller where the window is too small.
    Sheet(const QString& title, QSize size, QWidget* window);

    void present();    // the focus goes to setFirstFocus()'s widget
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
    void finishRise();
    void keepFocus(QWidget* now);

    const QSize m_size;
    QWidget* m_box;
    QVBoxLayout* m_column;
    QVBoxLayout* m_content;
    IconButton* m_close;
    QPointer<QWidget> m_firstFocus;
    QPointer<QWidget> m_before, m_last;    // had the focus before the sheet; had it last inside
    QVariantAnimation m_rise;
    QPixmap m_picture;    // of the box, painted during m_rise
    bool m_isPresented = false;
};
