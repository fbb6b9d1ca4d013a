#pragma once
#include <QPixmap>
#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

class IconButton;
class QHBoxLayout;
class QVBoxLayout;
enum class Type;

// The column at the left of a sheet, in pixels. A sheet without a column has the width 0.
struct ColumnMeasures {
    int width = 216, side = 12, top = 20;
    int headingGap = 10;    // at the left of the title and below it
};

// Covers the whole window, with a large box in the middle. While the sheet is presented, neither
// clicks nor the focus reach the window behind it. Esc and the close button emit closeRequested();
// dismiss() gives the focus back. The box contains a column at the left, and the content.
class Sheet : public QWidget {
    Q_OBJECT
public:
    // `size`: of the box, which becomes smaller if the window is too small for it.
    Sheet(const QString& title, QSize size, QWidget* window, const ColumnMeasures& column = {});

    void present();    // gives the focus to the widget of setFirstFocus()
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
    QPointer<QWidget> m_before, m_last;    // focused before present(); focused last in the sheet
    QVariantAnimation m_rise;
    QPixmap m_picture;    // the box as a picture, painted while m_rise runs
    bool m_isPresented = false;
};
