#include "studio/copy/StudioCopy.h"

#include "account/AccountError.h"
#include "account/AccountSession.h"
#include "model/PlainText.h"
#include "studio/batch/BatchSelection.h"

#include <utility>

// What the screens ask and press, and how results reach the batch. The run itself is in
// CopyRun.cpp.

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto pauseBeforeTryingAgain = 100ms;

}    // namespace

StudioCopy::StudioCopy(const CopyServices& services, PreferencesStore& preferences)
    : m_services(services), m_paid(preferences)
{
    m_later.setSingleShot(true);
    connect(&m_later, &QTimer::timeout, this, &StudioCopy::applyWaiting);
}

StudioCopy::~StudioCopy()
{
    // A writer may end inside of request_stop(): its run then finds m_isEnding set.
    m_isEnding = true;
    m_stop.request_stop();
}

bool StudioCopy::isGone(const QPointer<StudioCopy>& self)
{
    return !self || self->m_isEnding;
}

CopyState StudioCopy::stateOf(QUuid item) const
{
    const auto job = m_jobOf.constFind(item);
    const CopyState state = job == m_jobOf.cend() ? CopyState::none : m_jobs[*job].state;
    const bool isLeftOut = state == CopyState::queued && !m_isRunning;
    return isLeftOut ? CopyState::none : state;
}

QString StudioCopy::whyUnanswered(QUuid item) const
{
    return stateOf(item) == CopyState::unanswered ? m_jobs[m_jobOf.value(item)].why : QString();
}

int StudioCopy::finished() const
{
    return int(std::ranges::count_if(m_jobs, [](const Job& job) {
        return job.state != CopyState::queued && job.state != CopyState::generating;
    }));
}

QSet<QUuid> StudioCopy::presentItems() const
{
    QSet<QUuid> items;
    for (const PublicationItem& item : m_services.batch().items)
        items.insert(item.id);
    return items;
}

int StudioCopy::waiting() const
{
    if (m_waiting.isEmpty())
        return 0;
    const QSet<QUuid> items = presentItems();
    return int(std::ranges::count_if(
        m_waiting, [&](const Result& result) { return items.contains(m_jobs[result.job].item); }));
}

QString StudioCopy::whyWaiting() const
{
    const CopyHindrance hindrance = m_services.hindrance();
    if (waiting() == 0 || hindrance == CopyHindrance::none)
        return {};
    return hindrance == CopyHindrance::editing
               ? u"Se aplicarán cuando termines de escribir."_s
               : u"Se aplicarán con tu próximo cambio o al terminar: hay un cambio que se puede "
                 "rehacer."_s;
}

QString StudioCopy::whyNotGenerate() const
{
    if (m_services.batch().items.isEmpty())
        return u"Importa imágenes para analizarlas en local."_s;
    if (m_mode == CopyGenerationMode::cloud)
        return m_cloud.isComplete() ? whyNoCloudCopy(m_cloud.account) : QString();
    return m_writer.write ? m_writer.whyNotReady() : u"La IA local no está disponible."_s;
}

qint64 StudioCopy::costPerImage() const
{
    if (m_mode == CopyGenerationMode::local)
        return 0;
    return m_cloud.account ? m_cloud.account->cloudCopyConfig().costCredits
                           : CloudCopyConfig::fallback().costCredits;
}

qint64 StudioCopy::cost() const
{
    return costPerImage() * BatchSelection::selectedIndicesForBatch(m_services.batch()).size();
}

const PublicationItem* StudioCopy::itemWith(QUuid id) const
{
    const PublicationItems& items = m_services.batch().items;
    const auto found = std::ranges::find(items, id, &PublicationItem::id);
    return found == items.end() ? nullptr : &*found;
}

StudioCopy::Job StudioCopy::jobOf(const PublicationItem& item) const
{
    Job job;
    job.item = item.id;
    job.name = item.filename();
    job.asked = textsOf(item);
    return job;
}

void StudioCopy::analyzeSelected()
{
    const Batch& batch = m_services.batch();
    QList<Job> jobs;
    for (const int index : BatchSelection::selectedIndicesForBatch(batch))
        jobs.append(jobOf(batch.items[index]));
    start(jobs, Offers::end);
}

void StudioCopy::proposeAnother(QUuid item, CopySlot slot)
{
    const PublicationItem* const found = itemWith(item);
    if (!found)
        return;
    Job job = jobOf(*found);
    job.only = slot;
    start({job}, Offers::end);
}

