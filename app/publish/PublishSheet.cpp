#include "app/publish/PublishSheet.h"

#include "account/AccountTexts.h"
#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/PanelLayout.h"
#include "app/controls/Paragraph.h"
#include "app/controls/fields/SegmentedControl.h"
#include "app/controls/fields/SlotEditor.h"
#include "app/publish/CaptionField.h"
#include "app/publish/HistoryPage.h"
#include "app/publish/NetworkCard.h"
#include "app/publish/PostPreview.h"
#include "app/publish/PostStrip.h"
#include "app/publish/PublishStatusPanel.h"
#include "app/publish/PublishTexts.h"

#include <QApplication>
#include <QScrollArea>
#include <QStackedWidget>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize publishSheetSize(1020, 820);
constexpr int columnRing = 6;    // for the ring of the first small picture
constexpr ColumnMeasures publishColumn{
    .width = 372, .side = 26, .top = 20, .headingGap = columnRing};
// Left of the content, of which the page inside keeps the width of a focus ring free.
constexpr int contentLeft = 24, contentTop = 18, contentRight = 12, contentBottom = 16;
constexpr int ringRoom = 4, barRoom = 12, closeRoom = 60;

}    // namespace

// "Saldo: 4280 créditos", with a coin.
class BalanceLine : public QWidget {
public:
    BalanceLine() : m_text(new Caption(Type::small, &Theme::text2))
    {
        auto* line = new QHBoxLayout(this);
        line->setContentsMargins(22, 0, 0, 0);
        line->addWidget(m_text);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }
    void setBalance(qint64 balance) { m_text->setText(u"Saldo: "_s + creditsText(balance)); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        paintIcon(painter, Icon::coin, QRectF(0, 0, 18, height()), 16, themeOf(this).text2);
    }

private:
    Caption* m_text;
};

// The note about paid images, with a tick.
class PaidLine : public QWidget {
public:
    PaidLine() : m_text(new Paragraph(Type::small, &Theme::text2))
    {
        auto* line = new QHBoxLayout(this);
        line->setContentsMargins(24, 0, 0, 0);
        line->addWidget(m_text);
    }
    void setNote(const QString& note)
    {
        m_text->setText(note);
        setVisible(!note.isEmpty());
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        paintIcon(painter, Icon::check, QRectF(0, 0, 16, 16), 16, themeOf(this).ok);
    }

private:
    Paragraph* m_text;
};

PublishSheet::PublishSheet(QWidget* window)
    : Sheet(u"Publicar"_s, publishSheetSize, window, publishColumn),
      m_selection(new Caption(Type::small, &Theme::text2)), m_preview(new PostPreview),
      m_strip(new PostStrip), m_paid(new PaidLine),
      m_pages(new SegmentedControl(
          {{.icon = Icon::publish, .text = u"Publicar"_s, .name = u"Página: Publicar"_s},
           {.icon = Icon::history, .text = u"Historial"_s, .name = u"Página: Historial"_s}})),
      m_balance(new BalanceLine), m_stack(new QStackedWidget), m_caption(new CaptionField),
      m_status(new PublishStatusPanel), m_history(new HistoryPage),
      m_kept(new Caption(Type::small, &Theme::text2)),
      m_closing(new PushButton(Icon::none, u"Cerrar"_s)),
      m_primary(new PushButton(Icon::publish, u"Publicar"_s, ButtonKind::primary))
{
    fillColumn();
    content()->setContentsMargins(contentLeft, contentTop, contentRight, contentBottom);
    content()->setSpacing(Space::small);
    content()->addWidget(header());
    m_stack->addWidget(publishPage());
    m_stack->addWidget(m_history);
    content()->addWidget(m_stack, 1);
    content()->addWidget(footer());
    m_pages->setSize(SegmentSize::field);
    connect(m_pages, &SegmentedControl::chosen, this, [this](int index) { setPage(Page(index)); });
    connect(m_closing, &PushButton::clicked, this, &Sheet::closeRequested);
    connect(m_primary, &PushButton::clicked, this,
            [this] { Q_EMIT publishRequested(m_shown.network); });
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { showFocused(now); });
    orderFocus();
    setPage(Page::publish);
}

// Scrolls until the widget that the keyboard has reached is seen.
void PublishSheet::showFocused(QWidget* focused)
{
    if (!focused || !isAncestorOf(focused))
        return;
    for (QScrollArea* area : findChildren<QScrollArea*>()) {
        if (area->isAncestorOf(focused))
            showIn(area, focused);
    }
}

