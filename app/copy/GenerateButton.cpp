#include "app/copy/GenerateButton.h"

using namespace Qt::StringLiterals;

namespace {
constexpr int generateGap = 8, countPadding = 6, countHeight = 20, leastCostDigits = 2;
constexpr double countShade = 0.25;    // opacity of the black behind the number
constexpr Type countType = Type::heading;
}    // namespace

GenerateButton::GenerateButton(QWidget* parent)
    : PushButton(Icon::generate, u"Generar"_s, ButtonKind::primary, ButtonSize::regular, parent),
      m_chip(new CostChip(leastCostDigits, this))
{
    m_chip->setOnAccent();
    m_chip->hide();
    explain();
}

void GenerateButton::setOffer(const GenerateOffer& offer)
{
    if (offer == m_offer)
        return;
    m_offer = offer;
    m_chip->setVisible(offer.cost.has_value());
    if (offer.cost)
        m_chip->setCost(*offer.cost);
    setEnabled(offer.refusal.isEmpty());
    explain();
    updateGeometry();
    update();
}

void GenerateButton::setKey(const QString& key)
{
    m_key = key;
    explain();
}

void GenerateButton::explain()
{
    const QString name = m_offer.images > 1 ? u"Generar %1"_s.arg(m_offer.images) : u"Generar"_s;
    setAccessibleName(name);
    setAccessibleDescription(m_offer.cost ? m_chip->spoken() : QString());
    if (!m_offer.refusal.isEmpty())
        return setToolTip(plainToolTip(m_offer.refusal));
    QString told = m_key.isEmpty() ? name : name + u" · "_s + m_key;
    if (m_offer.cost && m_offer.cost->isShort())
        told += u'\n' + m_chip->spoken().replace(0, 1, u'C');
    setToolTip(told);
}

int GenerateButton::badgeWidth() const
{
    if (m_offer.mostImages < 2)
        return 0;
    const auto digits = QString::number(m_offer.mostImages).size();
    return 2 * countPadding + qCeil(digitsWidth(countType, int(digits)));
}

QSize GenerateButton::sizeHint() const
{
    QSize size = PushButton::sizeHint();
    if (badgeWidth() > 0)
        size.rwidth() += generateGap + badgeWidth();
    if (m_offer.cost)
        size.rwidth() += generateGap + m_chip->sizeHint().width();
    return size;
}

void GenerateButton::resizeEvent(QResizeEvent*)
{
    const QSize chip = m_chip->sizeHint();
    m_chip->setGeometry(QRect(QPoint(width() - row(ButtonSize::regular).padding - chip.width(),
                                     (height() - chip.height()) / 2),
                              chip));
}

void GenerateButton::paintEvent(QPaintEvent* event)
{
    PushButton::paintEvent(event);
    if (m_offer.images < 2)
        return;
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double left =
        PushButton::sizeHint().width() - row(ButtonSize::regular).padding + generateGap;
    const QRectF box(left, (height() - countHeight) / 2.0, badgeWidth(), countHeight);
    fillRounded(painter, box, Radius::chip,
                isEnabled() ? withOpacity(Qt::black, countShade) : withOpacity(theme.dis, 0.2));
    paintText(painter, box, Qt::AlignHCenter, countType,
              isEnabled() ? QColor(Qt::white) : theme.dis, QString::number(m_offer.images),
              Qt::ElideNone);
}
