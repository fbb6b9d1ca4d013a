#pragma once
#include <QPointer>
#include <QWidget>

// A box that floats above its window, next to the control that owns it, and leaves the rest of the
// window usable. Esc, a press elsewhere, or the owner being hidden, disabled or deleted closes it;
// closing deletes it. Tab goes round inside.
class Popover : public QWidget {
    Q_OBJECT
public:
    explicit Popover(QWidget* owner);
    // `content` is the size inside the paddings. On closing, the focus returns to the widget that
    // has it now.
    void open(QSize content);
    // Like open(), but with less height, down to `leastHeight`, if that keeps clear what the window
    // wants in sight.
    void openWithin(QSize content, int leastHeight);
    // Moves the focus to `target`; on closing it returns with the same reason.
    void takeFocus(QWidget* target, Qt::FocusReason reason);

Q_SIGNALS:
    void closing();

protected:
    static constexpr int padding = 14;
    QWidget* owner() const { return m_owner; }
    QRect box() const;        // the visible part, without the room for the shadow
    QRect content() const;    // the box without the paddings
    void resizeContent(QSize content);
    QSize largestContent() const;    // that fits into the window below the owner
    bool eventFilter(QObject* object, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    bool isOutside(const QObject* object) const;
    struct Place {
        QPoint at;            // the box's top left corner, in the window
        qint64 covers = 0;    // pixels covered of the areas to keep clear
    };
    QList<QPoint> placesFor(QSize box, const QRect& bounds, const QList<QRect>& clear) const;
    Place bestPlace(QSize box) const;
    void place();

    QPointer<QWidget> m_owner;
    QPointer<QWidget> m_before;    // had the focus before
    Qt::FocusReason m_reason = Qt::OtherFocusReason;
};
