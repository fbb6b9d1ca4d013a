#include "app/window/StatusLine.h"

#include "app/controls/AccessibleRole.h"
#include "app/controls/Badge.h"
#include "app/controls/Button.h"
#include "app/controls/ProgressBar.h"
#include "app/window/StatusPopovers.h"
#include "model/PlainText.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

constexpr int statusLineHeight = 28, compactStatusHeight = 24, statusSide = 16;
constexpr int sentenceLeft = statusSide + 24, linkGap = 8, linkToLink = 4, chipToSentence = 12;
constexpr int widestHistory = 720;
constexpr int statusTurnTime = 1000, statusFrameTime = 33;    // ms

QString wordOf(StatusAction action)
{
    switch (action) {
    case StatusAction::retryCopy:
        return u"Reintentar"_s;
    case StatusAction::recoverTexts:
        return u"Recuperar mis textos"_s;
    case StatusAction::replaceEdited:
        return u"Sustituir también"_s;
    case StatusAction::changeAccount:
        return u"Cambiar de cuenta"_s;
    case StatusAction::keepAccount:
        return u"No cambiar"_s;
    }
    Q_UNREACHABLE();
}

// Text of the button that opens the link; empty if there is nothing to open.
QString wordOf(const StatusLink& link)
{
    if (link.isPurchase)
        return u"Comprar créditos"_s;
    if (!link.folder.isEmpty())
        return u"Abrir carpeta"_s;
    return link.details.isEmpty() ? QString() : u"Ver cuáles"_s;
}

// A button without a frame, in text as small as the sentence before it.
class SentenceLink : public Control {
public:
    explicit SentenceLink(QWidget* parent) : Control(parent)
    {
        setAccessibleName(u"Enlace del aviso"_qs);    // for screen readers, until it has a text
        setCursor(Qt::PointingHandCursor);
        setProperty("focusRadius", Radius::chip);
    }
    QSize sizeHint() const override
    {
        return {qCeil(textWidth(Type::smallMedium, text())) + 2 * padding, linkHeight};
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        const Theme& theme = themeOf(this);
        QPainter painter(this);
        paintText(painter, QRectF(rect()).adjusted(padding, 0, 0, 0), Qt::AlignLeft,
                  Type::smallMedium, mixed(theme.accentText, theme.text, hovered()), text(),
                  Qt::ElideNone);
    }

private:
    static constexpr int padding = 4, linkHeight = 20;
};

}    // namespace

StatusLine::StatusLine(QWidget* parent)
    : QWidget(parent), m_bar(new ProgressBar(this)),
      m_stop(new IconButton(Icon::close, u"Cancelar"_qs, 24, this)),
      m_waiting(new Badge(BadgeKind::accent, Icon::queued, this)), m_hints(new KeyHints({}, this))
{
    for (std::size_t i = 0; i < m_links.size(); ++i) {
        m_links[i] = new SentenceLink(this);
        m_links[i]->hide();
        connect(m_links[i], &Control::clicked, this, [this, i] {
            const auto action = m_offers[qsizetype(i)].action;
            if (action)
                Q_EMIT actionRequested(*action);
            else
                Q_EMIT linkRequested();
        });
    }
    setAccessibleRole(this, QAccessible::StatusBar);
    m_waiting->hide();
    setFixedHeight(statusLineHeight);
    m_stop->setIconSize(16);
    m_stop->hide();
    m_bar->hide();
    m_bar->setAccessibleName(u"Progreso"_qs);
    m_spin.setInterval(statusFrameTime);
    connect(m_stop, &IconButton::clicked, this, &StatusLine::stopRequested);
    connect(&m_spin, &QTimer::timeout, this, [this] {
        m_turn = std::fmod(m_turn + double(statusFrameTime) / statusTurnTime, 1.0);
        update(0, 0, statusSide + 20, height());
    });
}

void StatusLine::setStatus(const StatusEntry& told, const std::optional<Activity>& underWay)
{
    const bool isSame = told.sentence == m_told.sentence && told.kind == m_told.kind;
    m_told = told;
    m_underWay = underWay;
    const bool isStep = told.kind == StatusKind::working;
    showParts();
    if (isStep)
        m_spin.start();
    else
        m_spin.stop();
    if (!isSame) {
        if (isStep)
            m_announcer.tellStep();
        else
            m_announcer.tellNow();
    }
    place();
    update();
}

void StatusLine::setClass(WindowClass windowClass)
{
    setFixedHeight(windowClass == WindowClass::compact ? compactStatusHeight : statusLineHeight);
}

void StatusLine::showParts()
{
    const bool stops = m_underWay && m_underWay->stop;
    // Unlike hasFocus(), focusWidget() also works in an inactive window.
    const QWidget* focused = window()->focusWidget();
    const bool hadFocus = focused && focused->parentWidget() == this;
    m_bar->setValue(m_underWay ? m_underWay->fraction() : std::nullopt);
    m_bar->setVisible(m_underWay.has_value());
    m_stop->setVisible(stops);
    m_hints->setVisible(!m_underWay);
    showOffers();
    if (hadFocus && focused->isHidden())
        Q_EMIT leaveRequested();
}

QList<StatusLine::Offer> StatusLine::offersOf(const StatusLink& link)
{
    QList<Offer> offers;
    for (const StatusAction action : link.actions)
        offers.append({wordOf(action), action});
    if (const QString word = wordOf(link); !word.isEmpty())
        offers.append({word, {}});
    return offers;
}

