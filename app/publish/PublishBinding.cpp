#include "app/publish/PublishBinding.h"

#include "account/AccountSession.h"
#include "app/batch/BatchBinding.h"
#include "app/publish/HistoryPage.h"
#include "app/publish/PostStrip.h"
#include "app/publish/PublishSheet.h"
#include "app/publish/PublishTexts.h"
#include "studio/StudioSession.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethod>

using namespace Qt::StringLiterals;

namespace {

constexpr std::chrono::milliseconds reportEvery(100);

PublishHistoryEntry entryOf(const PublishRecord& record, const QDate& today)
{
    PublishHistoryEntry entry{.id = record.id,
                              .network = record.network,
                              .title = PublishTexts::place(record.network, record.placement),
                              .date = PublishTexts::date(record.time.toLocalTime(), today),
                              .line = record.caption.trimmed().section(u'\n', 0, 0),
                              .pictures = record.pictures,
                              .more = record.images.size() - record.pictures.size(),
                              .isUnknown = record.state == PublishRecord::State::unknown,
                              .hasPage = pageOfPost(record.url).has_value()};
    if (record.state == PublishRecord::State::sending)
        entry.line = u"Se está enviando."_s;
    else if (entry.line.isEmpty())
        entry.line = record.images.join(u", "_s);
    entry.searched =
        QStringList{record.caption.trimmed(), record.images.join(u", "_s)}.join(u'\n').trimmed();
    return entry;
}

bool hasCaption(const PublicationItem& item)
{
    return !item.analysis.publicationCaption.isEmpty();
}

bool isOfCaption(const PublishCheck& check)
{
    switch (check.kind) {
    case PublishCheckKind::captionLength:
    case PublishCheckKind::tags:
    case PublishCheckKind::manyHashtags:
        return true;
    case PublishCheckKind::placeholder:
    case PublishCheckKind::missingAnswer:
        return check.item.isNull();
    case PublishCheckKind::format:
    case PublishCheckKind::imageBytes:
    case PublishCheckKind::requestBytes:
    case PublishCheckKind::requestTime:
    case PublishCheckKind::published:
    case PublishCheckKind::safeZone:
    case PublishCheckKind::overflow:
    case PublishCheckKind::glyphs:
    case PublishCheckKind::contrast:
        break;
    }
    return false;
}

}    // namespace

PublishBinding::PublishBinding(StudioSession& session, AccountSession& account,
                               BatchBinding& column, std::shared_ptr<PhotoCache> photos,
                               QWidget* window)
    : m_session(session), m_publish(session.publish()), m_account(account), m_column(column),
      m_photos(std::move(photos)), m_window(window), m_small(new TilePictures(m_photos, this)),
      m_large(new TilePictures(m_photos, this, PhotoDetail::decoded))
{
    connect(&m_publish, &StudioPublish::changed, this, &PublishBinding::present);
    m_reportLater.setSingleShot(true);
    m_reportLater.callOnTimeout(this, &PublishBinding::showReport);
    connect(&m_publish, &StudioPublish::progressed, this, [this] {
        if (!m_reportLater.isActive())
            m_reportLater.start(reportEvery);
    });
    connect(&session, &StudioSession::batchChanged, this, &PublishBinding::show);
    connect(&column, &BatchBinding::judged, this, [this] {
        tellWarnings();
        showReport();
        resumePress();
    });
    connect(m_small, &TilePictures::ready, this,
            [this](const TileRequest& request, const QImage& picture) {
                m_drawn.insert(request.item.id, request);
                if (m_sheet && request.format == m_publish.format())
                    m_sheet->strip()->setPicture(request.item.id, picture);
            });
    connect(m_large, &TilePictures::ready, this,
            [this](const TileRequest& request, const QImage& picture) {
                if (m_sheet && m_previewed == request)
                    m_sheet->setPreview(request.item.id, picture);
            });
}