void PublishSheet::fillColumn()
{
    const auto add = [this](QWidget* widget, int gapBelow) {
        auto* line = new QHBoxLayout;
        line->setContentsMargins(columnRing, 0, columnRing, gapBelow);
        line->addWidget(widget);
        column()->addLayout(line);
    };
    column()->setSpacing(0);
    add(m_selection, Space::column);
    add(m_preview, Space::small);
    column()->addWidget(m_strip);
    column()->addSpacing(Space::small);
    add(m_paid, 0);
    column()->addStretch(1);
    connect(m_preview, &PostPreview::stepRequested, this, &PublishSheet::step);
    connect(m_preview, &PostPreview::pictureSizeChanged, this, &PublishSheet::previewWanted);
    connect(m_strip, &PostStrip::chosen, this, &PublishSheet::preview);
}

QWidget* PublishSheet::header()
{
    auto* bar = new QWidget;
    auto* line = new QHBoxLayout(bar);
    line->setContentsMargins(ringRoom, 0, closeRoom, 0);
    line->addWidget(m_pages);
    line->addStretch(1);
    line->addWidget(m_balance);
    return bar;
}

QWidget* PublishSheet::publishPage()
{
    auto* page = new QWidget;
    auto* rows = new QVBoxLayout(page);
    rows->setContentsMargins(ringRoom, ringRoom, ringRoom, ringRoom);
    rows->setSpacing(0);
    auto* cards = new QWidget;
    auto* cardRows = new QVBoxLayout(cards);
    cardRows->setContentsMargins(0, 0, 0, 0);
    cardRows->setSpacing(Space::small);
    for (const auto& network : Vocabulary<SocialPublishNetwork>::rows) {
        auto* card = new NetworkCard(network.value);
        cardRows->addWidget(card);
        m_cards.append(card);
        connect(card, &NetworkCard::clicked, this, [this, network = network.value] {
            if (network != m_shown.network)
                Q_EMIT networkChosen(network);
        });
        connect(card, &NetworkCard::publishRequested, this,
                [this, network = network.value] { Q_EMIT publishRequested(network); });
        connect(card, &NetworkCard::connectRequested, this,
                [this, network = network.value] { Q_EMIT connectRequested(network); });
        connect(card, &NetworkCard::placementChosen, this, &PublishSheet::placementChosen);
    }
    rows->addWidget(cards);
    rows->addSpacing(Space::column);
    rows->addWidget(m_caption);
    rows->addSpacing(Space::medium);
    rows->addWidget(m_status);
    rows->addStretch(1);
    connect(m_caption, &CaptionField::edited, this, [this](const QString& caption) {
        m_shown.caption.text = caption;
        showPreview();
        Q_EMIT captionEdited(caption);
    });
    connect(m_caption, &CaptionField::captionOfWanted, this, &PublishSheet::captionOfWanted);
    connect(m_caption, &CaptionField::choicesWanted, this, &PublishSheet::captionChoicesWanted);
    connect(m_caption, &CaptionField::leaveRequested, this, &Sheet::closeRequested);
    connect(m_status, &PublishStatusPanel::stopRequested, this, &PublishSheet::stopRequested);
    connect(m_status, &PublishStatusPanel::pageRequested, this, &PublishSheet::pageRequested);
    connect(m_status, &PublishStatusPanel::followRequested, this, &PublishSheet::followRequested);
    connect(m_status, &PublishStatusPanel::leaveRequested, this,
            [this] { m_closing->setFocus(Qt::TabFocusReason); });
    m_area = scrolled(page);
    return m_area;
}

QWidget* PublishSheet::footer()
{
    auto* bar = new QWidget;
    auto* line = new QHBoxLayout(bar);
    line->setContentsMargins(ringRoom, Space::hair, ringRoom + barRoom, ringRoom);
    line->setSpacing(10);
    line->addWidget(m_kept, 1);
    line->addStretch(1);
    line->addWidget(m_closing);
    line->addWidget(m_primary);
    return bar;
}

void PublishSheet::orderFocus()
{
    QList<QWidget*> order{m_pages};
    for (NetworkCard* card : std::as_const(m_cards)) {
        order.append(card);
        order += card->focusOrder();
    }
    order += m_caption->focusOrder();
    order += m_status->focusOrder();
    order += m_history->focusOrder();
    order += {m_closing, m_primary};
    order += m_preview->focusOrder();
    order.append(m_strip);
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order[i - 1], order[i]);
}

