#pragma once
#include "app/controls/Grounds.h"

class FormField;
class Control;

// "Otra cantidad": the row that chooses it, and once chosen the field that takes it. The row stands
// among the packages, as one of which it is chosen.
class CustomAmount : public CardGround {
    Q_OBJECT
public:
    explicit CustomAmount(QWidget* parent = nullptr);
    Control* choice() const { return m_choice; }
    FormField* field() const { return m_field; }
    bool isChosen() const;

Q_SIGNALS:
    void changed();
    void submitted();

private:
    Control* m_choice;
    FormField* m_field;
};
