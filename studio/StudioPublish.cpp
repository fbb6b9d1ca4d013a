#include "studio/StudioPublish.h"

#include "account/AccountAPI.h"
#include "account/AccountError.h"
#include "account/AccountSession.h"
#include "model/PlainText.h"
#include "platform/PreferencesStore.h"
#include "platform/StagingFolder.h"
#include "platform/Workers.h"
#include "studio/batch/BatchSelection.h"
#include "studio/publish/PublishSentences.h"
#include "studio/publish/SocialPublishing.h"

#include <QCoroFuture>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QString titleOf(SocialPublishNetwork network)
{
    return row(network).title.toString();
}

StatusKind kindOf(const PublishOutcome& outcome)
{
    using Ended = PublishOutcome::State;
    switch (outcome.state) {
    case Ended::done:
        return StatusKind::done;
    case Ended::stopped:
        return StatusKind::note;
    case Ended::notPrepared:
    case Ended::failed:
        return StatusKind::error;
    case Ended::unconfirmed:
    case Ended::tooFewCredits:
    case Ended::notReserved:
    case Ended::unknown:
        return StatusKind::warning;
    }
    Q_UNREACHABLE();
}

}    // namespace

StudioPublish::StudioPublish(std::shared_ptr<PhotoCache> photos, const OutputSize& outputSize,
                             const ChargeServices& payment, const RenderCosts& costs,
                             PreferencesStore& preferences)
    : m_photos(std::move(photos)), m_outputSize(outputSize), m_costs(costs),
      m_preferences(preferences), m_captions(preferences), m_payment(payment)
{
    connect(&costs, &RenderCosts::changed, this, &StudioPublish::followCosts);
    connect(&m_connections, &SocialConnections::changed, this, &StudioPublish::changed);
}

StudioPublish::~StudioPublish()
{
    m_isEnding = true;
    if (!m_control)
        return;
    m_control->progressed = {};
    m_control->working = {};
    m_control->stop.request_stop();
    m_control->staging.reset();
}

bool StudioPublish::isGone(const QPointer<StudioPublish>& self)
{
    return !self || self->m_isEnding;
}

void StudioPublish::setAccount(AccountSession& account)
{
    m_payment.account = &account;
    m_connections.setAccount(account);
    m_refreshToken = account.socialConnectionRefreshToken();
    connect(&account, &AccountSession::changed, this, &StudioPublish::followAccount);
    followAccount();
}

void StudioPublish::setJournal(CreditJournal& journal, const QString& stagingPlace)
{
    m_payment.journal = &journal;
    m_stagingPlace = stagingPlace;
    followAccount();
}

void StudioPublish::setService(AccountAPI& api)
{
    m_api = &api;
    m_connections.setService(api);
}

void StudioPublish::setTextWarnings(const QHash<QUuid, QList<TextWarning>>& warnings)
{
    if (std::exchange(m_warnings, warnings) != warnings)
        showChecks();
}

void StudioPublish::followAccount()
{
    const AccountSession& account = *m_payment.account;
    const QString key = account.accountKey();
    if (!m_payment.journal || key.isEmpty())
        m_records.reset();
    else if (!m_records || m_records->account() != key)
        m_records =
            std::make_shared<PublishRecords>(m_preferences, key, m_payment.journal->programRun());
    if (key != m_accountKey && !m_accountKey.isEmpty())
        m_connections.forget();
    if (std::exchange(m_accountKey, key) != key && !key.isEmpty()) {
        m_captions.setAccount(key);
        fillCaption();
    }
    findEarlier();
    const int token = account.socialConnectionRefreshToken();
    if (std::exchange(m_refreshToken, token) != token)
        refreshSocialConnectionsOnly();
    Q_EMIT changed();
}

const QList<PublishRecord>& StudioPublish::history() const
{
    static const QList<PublishRecord> none;
    return m_records ? m_records->all() : none;
}

SocialPublishPlacement StudioPublish::placement() const
{
    return row(m_network).hasStories ? m_placement : SocialPublishPlacement::feed;
}

void StudioPublish::choose(SocialPublishNetwork network)
{
    if (m_control || std::exchange(m_network, network) == network)
        return;
    startOver();
    fillCaption();
    findEarlier();
    Q_EMIT changed();
}

