#pragma once
#include <QPointer>
#include <QWidget>

// A box that floats above its window next to the control it belongs to, and leaves the rest of the
// window usable. Esc, a press elsewhere and the end of its owner close it; closed, it is gone. Tab
// goes round inside.
class Popover : public QWidget {
    Q_OBJECT
public:
    explicit Popover(QWidget* owner);
    // `content` is the size inside the paddings. Closed, it gives the focus back to what has it
    // now.
    void open(QSize content);
    // As open(), as much lower as it takes to leave clear what the window wants in sight.
    void openWithin(QSize content, int leastHeight);
    // The focus goes there now, and back with the same reason.
    void takeFocus(QWidget* target, Qt::FocusReason reason);

Q_SIGNALS:
    void closing();

protected:
    static constexpr int padding = 14;
    QWidget* owner() const { return m_owner; }
    QRect box() const;        // what is seen, without the room for the shadow
    QRect content() const;    // the same without the paddings
    void resizeContent(QSize content);
    QSize largestContent() const;    // that the window has room for below the owner
    bool eventFilter(QObject* object, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    bool isOutside(const QObject* object) const;
    struct Place {
        QPoint at;            // of the box, in the window
        qint64 covers = 0;    // of what should be in sight, in pixels
    };
    QList<QPoint> placesFor(QSize box, const QRect& bounds, const QList<QRect>& clear) const;
    Place bestPlace(QSize box) const;
    void place();

    QPointer<QWidget> m_owner;
    QPointer<QWidget> m_before;    // had the focus
    Qt::FocusReason m_reason = Qt::OtherFocusReason;
};