QList<StudioCopy::Job> StudioCopy::unansweredJobs() const
{
    QList<Job> jobs;
    for (const Job& job : m_jobs) {
        const bool isFailed = job.state == CopyState::unanswered ||
                              (job.state == CopyState::queued && m_outcome.leftOut > 0);
        const PublicationItem* const item = isFailed ? itemWith(job.item) : nullptr;
        if (!item)
            continue;
        jobs.append(jobOf(*item));
        jobs.last().only = job.only;
    }
    return jobs;
}

bool StudioCopy::canRetry() const
{
    return !m_isRunning && !unansweredJobs().isEmpty();
}

void StudioCopy::retryUnanswered()
{
    // Own texts that a missing answer's record replaced can still be recovered afterwards.
    if (const QList<Job> jobs = unansweredJobs(); !m_isRunning && !jobs.isEmpty())
        start(jobs, Offers::stay);
}

void StudioCopy::cancel()
{
    if (!m_isRunning || m_outcome.state != CopyOutcome::State::done)
        return;
    m_outcome.state = CopyOutcome::State::cancelled;
    endQueue();
    Q_EMIT working(u"Deteniendo la generación…"_s);
    m_stop.request_stop();
    Q_EMIT changed();
}

// Nothing that is still queued is generated.
void StudioCopy::endQueue()
{
    for (Job& job : m_jobs) {
        if (job.state == CopyState::queued)
            job.state = CopyState::none;
    }
}

// The results that can be applied. Those of an image that is gone wait for it until the end of the
// run: an undo may bring it back.
QList<StudioCopy::Result> StudioCopy::applicable()
{
    const QSet<QUuid> items = presentItems();
    QList<Result> present, absent;
    for (const Result& result : std::as_const(m_waiting))
        (items.contains(m_jobs[result.job].item) ? present : absent).append(result);
    m_waiting = absent;
    if (!m_isWritten)
        return present;
    for (const Result& result : std::exchange(m_waiting, {})) {
        const Job& job = m_jobs[result.job];
        setState(result.job, CopyState::none);
        if (!result.isPaid)
            continue;
        m_absent.append({job.item, {result.copy, job.asked, job.only}});
        const QString note =
            m_paid.isStored(job.item)
                ? u"El texto pagado de «%1» se guarda por si recuperas la imagen."_s
                : u"El pago del texto de «%1» no se ha podido anotar."_s;
        m_outcome.notes.append(note.arg(job.name));
    }
    return present;
}

void StudioCopy::follow()
{
    if (!m_waiting.isEmpty() || !m_absent.isEmpty())
        m_later.start(0ms);
}

// Applies paid texts of an earlier run to images that are in the batch again.
void StudioCopy::applyReturned()
{
    QList<Absent> returned;
    for (const Absent& absent : std::as_const(m_absent)) {
        if (itemWith(absent.item))
            returned.append(absent);
    }
    const CopyHindrance hindrance = m_services.hindrance();
    if (!returned.isEmpty() && hindrance == CopyHindrance::editing)
        m_later.start(pauseBeforeTryingAgain);
    if (returned.isEmpty() || hindrance != CopyHindrance::none)
        return;
    m_absent.removeIf([this](const Absent& absent) { return itemWith(absent.item) != nullptr; });
    QList<QUuid> items;
    for (const Absent& absent : std::as_const(returned))
        items.append(absent.item);
    m_services.withNextSave(m_paid.removal(items));
    m_services.apply(
        [&](Batch& batch) {
            for (const auto& [item, paid] : std::as_const(returned)) {
                const auto place = std::ranges::find(batch.items, item, &PublicationItem::id);
                applyCopy(batch.items.edit(place - batch.items.begin()), paid.copy, paid.asked,
                          paid.only);
            }
        },
        Step::own());
}

void StudioCopy::applyWaiting()
{
    applyReturned();
    if (!m_isRunning)
        return;
    const CopyHindrance hindrance = m_services.hindrance();
    const bool isHindered = hindrance == CopyHindrance::editing ||
                            (hindrance == CopyHindrance::redoable && !m_isWritten);
    if (!m_waiting.isEmpty() && isHindered) {
        if (hindrance == CopyHindrance::editing)
            m_later.start(pauseBeforeTryingAgain);
        showHindrance(hindrance);
        return;
    }
    m_shownHindrance = CopyHindrance::none;
    if (const QList<Result> results = applicable(); !results.isEmpty())
        apply(results);
    if (m_isWritten)
        finish();
    else
        Q_EMIT changed();
}

