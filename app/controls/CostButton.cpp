#include "app/controls/CostButton.h"

namespace {
constexpr int chipGap = 8;
}

CostButton::CostButton(Icon icon, const QString& text, int digits, QWidget* parent)
    : PushButton(icon, text, ButtonKind::neutral, ButtonSize::regular, parent),
      m_chip(new CostChip(digits, this))
{
    setAccessibleDescription(m_chip->spoken());
}

void CostButton::setWording(const QString& shown, const QString& spoken)
{
    setText(shown);
    setAccessibleName(spoken);
    updateGeometry();
}

void CostButton::setTextRoom(int width)
{
    m_textRoom = width;
    updateGeometry();
}

void CostButton::setCost(const Cost& cost)
{
    m_chip->setCost(cost);
    setAccessibleDescription(m_chip->spoken());
    updateGeometry();
}

QSize CostButton::sizeHint() const
{
    const QSize plain = PushButton::sizeHint();
    const int text = qCeil(textWidth(row(ButtonSize::regular).type, this->text()));
    return {plain.width() + std::max(0, m_textRoom - text) + chipGap + m_chip->sizeHint().width(),
            plain.height()};
}

void CostButton::resizeEvent(QResizeEvent*)
{
    const QSize chip = m_chip->sizeHint();
    m_chip->setGeometry(QRect(QPoint(width() - row(ButtonSize::regular).padding - chip.width(),
                                     (height() - chip.height()) / 2),
                              chip));
}
