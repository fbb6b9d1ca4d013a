#include "app/copy/ComposeBar.h"

#include "app/controls/fields/TextField.h"
#include "app/theme/Icons.h"
#include "app/theme/Painting.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

ComposeBar::ComposeBar(QWidget* parent)
    : QWidget(parent),
      m_objective(new TextField(
          u"Objetivo de la campaña"_qs,
          u"Ej.: llenar los fines de semana de octubre con parejas y familias"_qs, this))
{
    setFixedHeight(52);
    setMaximumWidth(1120);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(38, 4, 4, 4);
    layout->addWidget(m_objective);
    connect(m_objective, &TextField::edited, this, &ComposeBar::objectiveEdited);
}

void ComposeBar::setObjective(const QString& objective)
{
    m_objective->setText(objective);
}

void ComposeBar::finishEdit()
{
    m_objective->finish();
}

QWidget* ComposeBar::objectiveEdit() const
{
    return m_objective->edit();
}

void ComposeBar::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), Radius::card, theme.panel);
    strokeRounded(painter, rect(), Radius::card, theme.line);
    paintIcon(painter, Icon::objective, QRectF(14, 16, 20, 20), 20, theme.text2);
}