QString PublishBinding::refusal() const
{
    if (m_session.batch().items.isEmpty())
        return u"Importa una imagen para exportarla o publicarla."_s;
    return m_column.showsIncoming() ? u"Espera a que termine la importación."_s : QString();
}

void PublishBinding::open()
{
    if (const QString reason = refusal(); !reason.isEmpty())
        return m_session.setStatus(reason);
    m_isClosed = false;
    sheet()->setPage(PublishSheet::Page::publish);
    m_publish.openPublishWindow();
}

void PublishBinding::close()
{
    m_isClosed = true;
    present();
}

bool PublishBinding::isAwaitingAnswer() const
{
    using Stage = PublishProgress::Stage;
    const std::optional<PublishProgress>& progress = m_publish.progress();
    return progress && (progress->stage == Stage::waiting || progress->stage == Stage::asking);
}

void PublishBinding::leave()
{
    if (isAwaitingAnswer())
        close();
    else
        m_publish.closePublishWindow();
}

bool PublishBinding::isSheetPresented() const
{
    return m_sheet && m_sheet->isPresented();
}

bool PublishBinding::isIdle() const
{
    return m_small->isIdle() && m_large->isIdle();
}

PublishSheet* PublishBinding::sheet()
{
    if (!m_sheet) {
        m_sheet = new PublishSheet(m_window);
        connectSheet();
    }
    return m_sheet;
}

void PublishBinding::connectSheet()
{
    connect(m_sheet, &Sheet::closeRequested, this, &PublishBinding::leave);
    connect(m_sheet, &PublishSheet::networkChosen, this,
            [this](SocialPublishNetwork network) { m_publish.choose(network); });
    connect(m_sheet, &PublishSheet::placementChosen, this,
            [this](SocialPublishPlacement placement) { m_publish.choose(placement); });
    connect(m_sheet, &PublishSheet::connectRequested, this,
            [this](SocialPublishNetwork network) { m_publish.connectSocialNetwork(network); });
    connect(m_sheet, &PublishSheet::publishRequested, this, &PublishBinding::publish);
    connect(m_sheet, &PublishSheet::stopRequested, &m_publish, &StudioPublish::stop);
    connect(m_sheet, &PublishSheet::captionEdited, this, [this](const QString& caption) {
        m_isTyping = true;
        m_publish.setPublishCaption(caption);
        m_isTyping = false;
    });
    connect(m_sheet, &PublishSheet::captionChoicesWanted, this,
            [this](QList<CaptionChoice>* choices) { *choices = captionChoices(); });
    connect(m_sheet, &PublishSheet::captionOfWanted, &m_publish, &StudioPublish::takeCaptionOf);
    connect(m_sheet, &PublishSheet::followRequested, this, &PublishBinding::follow);
    connect(m_sheet, &PublishSheet::pageRequested, this, [this] {
        if (const std::optional<PublishedPost>& post = m_publish.publishedPost())
            openPage(post->url);
    });
    connect(m_sheet, &PublishSheet::previewWanted, this, &PublishBinding::askPreview);
    connect(m_sheet->strip(), &PostStrip::picturesWanted, this, &PublishBinding::askStrip);
    HistoryPage* history = m_sheet->history();
    connect(history, &HistoryPage::pageRequested, this, [this](QUuid id) {
        if (const PublishRecord* found = record(id))
            openPage(found->url);
    });
    connect(history, &HistoryPage::linkCopyRequested, this, [this](QUuid id) {
        const PublishRecord* found = record(id);
        if (!found || !found->url)
            return;
        QGuiApplication::clipboard()->setText(found->url->toString(QUrl::FullyEncoded));
        m_sheet->history()->tellCopied(id);
    });
}

