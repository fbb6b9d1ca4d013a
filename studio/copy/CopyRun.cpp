#include "studio/copy/StudioCopy.h"

#include "account/AccountError.h"
#include "account/AccountSession.h"
#include "platform/Workers.h"

#include <QCoroFuture>
#include <QFileInfo>

// One run of StudioCopy: which image is at turn, having it written, and what its failure means.

using namespace Qt::StringLiterals;

namespace {

constexpr int mostFailuresInRow = 3;

QUrl photoOf(const PublicationItem& item)
{
    return item.image.path.isEmpty() ? item.url : QUrl::fromLocalFile(item.image.path);
}

}    // namespace

void StudioCopy::start(const QList<Job>& jobs, Offers offers)
{
    if (m_isRunning)
        return;
    Q_EMIT starting();
    CopyOutcome outcome;
    outcome.mode = m_mode;
    outcome.images = int(jobs.size());
    outcome.reason = whyNotGenerate();
    const bool isSignedIn = m_cloud.isComplete() && m_cloud.account->isAuthenticated();
    if (outcome.reason.isEmpty() && m_mode == CopyGenerationMode::cloud && !isSignedIn) {
        outcome.reason = AccountError::unauthorized().text();
        outcome.remedy = CopyOutcome::Remedy::signIn;
    }
    if (!outcome.reason.isEmpty()) {
        // What the run before offers can still be done.
        outcome.state = CopyOutcome::State::refused;
        Q_EMIT ended(outcome);
        return;
    }
    m_outcome = outcome;
    if (offers == Offers::end) {
        m_replaced.clear();
        m_kept.clear();
    }
    if (jobs.size() == 1 && jobs.first().only)
        m_outcome.slot = row(*jobs.first().only).displayName.toString();
    m_jobs = jobs;
    m_jobOf.clear();
    for (qsizetype i = 0; i < jobs.size(); ++i)
        m_jobOf.insert(jobs[i].item, i);
    m_at = -1;
    m_failuresInRow = 0;
    m_step = Step::run();
    m_stop = {};
    m_waiting.clear();
    m_isWritten = false;
    m_isRunning = true;
    if (m_mode == CopyGenerationMode::local)
        Q_EMIT working(u"Preparando %1 local..."_s.arg(m_writer.engineName()));
    Q_EMIT changed();
    runToEnd(this);
}

QCoro::Task<> StudioCopy::runToEnd(QPointer<StudioCopy> self)
{
    try {
        QCoro::Task<> writing = writeAll(self);
        co_await std::move(writing);
    } catch (const std::exception& error) {
        if (!isGone(self)) {
            self->m_outcome.reason = readable(error);
            self->stopFailing();
        }
    }
    if (isGone(self))
        co_return;
    self->m_isWritten = true;
    self->applyWaiting();
}

QCoro::Task<> StudioCopy::writeAll(QPointer<StudioCopy> self)
{
    const bool isCloud = self->m_outcome.mode == CopyGenerationMode::cloud;
    if (isCloud) {
        QCoro::Task<> checking = checkBalance(self);
        co_await std::move(checking);
    }
    while (!isGone(self)) {
        const std::optional<Order> order = self->nextOrder();
        if (!order)
            co_return;
        const QString file = order->copy.photo.toLocalFile();
        QFuture<bool> looking = tryOnWorker(
            [file] { return QFileInfo(file).isFile() && QFileInfo(file).isReadable(); });
        const bool isThere = co_await looking;
        if (isGone(self) || self->m_stop.stop_requested())
            continue;
        if (!isThere) {
            self->fail(*order, u"No se puede leer la foto «%1»."_s.arg(order->name));
            continue;
        }
        QCoro::Task<> writing = isCloud ? writeInCloud(self, *order) : writeHere(self, *order);
        co_await std::move(writing);
    }
}

// Refuses the whole run if the credits do not suffice for it.
QCoro::Task<> StudioCopy::checkBalance(QPointer<StudioCopy> self)
{
    const QPointer<AccountSession> account = self->m_cloud.account;
    const qint64 images = self->total();
    const auto price = [&] { return images * account->cloudCopyConfig().costCredits; };
    if (account->balance() >= price())
        co_return;
    // Asks the service for the balance: credits may have been bought elsewhere.
    QCoro::Task<bool> refreshing = account->refreshSilently();
    co_await std::move(refreshing);
    if (isGone(self) || !account || account->balance() >= price())
        co_return;
    CopyOutcome& outcome = self->m_outcome;
    outcome.state = CopyOutcome::State::refused;
    outcome.reason =
        u"Necesitas %1 créditos para generar %2 imagen(es)."_s.arg(price()).arg(images);
    outcome.remedy = CopyOutcome::Remedy::purchase;
    self->endQueue();
}

// The next image that is still in the batch, with the objective and the format as they are now.
std::optional<StudioCopy::Order> StudioCopy::nextOrder()
{
    if (m_outcome.state != CopyOutcome::State::done)
        return std::nullopt;
    while (++m_at < m_jobs.size()) {
        const PublicationItem* const item = itemWith(m_jobs[m_at].item);
        if (!item) {
            setState(m_at, CopyState::none);
            continue;
        }
        const Batch& batch = m_services.batch();
        Order order;
        order.job = m_at;
        order.item = item->id;
        order.name = item->filename();
        order.copy = {photoOf(*item), batch.objective, batch.format, m_stop.get_token()};
        setState(m_at, CopyState::generating);
        Q_EMIT changed();
        return order;
    }
    --m_at;
    return std::nullopt;
}

