#include "app/publish/NetworkCard.h"

#include "app/controls/Paragraph.h"
#include "app/controls/fields/SegmentedControl.h"
#include "app/publish/PublishTexts.h"

#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace {

constexpr int cardSide = 14, cardHead = 56, networkTile = 36, textGap = 12, dotSide = 6;
constexpr int detailsGap = 8, placementLabel = 140, cardBottom = 12;

QList<Segment> placementSegments()
{
    QList<Segment> segments;
    for (const auto& placement : Vocabulary<SocialPublishPlacement>::rows)
        segments.append({.text = placement.title.toString(),
                         .toolTip = placement.help.toString(),
                         .name = u"Destino de Instagram: %1"_s.arg(placement.title)});
    return segments;
}

QColor Theme::*inkOf(ConnectionState state)
{
    switch (state) {
    case ConnectionState::connected:
        return &Theme::ok;
    case ConnectionState::pending:
        return &Theme::warn;
    case ConnectionState::asking:
    case ConnectionState::unknown:
    case ConnectionState::absent:
        break;
    }
    return &Theme::text3;
}

}    // namespace

NetworkCard::NetworkCard(SocialPublishNetwork network, QWidget* parent)
    : Control(parent), m_shown{.network = network},
      m_connect(new PushButton(Icon::openOutside, u"Conectar"_s, ButtonKind::neutral,
                               ButtonSize::small, this)),
      m_change(new PushButton(Icon::none, u"Cambiar cuenta"_s, ButtonKind::link, ButtonSize::small,
                              this)),
      m_publish(
          new PushButton(Icon::none, u"Publicar"_s, ButtonKind::neutral, ButtonSize::small, this)),
      m_hint(new Paragraph(Type::small, &Theme::text2, {}, this))
{
    setCheckable(true);
    setAutoExclusive(true);
    setProperty("focusRadius", Radius::card);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(m_connect, &PushButton::clicked, this, &NetworkCard::connectRequested);
    connect(m_change, &PushButton::clicked, this, &NetworkCard::connectRequested);
    connect(m_publish, &PushButton::clicked, this, &NetworkCard::publishRequested);
    connect(this, &QAbstractButton::toggled, this, [this] {
        word();
        place();
    });
    if (row(network).hasStories) {
        m_placements = new SegmentedControl(placementSegments(), this);
        m_placements->setSize(SegmentSize::field);
        connect(m_placements, &SegmentedControl::chosen, this, [this](int index) {
            m_placements->setCurrent(int(m_placement));    // the session's answer shows it
            Q_EMIT placementChosen(SocialPublishPlacement(index));
        });
    }
    word();
    place();
}

bool NetworkCard::isStoryCard() const
{
    return m_placements;
}

void NetworkCard::setShown(const NetworkShown& shown, SocialPublishPlacement placement,
                           const QString& site)
{
    if (shown == m_shown && placement == m_placement && site == m_site)
        return;
    m_shown = shown;
    m_placement = placement;
    m_site = site;
    word();
    place();
}

void NetworkCard::setChosen(bool chosen)
{
    setChecked(chosen);
}

void NetworkCard::setLocked(bool locked)
{
    if (locked == m_isLocked)
        return;
    m_isLocked = locked;
    setEnabled(!locked);    // and with it the card's buttons
}

QList<QWidget*> NetworkCard::focusOrder() const
{
    QList<QWidget*> order{m_connect, m_change, m_publish};
    if (m_placements)
        order.append(m_placements);
    return order;
}