void PublishBinding::present()
{
    const bool wasPresented = isSheetPresented();
    if (m_isClosed && !m_publish.isPublishing())
        m_publish.closePublishWindow();
    const bool isPresented = m_publish.isPublishPresented() && !m_isClosed;
    if (isPresented)
        sheet();
    if (m_isTyping && wasPresented && isPresented)
        return showTyped();
    show();
    if (wasPresented == isPresented)
        return;
    if (isPresented) {
        m_sheet->present();
    } else if (m_sheet) {
        m_sheet->dismiss();
        m_column.watch({});
        m_pressed.reset();
        m_drawn.clear();
        m_previewed.reset();
    }
    Q_EMIT sheetChanged();
}

void PublishBinding::showTyped()
{
    if (marked() != m_marked)
        return show();
    m_sheet->setCaption(caption());
    m_sheet->setReport(report());
    m_sheet->setConfirming(m_publish.isConfirming());
}

void PublishBinding::showReport()
{
    if (m_sheet && m_publish.isPublishPresented() && !m_isClosed)
        m_sheet->setReport(report());
}

void PublishBinding::show()
{
    if (!m_sheet || !m_publish.isPublishPresented() || m_isClosed)
        return;
    if (std::exchange(m_status, m_publish.publishStatus()) != m_publish.publishStatus())
        m_notice.clear();
    QList<QUuid> sent;
    for (const PublicationItem& item : m_publish.sentItems())
        sent.append(item.id);
    m_column.watch(sent);
    m_marked = marked();
    m_sheet->setShown(shown());
    showHistory();
    askStrip();
    askPreview();
    resumePress();
}

void PublishBinding::showHistory()
{
    // Copies of a list share its entries until the original is changed.
    if (m_history.constData() == m_publish.history().constData() &&
        m_history.size() == m_publish.history().size())
        return;
    m_history = m_publish.history();
    QList<PublishHistoryEntry> entries;
    const QDate today = QDate::currentDate();
    for (const PublishRecord& each : std::as_const(m_history))
        entries.append(entryOf(each, today));
    m_sheet->setHistory(entries);
}

PublishShown PublishBinding::shown() const
{
    PublishShown shown{.images = images(),
                       .batchSize = m_publish.batchSize(),
                       .format = m_publish.format(),
                       .network = m_publish.network(),
                       .placement = m_publish.placement(),
                       .balance = m_publish.balance(),
                       .site = m_publish.siteName(),
                       .caption = caption(),
                       .report = report(),
                       .isPublishing = m_publish.isPublishing(),
                       .isConfirming = m_publish.isConfirming()};
    for (const auto each : allCases<SocialPublishNetwork>())
        shown.networks.append(network(each));
    const auto isSent = [](const PublishImage& image) { return image.isSent; };
    const auto isPaid = [](const PublishImage& image) { return image.isSent && image.isPaid; };
    shown.paid = PublishTexts::paidNote(std::ranges::count_if(shown.images, isPaid),
                                        std::ranges::count_if(shown.images, isSent));
    return shown;
}

QList<PublishImage> PublishBinding::images() const
{
    QList<PublishImage> images;
    const qsizetype sent = m_publish.sentItems().size();
    for (const PublicationItem& item : m_publish.selectedItems()) {
        images.append({.id = item.id,
                       .name = item.filename(),
                       .isSent = images.size() < sent,
                       .isPaid = m_session.exports().isPaid(item.id),
                       .hasWarning = m_marked.contains(item.id)});
    }
    return images;
}

QSet<QUuid> PublishBinding::marked() const
{
    QSet<QUuid> images;
    for (const PublishCheck& check : m_publish.checks().found) {
        if (check.isWarning && !check.item.isNull())
            images.insert(check.item);
    }
    return images;
}

