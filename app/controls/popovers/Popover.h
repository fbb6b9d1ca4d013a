#pragma once
#include <QPointer>
#include <QWidget>

// A box inside the window, next to the control that owns it; the rest of the window stays usable.
// The box closes on Esc, on a press or a turn of the wheel outside, when the window is resized, and
// when the owner is hidden, disabled or deleted. Closing deletes it. Tab cycles through the widgets
// inside.
class Popover : public QWidget {
    Q_OBJECT
public:
    explicit Popover(QWidget* owner);
    // `content` is the size inside the paddings. On closing, the focus returns to the widget that
    // has it when open() is called.
    void open(QSize content);
    // Like open(), but makes the popover lower, down to `leastHeight`, if it then covers none of
    // the areas in the window's keptClear().
    void openWithin(QSize content, int leastHeight);
    // Moves the focus to `target`. When the popover closes, the widget that had the focus before
    // gets it back with the same `reason`.
    void takeFocus(QWidget* target, Qt::FocusReason reason);

Q_SIGNALS:
    void closing();

protected:
    static constexpr int padding = 14;
    QWidget* owner() const { return m_owner; }
    QRect box() const;        // the visible part, without the margin for the shadow
    QRect content() const;    // the box without the paddings
    void resizeContent(QSize content);
    QSize largestContent() const;    // the largest that fits in the window below the owner
    bool eventFilter(QObject* object, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    bool isOutside(const QObject* object) const;
    struct Place {
        QPoint at;            // top left corner of the box, in window coordinates
        qint64 covers = 0;    // how many pixels of the areas to keep clear are under the box
    };
    QList<QPoint> placesFor(QSize box, const QRect& bounds, const QList<QRect>& clear) const;
    Place bestPlace(QSize box) const;
    void place();

    QPointer<QWidget> m_owner;
    QPointer<QWidget> m_before;    // had the focus at open()
    Qt::FocusReason m_reason = Qt::OtherFocusReason;
};