void PublishSheet::setPage(Page page)
{
    m_pages->setCurrent(int(page));
    m_stack->setCurrentIndex(int(page));
    const bool isHistory = page == Page::history;
    m_kept->setVisible(isHistory);
    m_primary->setVisible(!isHistory);
}

PublishSheet::Page PublishSheet::page() const
{
    return Page(m_stack->currentIndex());
}

void PublishSheet::setHistory(const QList<PublishHistoryEntry>& entries)
{
    m_history->setEntries(entries);
    m_kept->setText(entries.isEmpty() ? QString() : PublishTexts::kept(entries.size()));
}

void PublishSheet::setShown(const PublishShown& shown)
{
    m_shown = shown;
    m_selection->setText(PublishTexts::selection(shown.images.size(), shown.batchSize));
    m_strip->setImages(shown.images, shown.format);
    m_paid->setNote(shown.paid);
    m_balance->setBalance(shown.balance);
    for (NetworkCard* card : std::as_const(m_cards)) {
        const auto network =
            std::ranges::find(shown.networks, card->network(), &NetworkShown::network);
        if (network != shown.networks.end())
            card->setShown(*network, shown.placement, shown.site);
        card->setChosen(card->network() == shown.network);
        if (card->network() == shown.network)
            setFirstFocus(card);
        card->setLocked(shown.isPublishing);
    }
    m_caption->setShown(shown.caption);
    m_caption->setLocked(shown.isPublishing);
    m_status->setReport(shown.report);
    showButtons();
    preview(m_previewed);
}

void PublishSheet::setReport(const PublishReport& report)
{
    m_shown.report = report;
    m_status->setReport(report);
    showButtons();
}

void PublishSheet::setCaption(const CaptionShown& caption)
{
    m_shown.caption = caption;
    m_caption->setShown(caption);
    showPreview();
}

void PublishSheet::setConfirming(bool confirming)
{
    m_shown.isConfirming = confirming;
    showButtons();
}

void PublishSheet::showButtons()
{
    const QString text = PublishTexts::primary(m_shown);
    m_primary->setText(text);
    m_primary->setAccessibleName(text);
    m_primary->setWorking(m_shown.isPublishing);
    m_primary->setEnabled(m_shown.isPublishing || PublishTexts::canPublish(m_shown));
    m_primary->updateGeometry();
    const auto& sending = m_shown.report.sending;
    const bool canLeave = sending && sending->canLeave;
    m_closing->setEnabled(!m_shown.isPublishing || canLeave);
    m_closing->setToolTip(!m_shown.isPublishing ? QString()
                          : canLeave ? u"La publicación sigue; su final se dirá en la barra de "
                                       "estado."_s
                                     : u"Espera a que termine, o detenla."_s);
}

void PublishSheet::preview(QUuid image)
{
    const auto& images = m_shown.images;
    const bool isThere = std::ranges::find(images, image, &PublishImage::id) != images.end();
    const QUuid next = isThere || images.isEmpty() ? (isThere ? image : QUuid()) : images[0].id;
    const bool isOther = std::exchange(m_previewed, next) != next;
    if (isOther)
        m_preview->setPicture({});
    m_strip->setCurrent(m_previewed);
    showPreview();
    if (isOther)
        Q_EMIT previewWanted();
}

void PublishSheet::showPreview()
{
    const NetworkShown* chosen = m_shown.chosen();
    PostShown post{.format = m_shown.format,
                   .isStory = m_shown.isStory(),
                   .account = chosen && !chosen->account.isEmpty()
                                  ? chosen->account
                                  : row(m_shown.network).title.toString(),
                   .caption = m_shown.caption.text,
                   .position = -1};
    for (const PublishImage& image : std::as_const(m_shown.images)) {
        if (image.id == m_previewed) {
            post.name = image.name;
            post.position = image.isSent ? post.count : -1;
        }
        post.count += image.isSent ? 1 : 0;
    }
    m_preview->setPost(post);
}

void PublishSheet::step(int images)
{
    const auto& all = m_shown.images;
    const auto at = std::ranges::find(all, m_previewed, &PublishImage::id) - all.begin();
    if (const qsizetype next = at + images; next >= 0 && next < all.size())
        preview(all[next].id);
}

QSize PublishSheet::previewPixels() const
{
    return m_preview->pictureSize();
}

void PublishSheet::setPreview(QUuid image, const QImage& picture)
{
    if (image == m_previewed)
        m_preview->setPicture(picture);
}

void PublishSheet::focusCaption()
{
    setPage(Page::publish);
    m_caption->editor()->setFocus(Qt::TabFocusReason);
    showIn(m_area, m_caption->editor());
}