NetworkShown PublishBinding::network(SocialPublishNetwork network) const
{
    NetworkShown shown{.network = network};
    if (const auto cost = m_publish.displayedPublishCosts().constFind(network);
        cost != m_publish.displayedPublishCosts().cend())
        shown.cost = *cost;
    const SocialNetworkConnection* connection = m_publish.connection(network);
    if (!connection) {
        const bool isAsking = m_publish.publishStatusKind() == StatusKind::working;
        shown.state = isAsking ? ConnectionState::asking : ConnectionState::unknown;
        return shown;
    }
    shown.account = PublishTexts::account(connection->displayName.value_or(QString()));
    if (!connection->isProviderConfigured())
        shown.state = ConnectionState::pending;
    else
        shown.state =
            connection->isConnected ? ConnectionState::connected : ConnectionState::absent;
    return shown;
}

CaptionShown PublishBinding::caption() const
{
    const CaptionOrigin origin = m_publish.captionOrigin();
    const PublicationItems& items = m_session.batch().items;
    CaptionShown shown{.text = m_publish.publishCaption(),
                       .guide = row(m_publish.network()).longestCaption,
                       .isUnused = m_publish.placement() == SocialPublishPlacement::story};
    shown.hasChoices = std::ranges::any_of(items, &hasCaption);
    if (!origin.name.isEmpty()) {
        const auto found = std::ranges::find(items, origin.item, &PublicationItem::id);
        shown.origin =
            PublishTexts::origin(origin.name, found == items.end() ? 0 : found - items.begin() + 1);
    }
    return shown;
}

QList<CaptionChoice> PublishBinding::captionChoices() const
{
    QList<CaptionChoice> choices;
    qsizetype position = 0;
    for (const PublicationItem& item : m_session.batch().items) {
        ++position;
        if (hasCaption(item))
            choices.append({item.id, u"Imagen %1, %2"_s.arg(position).arg(item.filename())});
    }
    return choices;
}

PublishReport PublishBinding::report() const
{
    const SocialPublishNetwork chosen = m_publish.network();
    const qint64 balance = m_publish.balance();
    const std::optional<qint64> cost = network(chosen).cost;
    const std::optional<PublishedPost>& post = m_publish.publishedPost();
    PublishReport report{.kind = m_publish.publishStatusKind(),
                         .sentence = m_publish.publishStatus(),
                         .cost = PublishTexts::cost(chosen, cost, balance),
                         .isShort = cost && *cost > balance,
                         .isPublished = post.has_value(),
                         .hasPage = post && pageOfPost(post->url)};
    if (!m_notice.isEmpty()) {
        report.kind = StatusKind::warning;
        report.sentence = m_notice;
    }
    if (m_pressed) {
        report.kind = StatusKind::working;
        report.sentence = PublishTexts::checking();
    }
    // A post under way or just published leaves nothing to check.
    if (!m_publish.isPublishing() && !post) {
        report.checks = m_publish.checks();
        report.isChecking = !isChecked();
    }
    for (PublishCheck& check : report.checks.found) {
        if (check.isWarning && check.link.isEmpty() && isOfCaption(check))
            check.link = u"Ver el texto"_s;
    }
    if (!m_publish.isPublishing())
        return report;
    report.sending = SendingShown();
    const std::optional<PublishProgress>& progress = m_publish.progress();
    if (!progress)
        return report;
    report.sending->canStop = progress->canStop;
    report.sending->canLeave = isAwaitingAnswer();
    if (progress->total <= 0)
        return report;
    report.sending->fraction = double(progress->done) / double(progress->total);
    if (progress->stage == PublishProgress::Stage::sending)
        report.sending->amount = PublishTexts::amount(progress->done, progress->total);
    else if (progress->stage == PublishProgress::Stage::rendering)
        report.sending->amount = u"%1 de %2 imagen(es)"_s.arg(progress->done).arg(progress->total);
    return report;
}

// Publishes on `network`. If that is not the network shown, and its caption or its checks tell
// something that the user has not seen, only shows it. Waits until the post is checked.
void PublishBinding::publish(SocialPublishNetwork network)
{
    QGuiApplication::inputMethod()->commit();
    m_pressed.reset();
    m_notice.clear();
    if (network != m_publish.network()) {
        const QString caption = m_publish.publishCaption();
        m_publish.choose(network);
        const bool hasWarning =
            std::ranges::any_of(m_publish.checks().found, &PublishCheck::isWarning);
        if (m_publish.publishCaption() != caption || hasWarning)
            return;
    }
    m_pressed.emplace(m_publish);
    resumePress();
    showReport();
}

