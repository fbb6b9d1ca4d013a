#include "app/settings/InstallStages.h"

#include "app/controls/AccessibleRole.h"
#include "app/theme/Icons.h"
#include "app/theme/Painting.h"

using namespace Qt::StringLiterals;

namespace {
constexpr int stageHeight = 36, stagesEdge = 8, stagesSide = 16, stageIcon = 20, stageGap = 14;
constexpr int stageSpinner = 16;
}    // namespace

InstallStages::InstallStages(QWidget* parent) : CardGround(Look::card, parent), m_turn(this)
{
    setAccessibleRole(this, QAccessible::StaticText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void InstallStages::setStages(const QStringList& stages, const QString& current,
                              const QString& amount)
{
    const qsizetype index = stages.indexOf(current);
    if (stages == m_stages && index == m_current && amount == m_amount)
        return;
    m_stages = stages;
    m_current = index;
    m_amount = amount;
    QStringList told;
    for (qsizetype i = 0; i < stages.size(); ++i) {
        if (i < index)
            told.append(stages[i] + u": hecho"_s);
        else
            told.append(i == index ? stages[i] + u": en curso"_s : stages[i]);
    }
    setAccessibleName(told.join(u", "_s));
    updateGeometry();
    update();
}

QSize InstallStages::sizeHint() const
{
    return {320, 2 * stagesEdge + stageHeight * int(m_stages.size())};
}

void InstallStages::showEvent(QShowEvent*)
{
    m_turn.run(true);
}

void InstallStages::hideEvent(QHideEvent*)
{
    m_turn.run(false);
}

void InstallStages::paintEvent(QPaintEvent* event)
{
    CardGround::paintEvent(event);
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF line(stagesSide, stagesEdge, width() - 2 * stagesSide, stageHeight);
    for (qsizetype i = 0; i < m_stages.size(); ++i) {
        if (i > 0)
            painter.fillRect(QRectF(line.left(), line.top(), line.width(), 1), theme.line);
        const QRectF icon(line.left(), line.top(), stageIcon, stageHeight);
        QRectF ring(0, 0, stageSpinner, stageSpinner);
        ring.moveCenter(icon.center());
        const bool isCurrent = i == m_current;
        if (i < m_current) {
            paintIcon(painter, Icon::done, icon, stageIcon, theme.ok);
        } else if (isCurrent) {
            paintSpinner(painter, ring, theme.line2, theme.accentLine, m_turn.value(), 1.8);
        } else {
            painter.setPen(QPen(theme.dis, 1.5));
            painter.setBrush(Qt::NoBrush);
            painter.drawEllipse(ring.adjusted(1, 1, -1, -1));
        }
        QRectF text = line;
        text.setLeft(icon.right() + stageGap);
        QColor ink = i < m_current ? theme.text2 : theme.text3;
        if (isCurrent) {
            ink = theme.text;
            paintText(painter, text, Qt::AlignRight, Type::small, theme.text2, m_amount);
            text.setRight(text.right() - textWidth(Type::small, m_amount) - Space::small);
        }
        paintText(painter, text, Qt::AlignLeft, isCurrent ? Type::heading : Type::body, ink,
                  m_stages[i]);
        line.translate(0, stageHeight);
    }
}
