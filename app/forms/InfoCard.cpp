#include "app/forms/InfoCard.h"

#include "app/controls/Caption.h"
#include "app/controls/Paragraph.h"

#include <QVBoxLayout>

InfoCard::InfoCard(Icon icon, const QString& title, const QString& sentence, QWidget* parent)
    : CardGround(Look::card, parent), m_title(new Caption(Type::largeSemibold, &Theme::text)),
      m_sentence(new Paragraph(Type::body, &Theme::text2))
{
    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins(16, 16, 16, 16);
    columns->setSpacing(14);
    columns->addWidget(new IconTile(icon, 44), 0, Qt::AlignTop);
    auto* lines = new QVBoxLayout;
    lines->setSpacing(2);
    lines->addWidget(m_title);
    lines->addWidget(m_sentence);
    columns->addLayout(lines, 1);
    setTexts(title, sentence);
}

void InfoCard::setTexts(const QString& title, const QString& sentence)
{
    m_title->setText(title);
    m_sentence->setText(sentence);
}