QCoro::Task<> StudioCopy::writeHere(QPointer<StudioCopy> self, Order order)
{
    const auto& gemma = row(LocalAIEngine::gemma4E2B);
    const QString name = self->m_writer.engineName();
    Q_EMIT self->working(u"Generando con %1 %2 de %3"_s.arg(
        name == gemma.title ? gemma.shortTitle.toString() : name, QString::number(self->position()),
        QString::number(self->total())));
    const CloudCopyOrder& asked = order.copy;
    QCoro::Task<GeneratedCopy> writing =
        self->m_writer.write(asked.photo, asked.objective, asked.format, asked.stop);
    const GeneratedCopy copy = co_await std::move(writing);
    if (isGone(self))
        co_return;
    if (asked.stop.stop_requested())
        self->setState(order.job, CopyState::none);
    else
        self->takeLocal(order, copy);
}

void StudioCopy::takeLocal(const Order& order, const GeneratedCopy& copy)
{
    if (!m_writer.isMissingAnswer(copy)) {
        m_failuresInRow = 0;
        dropAbsent(order.item);
        return take({order.job, copy});
    }
    // The record says on the image itself what is wrong; one text alone cannot.
    if (m_jobs[order.job].only)
        return fail(order, copy.subtitle);
    m_outcome.unansweredNames.append(order.name);
    m_outcome.reason = m_jobs.size() == 1 ? copy.subtitle : QString();
    m_jobs[order.job].why = copy.subtitle;
    take({.job = order.job, .copy = copy, .isAnswer = false});
    failInRow();
}

QCoro::Task<> StudioCopy::writeInCloud(QPointer<StudioCopy> self, Order order)
{
    const CloudCopySteps steps = self->stepsOf(order);
    QCoro::Task<CloudCopyResult> writing = writeCloudCopy(order.copy, self->m_cloud, steps);
    const CloudCopyResult result = co_await std::move(writing);
    if (isGone(self))
        co_return;
    self->takeFromCloud(order, result);
    const auto later =
        std::ranges::subrange(self->m_jobs.cbegin() + order.job + 1, self->m_jobs.cend());
    const bool isLast = std::ranges::none_of(
        later, [&](const Job& job) { return self->itemWith(job.item) != nullptr; });
    if (result.state == CloudCopyResult::State::written && isLast && self->m_cloud.account) {
        QCoro::Task<bool> refreshing = self->m_cloud.account->refresh();
        co_await std::move(refreshing);
    }
}

CloudCopySteps StudioCopy::stepsOf(const Order& order)
{
    const QPointer<StudioCopy> self = this;
    CloudCopySteps steps;
    steps.working = [self](const QString& sentence) {
        if (!isGone(self))
            Q_EMIT self->working(sentence);
    };
    steps.isWanted = [self, item = order.item] { return !isGone(self) && self->itemWith(item); };
    steps.record = [self, order](const GeneratedCopy& copy, const Strike& strike) {
        return !isGone(self) && self->keepPaid(order, copy, strike);
    };
    return steps;
}

// Stores a copy that cannot be applied yet, for results may have to wait.
bool StudioCopy::keepPaid(const Order& order, const GeneratedCopy& copy, const Strike& strike)
{
    const Job& job = m_jobs[order.job];
    m_absent.removeIf([&](const Absent& absent) { return absent.item == order.item; });
    const Strike keeping = m_paid.keeping(order.item, {copy, job.asked, job.only}, strike);
    const bool isKept = m_paid.store(keeping);
    if (!isKept)
        m_services.withNextSave(keeping);
    return isKept;
}

void StudioCopy::takeFromCloud(const Order& order, const CloudCopyResult& result)
{
    using State = CloudCopyResult::State;
    switch (result.state) {
    case State::written:
        m_failuresInRow = 0;
        m_outcome.cost += result.cost;
        Q_EMIT working(u"Textos generados en nube. Coste: %1 créditos."_s.arg(result.cost));
        return take({.job = order.job, .copy = result.copy, .isPaid = true});
    case State::cancelled:
        m_outcome.reason = result.reason;
        return setState(order.job, CopyState::none);
    case State::unwanted:
        m_outcome.notes.append(u"«%1» ya no está en el lote."_s.arg(order.name) + result.reason);
        return setState(order.job, CopyState::none);
    case State::failed:
        fail(order, result.reason);
        return failInRow();
    case State::impossible:
        fail(order, result.reason);
        m_outcome.reason = result.reason;
        m_outcome.remedy = result.remedy;
        return stopFailing();
    }
}

// Drops the paid copy of an earlier run that the item has not got yet: a newer one takes its place.
void StudioCopy::dropAbsent(QUuid item)
{
    if (m_absent.removeIf([item](const Absent& absent) { return absent.item == item; }) > 0)
        m_services.withNextSave(m_paid.removal({item}));
}

void StudioCopy::take(const Result& result)
{
    m_waiting.append(result);
    setState(result.job, CopyState::waiting);
    m_shownHindrance = CopyHindrance::none;
    applyWaiting();
}

void StudioCopy::fail(const Order& order, const QString& why)
{
    m_jobs[order.job].why = why;
    setState(order.job, CopyState::unanswered);
    // Told with the outcome only as long as it is the reason for every failure.
    const bool isFirst = m_outcome.unansweredNames.isEmpty();
    m_outcome.reason = isFirst || m_outcome.reason == why ? why : QString();
    m_outcome.unansweredNames.append(order.name);
    Q_EMIT changed();
}

void StudioCopy::failInRow()
{
    if (++m_failuresInRow < mostFailuresInRow)
        return;
    m_outcome.isThreeInRow = true;
    stopFailing();
}

// The images that are still queued stay so, for the next attempt.
void StudioCopy::stopFailing()
{
    if (m_outcome.state == CopyOutcome::State::done)
        m_outcome.state = CopyOutcome::State::failing;
}

void StudioCopy::setState(qsizetype job, CopyState state)
{
    m_jobs[job].state = state;
}
