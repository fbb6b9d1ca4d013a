#pragma once
#include "app/theme/Icons.h"
#include "app/theme/Painting.h"
#include "app/theme/SpinnerTurn.h"

#include <QAbstractButton>
#include <QVariantAnimation>

// Base class of the buttons. A click does not give them the focus; focus by keyboard shows a ring;
// hovering is animated.
class Control : public QAbstractButton {
    Q_OBJECT
public:
    explicit Control(QWidget* parent);
    // Ends the hover if the pointer is outside. Call it when a menu over the button has closed:
    // while the menu was open, the button got no leave event.
    void lookForPointer();

protected:
    double hovered() const { return m_hovered; }    // 0 to 1; between them during the animation
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void glideTo(double hovered);

    QVariantAnimation m_glide;
    double m_hovered = 0;
};

// `raised`: a neutral button for a background on which `neutral` would not stand out. `outlined`:
// an outline without a background. `link`: a text without either.
enum class ButtonKind { neutral, raised, soft, primary, outlined, link };
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

enum class Joined { no, left, middle, right };    // the place in a row of JoinedButtons
enum class Labels { shown, hidden };

// A button with an icon and a text, which is also the accessible name.
class PushButton : public Control {
    Q_OBJECT
public:
    PushButton(Icon icon, const QString& text, ButtonKind kind = ButtonKind::neutral,
               ButtonSize size = ButtonSize::regular, QWidget* parent = nullptr);
    void setJoined(Joined joined);
    // Labels::hidden leaves only the icon; the text becomes the tooltip.
    void setLabels(Labels labels);
    // Lets a layout widen the button. Icon and text stay in the middle.
    void setStretched();
    // For a link: removes its padding and its background while hovered.
    void setFlush();
    // Shows that the button's action is running: a spinner replaces the icon, and presses have no
    // effect. The button stays enabled, and so keeps the focus.
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
    QString m_description;    // the accessible description for when the button is not working
    SpinnerTurn m_turn;
};

class IconButton : public Control {
    Q_OBJECT
public:
    // `name`: for screen readers, and the tooltip until setToolTip() sets another.
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

// Buttons side by side that look like one.
class JoinedButtons : public QWidget {
    Q_OBJECT
public:
    explicit JoinedButtons(const QList<PushButton*>& buttons, QWidget* parent = nullptr);
    void setLabels(Labels labels);
    void setStretched();    // lets a layout widen the buttons

private:
    QList<PushButton*> m_buttons;
};
