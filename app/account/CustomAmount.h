#pragma once
#include "app/controls/Grounds.h"

class FormField;
class Control;

// The card with the field for "Otra cantidad", visible while choice() is checked. The caller gives
// choice() the same parent as the packages, so that only one of them all is checked.
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