void StudioPublish::choose(SocialPublishPlacement placement)
{
    if (m_control || std::exchange(m_placement, placement) == placement)
        return;
    startOver();
    findEarlier();
    Q_EMIT changed();
}

QList<PublicationItem> StudioPublish::selectedItems() const
{
    const Batch& batch = m_costs.batch();
    return SocialPublishing::selectedItems(batch.items, batch.selectedItemIDs, batch.selectedIndex);
}

QList<PublicationItem> StudioPublish::sentItems() const
{
    const Batch& batch = m_costs.batch();
    return SocialPublishing::selectedItems(batch.items, batch.selectedItemIDs, batch.selectedIndex,
                                           SocialPublishing::maxImageCount(rawValue(m_network)));
}

void StudioPublish::setPublishCaption(const QString& caption)
{
    if (caption == publishCaption())
        return;
    m_captions.edit(m_network, caption);
    startOver();
    showChecks();
    Q_EMIT changed();
}

void StudioPublish::takeCaptionOf(QUuid item)
{
    const PublicationItems& items = m_costs.batch().items;
    const auto found = std::ranges::find(items, item, &PublicationItem::id);
    if (found == items.end())
        return;
    m_captions.take(m_network, *found);
    startOver();
    showChecks();
    Q_EMIT changed();
}

void StudioPublish::fillCaption()
{
    if (const PublicationItem* const item = m_costs.batch().currentItem(); item && m_isPresented)
        m_captions.fill(m_network, *item);
}

qint64 StudioPublish::balance() const
{
    return m_payment.account ? m_payment.account->balance() : 0;
}

QString StudioPublish::siteName() const
{
    return m_api ? m_api->siteName() : QString();
}

void StudioPublish::tell(const QString& sentence, StatusKind kind)
{
    m_status = sentence;
    m_statusKind = kind;
    Q_EMIT changed();
}

// What was told about an attempt is about another post now.
void StudioPublish::startOver()
{
    m_told.clear();
    m_foundPrepared.clear();
    m_publishedPost.reset();
}

void StudioPublish::followCosts()
{
    const Rendered subject{sentItems(), format()};
    if (m_subject != subject && !m_control) {
        m_subject = subject;
        startOver();
        findEarlier();
    }
    showPrices();
}

void StudioPublish::showPrices()
{
    QMap<SocialPublishNetwork, qint64> prices;
    const QList<int> selected = BatchSelection::selectedIndicesForBatch(m_costs.batch());
    for (const auto network : allCases<SocialPublishNetwork>()) {
        const qsizetype most = SocialPublishing::maxImageCount(rawValue(network));
        if (const auto price = m_costs.renderCreditCost(selected.mid(0, most)))
            prices.insert(network, *price);
    }
    if (std::exchange(m_prices, prices) != prices || m_isPresented)
        Q_EMIT changed();
}

void StudioPublish::showChecks()
{
    if (!m_isPresented)
        return;
    PublishSubject subject;
    subject.items = sentItems();
    subject.format = format();
    subject.network = m_network;
    subject.placement = placement();
    subject.caption = publishCaption();
    subject.warnings = m_warnings;
    subject.published = m_earlier;
    m_checks = checkedPost(subject);
    for (const PublishCheck& check : std::as_const(m_foundPrepared)) {
        if (!m_checks.found.contains(check))
            m_checks.found.append(check);
    }
    std::ranges::stable_partition(m_checks.found, &PublishCheck::isWarning);
    Q_EMIT changed();
}

// Looks for an earlier post of the same renders, whose fingerprints a worker computes.
void StudioPublish::findEarlier()
{
    const Rendered subject{sentItems(), format()};
    const bool isComparable =
        m_isPresented && m_records &&
        std::ranges::any_of(m_records->all(), [&](const PublishRecord& record) {
            return record.network == m_network && record.placement == placement() &&
                   (placement() == SocialPublishPlacement::story ||
                    record.renders.size() == subject.items.size());
        });
    m_earlier.reset();
    if (isComparable && m_rendered != subject) {
        m_rendered = subject;
        m_renders.reset();
        nameRenders(this, subject);
    } else if (isComparable && m_renders) {
        const PublishRecord* const sent = m_records->sent(*m_renders, m_network, placement());
        m_earlier = sent ? std::optional(*sent) : std::nullopt;
    }
    m_isComparing = isComparable && !m_renders;
    showChecks();
}

