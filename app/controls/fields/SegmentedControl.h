#pragma once
#include "app/controls/Button.h"
#include "app/controls/fields/Choices.h"
#include "app/theme/Icons.h"
#include "app/theme/Painting.h"

#include <QList>
#include <QWidget>

#include <optional>

struct Segment {
    Icon icon = Icon::none;
    QString text = {};    // may be empty
    QString toolTip = {};
    QString name = {};                     // for screen readers
    std::optional<qint64> credits = {};    // what the choice costs, shown after the text
    QString refusal = {};    // why it cannot be chosen, its tooltip then; empty: it can
    bool operator==(const Segment&) const = default;
};

enum class SegmentSize { bar, field, large };    // 36, 32, 44 pixels high; `field` has smaller gaps

// A row of segments, of which one is chosen. The control is a single Tab stop; inside it the arrow
// keys choose.
class SegmentedControl : public QWidget, public Choices {
    Q_OBJECT
public:
    explicit SegmentedControl(const QList<Segment>& segments, QWidget* parent = nullptr);

    void setSize(SegmentSize size);
    // Replaces the segments by as many others; emits nothing.
    void setSegments(const QList<Segment>& segments);
    // Labels::hidden: only the icons are shown, without texts and credits.
    void setLabels(Labels labels);
    // Lets a layout widen the control, whose segments then have equal widths.
    void setStretched(SegmentSize size = SegmentSize::field);
    // Without an index, no segment is chosen and the accessible name stays as it is: the caller
    // sets it with setAccessibleName().
    void setCurrent(std::optional<int> index);    // emits nothing
    int current() const override { return m_current; }
    QRect segmentRect(int index) const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    QAccessible::Role choiceRole() const override { return QAccessible::RadioButton; }
    int choiceCount() const override { return int(m_segments.size()); }
    QRect choiceRect(int index) const override { return segmentRect(index); }
    QString choiceName(int index) const override { return m_segments[index].name; }
    QString choiceToolTip(int index) const override;
    bool canBeChosen(int index) const override { return m_segments[index].refusal.isEmpty(); }
    void choose(int index) override;

Q_SIGNALS:
    void chosen(int index);    // by the user; never emitted for the current segment

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    bool isField() const { return m_size == SegmentSize::field; }
    int trackHeight() const;
    int segmentPadding() const { return isField() ? 10 : 12; }
    int iconSide() const { return isField() ? 18 : 20; }
    bool isIconAlone(const Segment& segment) const
    {
        return segment.text.isEmpty() || m_labels == Labels::hidden;
    }
    int iconGap() const { return isField() ? 6 : 8; }
    int widthOf(const Segment& segment) const;
    int segmentAt(QPoint position) const;
    void setHovered(int index);

    QList<Segment> m_segments;
    int m_current = 0;
    int m_hovered = -1;
    SegmentSize m_size = SegmentSize::bar;
    bool m_stretched = false;
    Labels m_labels = Labels::shown;
};
