#pragma once
#include "app/theme/Icons.h"
#include "app/theme/Painting.h"
#include "app/theme/SpinnerTurn.h"

#include <QAbstractButton>
#include <QVariantAnimation>

// What all our buttons share: no focus from the mouse, a ring for focus from the keyboard, a hover
// that glides.
class Control : public QAbstractButton {
    Q_OBJECT
public:
    explicit Control(QWidget* parent);
    // A menu over it keeps from it that the pointer has left: whoever opened one tells.
    void lookForPointer();

protected:
    double hovered() const { return m_hovered; }    // 0 to 1
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void glideTo(double hovered);

    QVariantAnimation m_glide;
    double m_hovered = 0;
};

// `raised` is the neutral one on the ground of the stage; `link` has no ground of its own.
enum class ButtonKind { neutral, raised, soft, primary, link };
enum class ButtonSize { small, regular, large };
struct ButtonSizeRow {
    ButtonSize size;
    int height, padding, gap, radius;
    Type type, primaryType;
};
inline constexpr std::array buttonSizes{
    ButtonSizeRow{ButtonSize::small, 32, 10, 8, Radius::field, Type::bodyMedium, Type::heading},
    ButtonSizeRow{ButtonSize::regular, 36, 12, 8, Radius::button, Type::bodyMedium, Type::heading},
    ButtonSizeRow{ButtonSize::large, 44, 19, 8, 11, Type::largeSemibold, Type::largeSemibold},
};
constexpr const ButtonSizeRow& row(ButtonSize size)
{
    return buttonSizes[std::size_t(size)];
}
static_assert(std::ranges::all_of(buttonSizes, [](const auto& r) { return &row(r.size) == &r; }));

enum class Joined { no, left, right };    // where in a joined pair
enum class Labels { shown, hidden };

// The text is the accessible name too.
class PushButton : public Control {
    Q_OBJECT
public:
    PushButton(Icon icon, const QString& text, ButtonKind kind = ButtonKind::neutral,
               ButtonSize size = ButtonSize::regular, QWidget* parent = nullptr);
    void setJoined(Joined joined);
    // Hidden, the label becomes the tooltip.
    void setLabels(Labels labels);
    // As wide as its room, with icon and text in the middle.
    void setStretched();
    // Of a link: its text ends where it ends.
    void setFlush();
    // What it asked for goes on: a spinner stands for its icon, and presses have no effect. It
    // stays enabled, and so keeps the focus.
    void setWorking(bool working);
    bool isWorking() const { return m_isWorking; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    int padding() const;
    Type textType() const;

    Icon m_icon;
    ButtonKind m_kind;
    ButtonSize m_size;
    Joined m_joined = Joined::no;
    Labels m_labels = Labels::shown;
    bool m_isFlush = false;
    bool m_isWorking = false;
    QString m_description;    // what it has while it does not work
    SpinnerTurn m_turn;
};

class IconButton : public Control {
    Q_OBJECT
public:
    // The name is what a screen reader says; it is the tooltip as well until another is set.
    IconButton(Icon icon, const QString& name, int side = 32, QWidget* parent = nullptr);
    void setIconSize(int size);
    void setMeaning(Icon icon, const QString& name);
    QSize sizeHint() const override { return {m_side, m_side}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Icon m_icon;
    int m_side;
    int m_iconSize = 20;
};

// Two buttons that read as one.
class JoinedButtons : public QWidget {
    Q_OBJECT
public:
    JoinedButtons(PushButton* left, PushButton* right, QWidget* parent = nullptr);
    void setLabels(Labels labels);

private:
    PushButton* m_left;
    PushButton* m_right;
};