void NetworkCard::word()
{
    const bool isConnected = m_shown.state == ConnectionState::connected;
    const bool isPending = m_shown.state == ConnectionState::pending;
    const auto wordButton = [](PushButton* button, const QString& text) {
        button->setText(text);
        button->setAccessibleName(text);
        button->updateGeometry();
    };
    m_connect->setVisible(!isConnected);
    m_change->setVisible(isConnected && isChecked());
    m_connect->setEnabled(!isPending && m_shown.state != ConnectionState::asking);
    wordButton(m_connect, isPending ? u"Pendiente de activar"_s : u"Conectar"_s);
    m_connect->setAccessibleName(u"%1 %2"_s.arg(m_connect->text(), row(m_shown.network).title));
    m_connect->setToolTip(isPending ? QString() : PublishTexts::connecting(m_site));
    m_publish->setVisible(isConnected && !isChecked());
    wordButton(m_publish, PublishTexts::action(m_shown, m_placement));
    QStringList hints{PublishTexts::hint(m_shown, m_site)};
    if (isStoryCard()) {
        m_placements->setCurrent(int(m_placement));
        m_placements->setVisible(isChecked());
        hints.prepend(row(m_placement).help.toString());
    }
    hints.removeAll(QString());
    m_hint->setText(hints.join(u'\n'));
    m_hint->setVisible(isChecked());
    const QString state = PublishTexts::state(m_shown.state);
    setAccessibleName(u"%1, %2"_s.arg(row(m_shown.network).title, state));
    setAccessibleDescription(row(m_shown.network).description.toString());
    setToolTip(m_shown.account.isEmpty() ? QString()
                                         : plainToolTip(u"Cuenta: %1"_s.arg(m_shown.account)));
    update();
}

int NetworkCard::detailsTop() const
{
    return cardHead + (isStoryCard() ? m_placements->sizeHint().height() + detailsGap : 0);
}

int NetworkCard::heightForWidth(int width) const
{
    if (!isChecked())
        return cardHead;
    return detailsTop() + m_hint->heightForWidth(width - 2 * cardSide) + cardBottom;
}

QSize NetworkCard::sizeHint() const
{
    return {600, heightForWidth(width())};
}

void NetworkCard::place()
{
    setFixedHeight(heightForWidth(width()));
    for (PushButton* button : {m_connect, m_change, m_publish}) {
        const QSize size = button->sizeHint();
        button->setGeometry(
            QRect(QPoint(width() - cardSide - size.width(), (cardHead - size.height()) / 2), size));
    }
    if (isStoryCard())
        m_placements->setGeometry(
            QRect(QPoint(cardSide + placementLabel, cardHead), m_placements->sizeHint()));
    const int hint = width() - 2 * cardSide;
    m_hint->setGeometry(cardSide, detailsTop(), hint, m_hint->heightForWidth(hint));
    update();
}

void NetworkCard::resizeEvent(QResizeEvent*)
{
    place();
}

void NetworkCard::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    fillRounded(painter, rect(), Radius::card,
                isChecked() ? theme.card : mixed(theme.card, theme.hover, 0.5 * hovered()));
    strokeRounded(painter, rect(), Radius::card, isChecked() ? theme.accentLine : theme.line,
                  isChecked() ? 1.5 : 1);
    const QRectF tile(cardSide, (cardHead - networkTile) / 2.0, networkTile, networkTile);
    fillRounded(painter, tile, 10, theme.control);
    paintIcon(painter, PublishTexts::icon(m_shown.network), tile, 20,
              isChecked() ? theme.accentText : theme.text2);

    const PushButton* action = m_shown.state != ConnectionState::connected ? m_connect
                               : isChecked()                               ? m_change
                                                                           : m_publish;
    const double left = tile.right() + textGap;
    const double right = action->x() - textGap;
    const SocialPublishNetworkRow& network = row(m_shown.network);
    QRectF line(left, tile.top(), right - left, 18);
    paintText(painter, line, Qt::AlignLeft, Type::heading, theme.text, network.title.toString());
    line.setLeft(left + std::ceil(textWidth(Type::heading, network.title.toString())) + 8);
    const QColor ink = theme.*inkOf(m_shown.state);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    painter.drawEllipse(QRectF(line.left(), line.center().y() - dotSide / 2.0, dotSide, dotSide));
    paintText(painter, line.adjusted(dotSide + 5, 0, 0, 0), Qt::AlignLeft, Type::small, ink,
              PublishTexts::state(m_shown.state));
    paintText(painter, QRectF(left, tile.top() + 19, right - left, 16), Qt::AlignLeft, Type::small,
              theme.text2, network.description.toString());
    if (isChecked() && isStoryCard())
        paintText(painter, QRectF(cardSide, cardHead, placementLabel - 8, m_placements->height()),
                  Qt::AlignLeft, Type::small, theme.text2, u"Destino de Instagram"_s);
}
