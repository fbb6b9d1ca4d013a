#pragma once
#include <QAccessible>
#include <QRect>
#include <QString>

#include <optional>

// A widget that paints several choices side by side, of which one is chosen. Screen readers see
// each choice as a child of the widget.
class Choices {
public:
    Choices();
    virtual ~Choices() = default;

    virtual QAccessible::Role choiceRole() const = 0;
    virtual int choiceCount() const = 0;
    virtual int current() const = 0;                  // -1: none
    virtual QRect choiceRect(int index) const = 0;    // in the widget
    virtual QString choiceName(int index) const = 0;
    virtual QString choiceToolTip(int) const { return {}; }
    virtual bool canBeChosen(int) const { return true; }
    virtual void choose(int index) = 0;    // as the user does

    Choices(const Choices&) = delete;
    Choices& operator=(const Choices&) = delete;
};

// Which of `count` choices side by side a key goes to from the current one; none for another key.
std::optional<int> choiceByKey(int key, int current, int count);
