#include "app/window/DropVeil.h"

#include "app/theme/Icons.h"
#include "app/theme/Painting.h"

#include <QEvent>

using namespace Qt::StringLiterals;

DropVeil::DropVeil(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    parent->installEventFilter(this);
    hide();
}

void DropVeil::offer(const DropOffer& offer)
{
    m_offer = offer;
    setAccessibleName(sentence());
    setGeometry(parentWidget()->rect());
    raise();
    show();
    update();
}

QString DropVeil::sentence() const
{
    if (!m_offer.refusal.isEmpty())
        return m_offer.refusal;
    if (m_offer.folder)
        return u"Suelta para importar la carpeta"_qs;
    if (m_offer.texts)
        return u"Suelta para importar los textos"_qs;
    if (m_offer.images == 0)
        return u"Suelta para importar"_qs;
    if (m_offer.images == 1)
        return u"Suelta para importar 1 imagen"_qs;
    return u"Suelta para importar %1 imágenes"_qs.arg(m_offer.images);
}

bool DropVeil::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Resize && !isHidden())
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(object, event);
}

void DropVeil::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), withOpacity(theme.accentSoft, 0.9));
    QPen dashes(theme.accentLine, 2);
    dashes.setDashPattern({4, 3});
    painter.setPen(dashes);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(9, 9, -9, -9), Radius::sheet, Radius::sheet);

    const double middle = height() / 2.0;
    paintIcon(painter, m_offer.folder ? Icon::importFolder : Icon::importImages,
              QRectF(0, middle - 72, width(), 40), 40, theme.accentText);
    paintText(painter, QRectF(0, middle - 20, width(), 30), Qt::AlignHCenter, Type::emptyTitle,
              theme.text, sentence());
    if (m_offer.replaces && !m_offer.texts)
        paintText(painter, QRectF(0, middle + 18, width(), 20), Qt::AlignHCenter, Type::large,
                  theme.text2, u"Sustituirán el lote actual"_qs);
}