QCoro::Task<> StudioPublish::nameRenders(QPointer<StudioPublish> self, Rendered rendered)
{
    const auto name = [rendered, outputSize = self->m_outputSize] {
        return fingerprintsOf(rendered.items, rendered.format, outputSize);
    };
    QFuture<QStringList> naming = runOnWorker(name, Urgency::urgent);
    QStringList names;
    try {
        names = co_await naming;
    } catch (const std::exception&) {
        names.clear();    // out of memory: what is found after rendering is still told
    }
    if (isGone(self) || self->m_rendered != rendered)
        co_return;
    self->m_renders = names;
    self->findEarlier();
}

void StudioPublish::openPublishWindow()
{
    if (m_control) {
        m_isPresented = true;
        Q_EMIT changed();
        return;
    }
    m_isPresented = true;
    startOver();
    fillCaption();
    if (m_records && m_payment.journal)
        m_records->refresh(m_payment.journal->programRun());
    findEarlier();
    tell(u"Consultando conexiones de Instagram, Facebook y LinkedIn..."_s, StatusKind::working);
    refreshSocialStatus();
}

void StudioPublish::closePublishWindow()
{
    if (m_control || !std::exchange(m_isPresented, false))
        return;
    m_captions.dropUnedited();
    startOver();
    m_checks = {};
    Q_EMIT changed();
}

QCoro::Task<> StudioPublish::refreshSocialStatus()
{
    const QPointer<StudioPublish> self = this;
    QCoro::Task<bool> loading = m_connections.load();
    const bool isLoaded = co_await std::move(loading);
    if (isGone(self))
        co_return;
    if (!m_control) {
        if (isLoaded)
            tell(m_connections.sentence(), StatusKind::note);
        else
            tell(u"No se han podido consultar las conexiones."_s, StatusKind::warning);
    }
    showPrices();
}

QCoro::Task<> StudioPublish::refreshSocialConnectionsOnly()
{
    QCoro::Task<bool> loading = m_connections.load();
    co_await std::move(loading);
}

QCoro::Task<> StudioPublish::connectSocialNetwork(SocialPublishNetwork network)
{
    const QPointer<StudioPublish> self = this;
    if (m_control)
        co_return;
    QCoro::Task<SocialConnections::Opening> opening = m_connections.open(network);
    const SocialConnections::Opening told = co_await std::move(opening);
    if (!isGone(self) && !m_control && !told.sentence.isEmpty())
        tell(told.sentence, told.isOpened ? StatusKind::note : StatusKind::warning);
}

QCoro::Task<> StudioPublish::preparePublish(SocialPublishNetwork network,
                                            SocialPublishPlacement placement)
{
    const QPointer<StudioPublish> self = this;
    if (m_control)
        co_return;
    choose(network);
    if (row(network).hasStories)
        choose(placement);
    const SocialNetworkConnection* const known = connection(network);
    if (known && !known->isProviderConfigured()) {
        tell(PublishSentences::inactiveProvider(network), StatusKind::warning);
    } else if (!known || !known->isConnected) {
        QCoro::Task<> connecting = connectSocialNetwork(network);
        co_await std::move(connecting);
    } else {
        QCoro::Task<> publishing = publish(self);
        co_await std::move(publishing);
    }
}

// Whether the user must press once more before anything is done, because the same renders were
// sent before.
bool StudioPublish::asksForConfirmation()
{
    if (!m_earlier ||
        isSameAttempt(*m_earlier, *m_renders, publishCaption(), QDateTime::currentDateTimeUtc()))
        return false;
    const PublishCheck check = checkOfPublished(*m_earlier);
    if (m_told.contains(check))
        return false;
    m_told.append(check);
    tell(check.sentence, StatusKind::warning);
    return true;
}

PublishRequest StudioPublish::requestNow() const
{
    PublishRequest request;
    for (const PublicationItem& item : sentItems())
        request.items.append(item);
    request.format = format();
    request.outputSize = m_outputSize;
    request.network = m_network;
    request.placement = placement();
    request.caption = publishCaption();
    if (m_prices.contains(m_network))
        request.price = m_prices.value(m_network);
    return request;
}