// Receivers of changed() show the whole batch again, so it is not emitted at every attempt.
void StudioCopy::showHindrance(CopyHindrance hindrance)
{
    const int count = waiting();
    const bool isShown = hindrance == m_shownHindrance && count == m_shownWaiting;
    m_shownHindrance = hindrance;
    m_shownWaiting = count;
    if (!isShown)
        Q_EMIT changed();
}

void StudioCopy::applyBeforeEnd()
{
    if (!m_isRunning)
        return;
    if (const QList<Result> results = applicable(); !results.isEmpty())
        apply(results);
}

void StudioCopy::apply(const QList<Result>& results)
{
    QList<QUuid> paid;
    for (const Result& result : results) {
        setState(result.job, result.isAnswer ? CopyState::generated : CopyState::unanswered);
        m_outcome.written += result.isAnswer;
        if (result.isPaid)
            paid.append(m_jobs[result.job].item);
    }
    if (!paid.isEmpty())
        m_services.withNextSave(m_paid.removal(paid));
    const auto write = [&](Batch& batch) {
        QHash<QUuid, qsizetype> places;
        for (qsizetype i = 0; i < batch.items.size(); ++i)
            places.insert(batch.items[i].id, i);
        for (const Result& result : results) {
            const Job& job = m_jobs[result.job];
            PublicationItem& item = batch.items.edit(places.value(job.item));
            note(applyCopy(item, result.copy, job.asked, job.only));
        }
    };
    m_services.apply(write, m_step);
}

void StudioCopy::note(const CopyMerge& merge)
{
    m_kept += merge.kept;
    for (const CopyChange& change : merge.written) {
        const auto earlier = std::ranges::find_if(m_replaced, [&](const CopyChange& each) {
            return each.item == change.item && each.field == change.field &&
                   each.after == change.before;
        });
        if (earlier != m_replaced.end())
            earlier->after = change.after;
        else if (change.isOwn)
            m_replaced.append(change);
    }
}

void StudioCopy::finish()
{
    m_isRunning = false;
    m_at = -1;
    m_outcome.replaced = int(m_replaced.size());
    m_outcome.kept = int(m_kept.size());
    m_outcome.unanswered = 0;
    for (Job& job : m_jobs) {
        if (job.state == CopyState::generating)
            job.state = CopyState::none;
        m_outcome.unanswered += job.state == CopyState::unanswered;
        m_outcome.leftOut += job.state == CopyState::queued;
    }
    Q_EMIT changed();
    Q_EMIT ended(m_outcome);
}

// Changes texts as one step and returns how many `write` has changed.
int StudioCopy::changeTexts(const QList<CopyChange>& changes,
                            const std::function<bool(PublicationItem&, const CopyChange&)>& write)
{
    int count = 0;
    m_services.apply(
        [&](Batch& batch) {
            for (const CopyChange& change : changes) {
                const auto item = std::ranges::find(batch.items, change.item, &PublicationItem::id);
                if (item != batch.items.end())
                    count += write(batch.items.edit(item - batch.items.begin()), change);
            }
        },
        Step::own());
    return count;
}

// Brings a text back only where the generated one still stands: the user may have edited it since.
void StudioCopy::recoverOwnTexts()
{
    const QList<CopyChange> changes = std::exchange(m_replaced, {});
    const int count = changeTexts(changes, [](PublicationItem& item, const CopyChange& change) {
        const bool isGenerated = textOf(item, change.field) == change.after;
        if (isGenerated)
            writeOwnText(item, change.field, change.before);
        return isGenerated;
    });
    Q_EMIT told(count == 0
                    ? u"Tus textos ya no estaban sustituidos."_s
                    : counted(count, u"texto tuyo recuperado.", u"textos tuyos recuperados."));
}

void StudioCopy::replaceEdited()
{
    const QList<CopyChange> changes = std::exchange(m_kept, {});
    const int count = changeTexts(changes, [](PublicationItem& item, const CopyChange& change) {
        writeGeneratedText(item, change.field, change.after);
        return true;
    });
    Q_EMIT told(
        counted(count, u"texto que editaste sustituido.", u"textos que editaste sustituidos."));
}

qsizetype StudioCopy::applyPaid(Batch& restored)
{
    const QList<QUuid> applied = m_paid.applyTo(restored);
    if (!applied.isEmpty())
        m_services.withNextSave(m_paid.removal(applied));
    return applied.size();
}
