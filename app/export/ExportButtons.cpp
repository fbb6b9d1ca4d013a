#include "app/export/ExportButtons.h"

#include "app/controls/CostButton.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int seam = 1;
constexpr int exportButtonsLeastDigits = 3;    // an image count with so many digits always fits
constexpr int currentDigits = 2, severalDigits = 5;

QString severalText(const ExportOffer& offer, ExportButtons::Wording wording)
{
    const qsizetype selected = offer.selected;
    if (wording == ExportButtons::Wording::number)
        return offer.images == 0 ? QString()
                                 : QString::number(selected < 2 ? offer.images : selected);
    const bool isBrief = wording == ExportButtons::Wording::brief;
    if (selected < 2)
        return isBrief ? u"Todo"_s : u"Exportar todo"_s;
    return (isBrief ? u"Las %1"_s : u"Exportar %1"_s).arg(selected);
}

}    // namespace

QString exportSeveralText(qsizetype selected)
{
    return severalText({.selected = selected}, ExportButtons::Wording::whole);
}

QString refusalOf(const ExportOffer& offer)
{
    if (offer.images == 0)
        return u"Importa una imagen para exportarla o publicarla."_s;
    if (offer.isRunning)
        return u"Espera a que termine la exportación."_s;
    return offer.isIncoming ? u"Espera a que termine la importación."_s : QString();
}

ExportButtons::ExportButtons(QWidget* parent)
    : QWidget(parent),
      m_current(new CostButton(Icon::exportCurrent, u"Exportar actual"_s, currentDigits, this)),
      m_several(new CostButton(Icon::exportAll, u"Exportar todo"_s, severalDigits, this))
{
    m_current->setJoined(Joined::left);
    m_several->setJoined(Joined::right);
    connect(m_current, &CostButton::clicked, this, &ExportButtons::currentRequested);
    connect(m_several, &CostButton::clicked, this, &ExportButtons::severalRequested);
    word();
    explain();
}

void ExportButtons::setOffer(const ExportOffer& offer)
{
    if (offer == m_offer)
        return;
    const QSize before = sizeHint();
    m_offer = offer;
    m_current->setCost(offer.current);
    m_several->setCost(offer.several);
    word();
    explain();
    place();
    if (sizeHint() != before)
        Q_EMIT widthChanged();
}

void ExportButtons::setKeys(const QString& current, const QString& several)
{
    m_currentKey = current;
    m_severalKey = several;
    explain();
}

void ExportButtons::setWording(Wording wording)
{
    m_wording = wording;
    word();
    place();
}

void ExportButtons::word()
{
    static const std::array words{u"Exportar actual"_s, u"Actual"_s, QString()};
    m_current->setWording(words[std::size_t(m_wording)], words.front());
    m_several->setWording(severalText(m_offer, m_wording), exportSeveralText(m_offer.selected));
    const Type type = row(ButtonSize::regular).type;
    const int least = m_wording == Wording::number ? 2 : exportButtonsLeastDigits;
    const int digits = std::max(least, int(QString::number(m_offer.images).size()));
    QString several = severalText({.images = 2, .selected = 2}, m_wording);
    several.chop(1);
    m_several->setTextRoom(qCeil(std::max(textWidth(type, severalText({}, m_wording)),
                                          textWidth(type, several) + digitsWidth(type, digits))));
}

void ExportButtons::explain()
{
    const QString refusal = refusalOf(m_offer);
    const auto show = [&](CostButton* button, const QString& key) {
        button->setEnabled(refusal.isEmpty());
        QString told = button->accessibleName();
        if (!key.isEmpty())
            told += u" · "_s + key;
        if (button->cost().isShort())
            told += u'\n' + button->accessibleDescription().replace(0, 1, u'C');
        button->setToolTip(refusal.isEmpty() ? told : refusal);
    };
    show(m_current, m_currentKey);
    show(m_several, m_severalKey);
}

QList<QWidget*> ExportButtons::focusOrder() const
{
    return {m_current, m_several};
}

QSize ExportButtons::sizeHint() const
{
    const QSize current = m_current->sizeHint();
    return {current.width() + seam + m_several->sizeHint().width(), current.height()};
}

void ExportButtons::resizeEvent(QResizeEvent*)
{
    place();
}

void ExportButtons::place()
{
    const QSize current = m_current->sizeHint();
    m_current->setGeometry(QRect(QPoint(), current));
    m_several->setGeometry(QRect(QPoint(current.width() + seam, 0), m_several->sizeHint()));
}