bool PublishBinding::isChecked() const
{
    return !m_publish.isComparing() &&
           std::ranges::all_of(m_publish.sentItems(), [this](const PublicationItem& item) {
               return m_column.isJudged(item.id);
           });
}

// Publishes what the user has pressed once it is checked, unless there is something by then that he
// could not see.
void PublishBinding::resumePress()
{
    if (!m_pressed || !isChecked())
        return;
    m_notice = std::exchange(m_pressed, std::nullopt)->refusal(m_publish);
    if (m_notice.isEmpty())
        m_publish.preparePublish(m_publish.network(), m_publish.placement());
    showReport();
}

void PublishBinding::follow(const PublishCheck& check)
{
    if (check.kind == PublishCheckKind::published)
        return m_sheet->setPage(PublishSheet::Page::history);
    if (isOfCaption(check))
        return m_sheet->focusCaption();
    if (check.kind == PublishCheckKind::format)
        return m_session.setFormat(m_publish.placement() == SocialPublishPlacement::story
                                       ? SocialFormat::storyReel
                                       : SocialFormat::carouselPortrait);
    m_publish.closePublishWindow();
    if (m_publish.isPublishPresented())
        return;    // it is publishing
    if (!check.item.isNull())
        m_session.goTo(check.item, check.layer);
    Q_EMIT imageRequested(check.layer);
}

const PublishRecord* PublishBinding::record(QUuid id) const
{
    const QList<PublishRecord>& all = m_publish.history();
    const auto found = std::ranges::find(all, id, &PublishRecord::id);
    return found == all.end() ? nullptr : &*found;
}

void PublishBinding::openPage(const std::optional<QUrl>& url)
{
    const std::optional<QUrl> page = pageOfPost(url);
    m_notice = page && m_account.openPage(*page) ? QString()
               : page                            ? m_account.message()
                                                 : u"La publicación no tiene una página que se "
                        "pueda abrir."_s;
    if (!m_notice.isEmpty() && m_sheet->page() == PublishSheet::Page::history)
        m_sheet->setPage(PublishSheet::Page::publish);    // where it is told
    show();
}

const PublicationItem* PublishBinding::find(QUuid id) const
{
    const PublicationItems& items = m_session.batch().items;
    const auto found = std::ranges::find(items, id, &PublicationItem::id);
    return found == items.end() ? nullptr : &*found;
}

void PublishBinding::askStrip()
{
    QList<PublicationItem> outdated;
    const QSize pixels = m_sheet->strip()->pictureSize();
    for (const QUuid id : m_sheet->strip()->seen()) {
        const PublicationItem* item = find(id);
        if (item && m_drawn.value(id) != TileRequest{*item, m_publish.format(), pixels})
            outdated.append(*item);
    }
    m_small->want(outdated, m_publish.format(), pixels);
}

void PublishBinding::askPreview()
{
    const PublicationItem* item = find(m_sheet->previewed());
    const QSize pixels = m_sheet->previewPixels();
    if (!item || pixels.isEmpty())
        return;
    const TileRequest request{*item, m_publish.format(), pixels};
    if (m_previewed == request)
        return;
    m_previewed = request;
    m_large->want({*item}, m_publish.format(), pixels);
}

void PublishBinding::tellWarnings()
{
    QHash<QUuid, QList<TextWarning>> warnings;
    for (const PublicationItem& item : m_session.batch().items) {
        if (const QList<TextWarning> found = m_column.warningsOf(item.id); !found.isEmpty())
            warnings.insert(item.id, found);
    }
    m_publish.setTextWarnings(warnings);
}
