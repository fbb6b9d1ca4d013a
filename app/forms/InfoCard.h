#pragma once
#include "app/controls/Grounds.h"

class Caption;
class Paragraph;

// A card with an icon, a title and a sentence.
class InfoCard : public CardGround {
    Q_OBJECT
public:
    InfoCard(Icon icon, const QString& title, const QString& sentence, QWidget* parent = nullptr);
    void setTexts(const QString& title, const QString& sentence);

private:
    Caption* m_title;
    Paragraph* m_sentence;
};