void StatusLine::showOffers()
{
    m_offers = offersOf(m_told.link);
    for (std::size_t i = 0; i < m_links.size(); ++i) {
        const bool isOffered = qsizetype(i) < m_offers.size();
        if (isOffered) {
            m_links[i]->setText(m_offers[qsizetype(i)].word);
            m_links[i]->setAccessibleName(m_offers[qsizetype(i)].word);
        }
        m_links[i]->setVisible(isOffered);
    }
}

void StatusLine::setWaiting(int texts, const QString& why)
{
    m_waiting->setText(texts == 0 ? QString() : counted(texts, u"texto espera", u"textos esperan"));
    m_waiting->setToolTip(plainToolTip(why));
    m_waiting->setVisible(texts > 0);
    place();
    update();
}

QList<QWidget*> StatusLine::focusOrder() const
{
    QList<QWidget*> order(m_links.begin(), m_links.end());
    return order << m_stop;
}

void StatusLine::setKeyHints(const QList<KeyHint>& hints)
{
    m_hints->setHints(hints);
    place();
}

void StatusLine::resizeEvent(QResizeEvent*)
{
    place();
}

void StatusLine::place()
{
    int right = width() - statusSide;
    if (!m_stop->isHidden()) {
        m_stop->move(right - m_stop->width() + 6, (height() - m_stop->height()) / 2 + 1);
        right -= m_stop->width();
    }
    const int percentage = 38;
    m_bar->setGeometry(right - percentage - 180, (height() - 4) / 2 + 1, 180, 4);
    const int hints = std::min(m_hints->sizeHint().width(), width() / 2);
    m_hints->setGeometry(width() - statusSide - hints, (height() - 20) / 2 + 1, hints, 20);
    const int after = sentenceLeft + qCeil(textWidth(Type::small, m_told.sentence));
    int left = std::max(sentenceLeft, std::min(after, sentenceEnd() - partsWidth()));
    const auto put = [&](QWidget* part, int gap) {
        if (part->isHidden())
            return;
        const QSize size = part->sizeHint();
        left += gap;
        part->setGeometry(QRect(QPoint(left, (height() - size.height()) / 2 + 1), size));
        left += size.width();
    };
    put(m_waiting, chipToSentence);
    for (Control* link : m_links)
        put(link, link == m_links.front() ? linkGap : linkToLink);
}

int StatusLine::partsWidth() const
{
    int width = m_waiting->isHidden() ? 0 : chipToSentence + m_waiting->sizeHint().width();
    for (const Control* link : m_links) {
        if (!link->isHidden())
            width += (link == m_links.front() ? linkGap : linkToLink) + link->sizeHint().width();
    }
    return width;
}

int StatusLine::sentenceEnd() const
{
    return (m_bar->isHidden() ? m_hints->x() : m_bar->x()) - Space::large;
}

QRect StatusLine::sentenceRect() const
{
    const int right = sentenceEnd() - partsWidth();
    return {sentenceLeft, 1, std::max(0, right - sentenceLeft), height() - 1};
}

void StatusLine::paintEvent(QPaintEvent*)
{
    const Theme& theme = themeOf(this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), theme.panel);
    painter.fillRect(0, 0, width(), 1, theme.line);
    if (!m_told.sentence.isEmpty())
        paintStatusIcon(painter, QRectF(statusSide, (height() - 16) / 2.0 + 1, 16, 16), m_told.kind,
                        theme, m_turn);
    paintText(painter, sentenceRect(), Qt::AlignLeft, Type::small, theme.text2, m_told.sentence);
    if (const auto fraction = m_underWay ? m_underWay->fraction() : std::nullopt) {
        const int percent = qRound(std::clamp(*fraction, 0.0, 1.0) * 100);
        paintText(painter, QRectF(m_bar->geometry().right() + 1, 1, 38, height() - 1),
                  Qt::AlignRight, Type::small, theme.text2, u"%1 %"_qs.arg(percent), Qt::ElideNone);
    }
}

// Shows the tooltip without setToolTip(): a screen reader would read the tooltip's markup as the
// description of the widget.
bool StatusLine::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const bool isCut = textWidth(Type::small, m_told.sentence) > sentenceRect().width();
    if (!isCut || !sentenceRect().contains(help->pos())) {
        QToolTip::hideText();
    } else {
        // Rich text, because Qt does not break plain text in a tooltip into lines, and the sentence
        // may be wider than the screen.
        QToolTip::showText(help->globalPos(),
                           u"<qt>%1</qt>"_qs.arg(m_told.sentence.toHtmlEscaped()), this,
                           sentenceRect());
    }
    return true;
}

void StatusLine::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && sentenceRect().contains(event->position().toPoint()))
        Q_EMIT historyRequested();
}

void StatusLine::showHistory(const QList<StatusEntry>& history)
{
    if (!history.isEmpty())
        popUp(historyPopover(history, popoverRoom(), this));
}

void StatusLine::showDetails(const QStringList& details)
{
    if (!details.isEmpty())
        popUp(detailsPopover(details, popoverRoom(), this));
}

QSize StatusLine::popoverRoom() const
{
    const int above = mapTo(window(), QPoint()).y();
    return {std::clamp(width() - 2 * statusSide, 240, widestHistory), above - 2 * Space::small};
}

void StatusLine::popUp(QWidget* popover) const
{
    popover->move(mapToGlobal(QPoint(8, -popover->height() - 4)));
    popover->show();
    popover->setFocus(Qt::PopupFocusReason);
}