PublishServices StudioPublish::servicesNow()
{
    PublishServices services;
    services.photos = m_photos;
    services.stagingPlace = m_stagingPlace;
    services.charge = m_payment;
    services.charge.payer = m_records->account();
    services.records = m_records;
    services.send = sendThrough(m_api);
    services.largestPost = m_api->largestPost();
    services.timeLimit = m_api->limits().withBody;
    services.preferences = &m_preferences;
    return services;
}

QCoro::Task<> StudioPublish::publish(QPointer<StudioPublish> self)
{
    const qsizetype selected = self->selectedItems().size();
    const qsizetype sent = self->sentItems().size();
    if (!self->m_records || !self->m_api) {
        self->tell(AccountError::unauthorized().text(), StatusKind::warning);
        co_return;
    }
    if (sent == 0) {
        self->tell(u"Importa una imagen para publicarla."_s, StatusKind::warning);
        co_return;
    }
    if (self->asksForConfirmation())
        co_return;
    const QString title = titleOf(self->m_network);
    QString sentence = u"Preparando publicación"_s;
    if (row(self->m_network).hasStories)
        sentence += u' ' + row(self->placement()).title.toString();
    sentence += u" para "_s + title;
    const PublishRequest request = self->requestNow();
    const PublishServices services = self->servicesNow();
    self->m_publishedPost.reset();
    self->m_foundPrepared.clear();
    self->m_control = std::make_shared<PublishControl>();
    StudioPublish* const alive = self;    // the destructor empties these functions
    self->m_control->progressed = [alive](const PublishProgress& progress) {
        alive->m_progress = progress;
        Q_EMIT alive->progressed();
    };
    self->m_control->working = [alive](const QString& step) {
        alive->tell(step, StatusKind::working);
        Q_EMIT alive->working(step);
    };
    self->m_control->confirms = [told = self->m_told](const QList<PublishCheck>& found) {
        return std::ranges::all_of(found, [&](const auto& check) { return told.contains(check); });
    };
    self->m_progress = PublishProgress{PublishProgress::Stage::rendering, 0, sent};
    self->m_control->working(sentence);
    if (selected > sent)
        self->m_control->working(PublishSentences::limit(self->m_network, sent));
    Q_EMIT self->progressed();
    QCoro::Task<> running = runToEnd(self, request, services, self->m_control);
    co_await std::move(running);
}

QCoro::Task<> StudioPublish::runToEnd(QPointer<StudioPublish> self, PublishRequest request,
                                      PublishServices services,
                                      std::shared_ptr<PublishControl> control)
{
    QCoro::Task<PublishOutcome> running = runPublish(request, services, control);
    PublishOutcome outcome;
    try {
        outcome = co_await std::move(running);
    } catch (const std::exception&) {
        outcome.state = PublishOutcome::State::notPrepared;    // out of memory
    }
    if (!isGone(self))
        self->finish(outcome, request.caption);
}

void StudioPublish::finish(const PublishOutcome& outcome, const QString& caption)
{
    m_control.reset();
    m_progress.reset();
    const bool isUnconfirmed = outcome.state == PublishOutcome::State::unconfirmed;
    m_told = isUnconfirmed ? outcome.found : QList<PublishCheck>();
    m_foundPrepared = outcome.found;
    if (outcome.isDone()) {
        m_foundPrepared.clear();
        m_publishedPost = {outcome.network, outcome.placement, outcome.url};
        // A story does not show its caption, so this is not published yet.
        if (outcome.placement == SocialPublishPlacement::feed)
            m_captions.clear(outcome.network, caption);
    }
    m_subject = {sentItems(), format()};
    findEarlier();
    StatusLink link;
    link.isPurchase = outcome.isShortOfCredits();
    tell(outcome.sentence(), kindOf(outcome));
    Q_EMIT progressed();
    Q_EMIT told(m_status, m_statusKind, link);
}

void StudioPublish::stop()
{
    if (!m_control || (m_progress && !m_progress->canStop))
        return;
    m_control->working(u"Deteniendo la publicación…"_s);
    m_control->stop.request_stop();
}
