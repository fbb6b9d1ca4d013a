#include "studio/export/ExportOperation.h"

#include "account/AccountError.h"
#include "account/AccountSession.h"
#include "platform/AtomicFile.h"
#include "platform/Memory.h"
#include "platform/PhotoCache.h"
#include "platform/StagingFolder.h"
#include "platform/Workers.h"

#include <QCoroFuture>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

// What the parts of one export share.
struct ExportRun {
    ExportRequest request;
    ExportServices services;
    std::shared_ptr<ExportControl> control;
    ExportOutcome outcome;
    std::vector<std::optional<RenderedOutput>> rendered;    // in the order of the items
    QList<PendingExport> pending;
    qsizetype next = 0, done = 0;
    bool isFailed = false;    // nothing more is begun

    bool isStopped() const { return control->stop; }
    qsizetype total(ExportProgress::Stage stage) const
    {
        const bool isRendering = stage == ExportProgress::Stage::rendering;
        return isRendering ? request.items.size() : pending.size();
    }
    void progress(ExportProgress::Stage stage, qsizetype count) const
    {
        if (control->progressed)
            control->progressed({stage, count, total(stage)});
    }
};
using SharedRun = std::shared_ptr<ExportRun>;
using Stage = ExportProgress::Stage;

using Rendering = std::variant<RenderedOutput, RenderFailure>;

// Pictures of many sizes, freed in another order, leave holes that add up. They are given back now
// and then: what the next picture needs would be paged in anew.
void releaseHolesAfter(qsizetype index)
{
    constexpr qsizetype pictures = 8;
    if (index % pictures == pictures - 1)
        releaseFreedMemory();
}

Rendering renderedGuarded(const ExportRun& run, const PublicationItem& item, qsizetype index,
                          const QString& file)
{
    const auto tidy = qScopeGuard([index] { releaseHolesAfter(index); });
    try {
        return renderedOutput(item, run.request.format, run.request.outputSize,
                              *run.services.photos, file);
    } catch (const std::exception&) {
        return RenderFailure::photo;    // short of memory
    }
}

void take(ExportRun& run, qsizetype index, const Rendering& rendering)
{
    if (const auto* output = std::get_if<RenderedOutput>(&rendering)) {
        run.rendered[std::size_t(index)] = *output;
    } else {
        const bool isCacheFull = std::get<RenderFailure>(rendering) == RenderFailure::file;
        const bool isLeftOut = !isCacheFull && run.control->leftOut;
        if (!isLeftOut && !std::exchange(run.isFailed, true)) {
            run.outcome.failed = run.request.items[index].image.path;
            run.outcome.isCacheFull = isCacheFull;
        }
    }
    run.progress(Stage::rendering, ++run.done);
}

// One item after the other, until none is left.
QCoro::Task<> renderLane(SharedRun run)
{
    while (run->next < run->request.items.size() && !run->isStopped() && !run->isFailed) {
        const qsizetype index = run->next++;
        const PublicationItem item = run->request.items[index];
        const QString file = run->control->staging->filePath(QString::number(index));
        QFuture<Rendering> rendering = runOnWorker(
            [run, item, index, file] { return renderedGuarded(*run, item, index, file); });
        const Rendering rendered = co_await rendering;
        take(*run, index, rendered);
    }
}

// Of what exports that were killed have left where this one writes.
QFuture<void> cleared(const SharedRun& run)
{
    QSet<QString> folders;
    for (const QString& destination : run->request.destinations)
        folders.insert(QFileInfo(destination).path());
    return runOnWorker([folders, staging = run->control->staging] {
        for (const QString& folder : folders)
            removeUnfinished(folder, [&](const QString& name) { return staging->isGoingOn(name); });
    });
}

QCoro::Task<> renderAll(SharedRun run)
{
    const QString place = run->services.stagingPlace;
    QFuture<std::shared_ptr<StagingFolder>> staging = runOnWorker([place] {
        releaseFreedMemory();    // of the import, which is as much again
        return std::make_shared<StagingFolder>(place);
    });
    run->control->staging = co_await staging;
    run->isFailed = run->outcome.isCacheFull = !run->control->staging->isUsable();
    QFuture<void> clearing = cleared(run);
    co_await clearing;
    run->rendered.resize(std::size_t(run->request.items.size()));
    const int cores = workers().maxThreadCount();
    const int wanted = run->request.jobs > 0 ? std::min(run->request.jobs, cores) : cores + 1;
    std::vector<QCoro::Task<>> lanes;
    lanes.reserve(std::size_t(wanted));
    for (int i = 0; i < wanted; ++i)
        lanes.push_back(renderLane(run));
    for (QCoro::Task<>& lane : lanes)
        co_await lane;
}

void addressAll(ExportRun& run)
{
    for (std::size_t i = 0; i < run.rendered.size(); ++i) {
        const QString& destination = run.request.destinations[qsizetype(i)];
        if (run.rendered[i])
            run.pending.append({destination, *run.rendered[i]});
        else
            run.control->leftOut(destination);
    }
    run.rendered.clear();
}

// Gives the system's reason, empty when it is done.
QString moved(const QString& from, const QString& to, const QString& runName)
{
    QFile source(from);
    if (!source.open(QIODevice::ReadOnly))
        return source.errorString();
    const QByteArray bytes = source.readAll();
    QString reason =
        bytes.size() == source.size() ? writeAtomically(to, bytes, runName) : source.errorString();
    source.remove();
    return reason;
}

void tell(const ExportRun& run, const QString& file, const QString& problem)
{
    if (run.control->wrote)
        run.control->wrote(file, problem);
}

// One that cannot be written keeps none of the others from it.
QCoro::Task<bool> writeAll(SharedRun run)
{
    ExportOutcome& outcome = run->outcome;
    const std::shared_ptr<StagingFolder> staging = run->control->staging;
    const QString runName = staging ? staging->runName() : QString();
    for (const PendingExport& each : run->pending) {
        if (run->isStopped())
            co_return false;
        const QString from = each.output.file, to = each.destination;
        QFuture<QString> writing =
            runOnWorker([from, to, runName] { return moved(from, to, runName); });
        const QString problem = co_await writing;
        (problem.isEmpty() ? outcome.written : outcome.unwritten).append(to);
        tell(*run, to, problem);
        run->progress(Stage::writing, outcome.written.size() + outcome.unwritten.size());
        if (run->services.journal && problem.isEmpty())
            run->services.journal->reached("wrote");
    }
    co_return outcome.unwritten.isEmpty();
}

QList<RenderedOutput> outputsOf(const ExportRun& run)
{
    QList<RenderedOutput> outputs;
    for (const PendingExport& each : run.pending)
        outputs.append(each.output);
    return outputs;
}

QStringList namesOf(const QList<RenderedOutput>& outputs)
{
    QStringList names;
    for (const RenderedOutput& output : outputs)
        names.append(output.item.id.toString(QUuid::WithoutBraces) + u' ' + output.fingerprint);
    return names;
}

bool isAmong(const QSet<QString>& paid, const RenderedOutput& output)
{
    return paid.contains(output.fingerprint) || paid.contains(output.pixels);
}

// The items stay as they are: they may all share one set of a hundred thousand names.
QList<RenderedOutput> unpaidOutputsOf(const ExportRun& run)
{
    QList<RenderedOutput> unpaid = unpaidRenderedOutputs(outputsOf(run));
    if (run.services.paidMeanwhile) {
        unpaid.removeIf([paid = run.services.paidMeanwhile()](const RenderedOutput& output) {
            return isAmong(paid, output);
        });
    }
    return unpaid;
}

std::function<bool()> dueCheck(const SharedRun& run, const QList<RenderedOutput>& unpaid)
{
    if (!run->services.paidMeanwhile)
        return {};
    return [run, unpaid] {
        const QSet<QString> paid = run->services.paidMeanwhile();
        return std::ranges::none_of(
            unpaid, [&](const RenderedOutput& output) { return isAmong(paid, output); });
    };
}

ChargedOperation chargeOf(const SharedRun& run, const QList<RenderedOutput>& unpaid)
{
    return {
        .requestId = creditRequestID(unpaid, u"download"_s),
        .cost = run->outcome.cost,
        .what = u"una exportación"_s,
        .covers = namesOf(unpaid),
        .isStillDue = dueCheck(run, unpaid),
        .work = [run] { return writeAll(run); },
        .record =
            [run](const QString& entry) { return run->services.record(outputsOf(*run), entry); }};
}

using State = ExportOutcome::State;

State stateOf(const ExportRun& run, const ChargeResult& result)
{
    switch (result.state) {
    case ChargeResult::State::done:
        return State::done;
    case ChargeResult::State::notReserved:
        return State::notReserved;
    case ChargeResult::State::failed:
        return run.outcome.unwritten.isEmpty() && run.isStopped() ? State::stopped
                                                                  : State::notWritten;
    }
    Q_UNREACHABLE();
}

void take(ExportOutcome& outcome, const ExportRun& run, const ChargeResult& result)
{
    outcome.state = stateOf(run, result);
    outcome.isCharged = outcome.cost > 0 && outcome.state != State::notReserved;
    outcome.isRefundPending = result.isRefundPending;
    outcome.isRecorded = result.isRecorded || !outcome.isCharged;
    outcome.refusal = result.refusal;
    if (outcome.state == State::notReserved)
        outcome.reason = result.error;
}

void refuse(ExportOutcome& outcome)
{
    outcome.state = State::notReserved;
    outcome.reason = AccountError::unauthorized().text();
    outcome.refusal = ChargeResult::Refusal::signedOut;
}

// For what was never paid for, and so is not free whatever its pixels are.
qint64 leastCost(const ExportRun& run)
{
    if (run.services.paidMeanwhile && !run.services.paidMeanwhile().isEmpty())
        return 0;
    return exportCreditCost * std::ranges::count_if(run.request.items, [](const auto& item) {
               return item.paidRenderFingerprints.isEmpty();
           });
}

QCoro::Task<bool> isOutOfReach(SharedRun run)
{
    const QPointer<AccountSession> account = run->services.account;
    const qint64 price = run->request.price.value_or(0);
    const qint64 least = leastCost(*run);
    const auto isShort = [&] {
        return account && account->isAuthenticated() && account->account().balance < least;
    };
    if (!isShort() || price <= account->account().balance)
        co_return false;
    // Some may have been bought elsewhere meanwhile.
    QCoro::Task<bool> refreshing = account->refreshSilently();
    co_await std::move(refreshing);
    co_return isShort();
}

QCoro::Task<> chargeAndWrite(SharedRun run)
{
    ExportOutcome& outcome = run->outcome;
    const QList<RenderedOutput> unpaid = unpaidOutputsOf(*run);
    outcome.cost = exportCreditCost * unpaid.size();
    const QPointer<AccountSession> account = run->services.account;
    const QPointer<CreditJournal> journal = run->services.journal;
    QString payer = run->request.payer;
    if (payer.isEmpty() && account)
        payer = account->accountKey();
    if (outcome.cost > 0 && account && account->account().balance < outcome.cost) {
        // Some may have been bought elsewhere meanwhile.
        QCoro::Task<bool> refreshing = account->refreshSilently();
        co_await std::move(refreshing);
    }
    const bool isSignedIn = account && !payer.isEmpty() && account->accountKey() == payer;
    if (!journal || (outcome.cost > 0 && !isSignedIn)) {
        refuse(outcome);
        co_return;
    }
    if (outcome.cost > 0 && account->account().balance < outcome.cost) {
        outcome.state = State::tooFewCredits;
        co_return;
    }
    if (run->isStopped()) {
        outcome.state = State::stopped;
        co_return;
    }
    run->progress(outcome.cost > 0 ? Stage::charging : Stage::writing, 0);
    if (outcome.cost > 0 && run->control->charging)
        run->control->charging(outcome.cost);
    const ChargedOperation operation = chargeOf(run, unpaid);
    QCoro::Task<ChargeResult> charging = journal->run(operation);
    const ChargeResult result = co_await std::move(charging);
    take(outcome, *run, result);
    // After a refusal too: the balance that is known was another.
    const bool isNews = outcome.isDone() || outcome.refusal == ChargeResult::Refusal::tooFewCredits;
    if (account && isNews)
        account->refreshSilently();
}

// Removing a thousand files takes a while.
QFuture<void> emptied(const std::shared_ptr<ExportControl>& control)
{
    return runOnWorker(
        [staging = std::exchange(control->staging, nullptr)]() mutable { staging.reset(); });
}

QCoro::Task<ExportOutcome> runShared(SharedRun run)
{
    ExportOutcome& outcome = run->outcome;
    QCoro::Task<bool> asking = isOutOfReach(run);
    if (co_await std::move(asking)) {
        outcome.state = State::tooFewCredits;
        outcome.cost = *run->request.price;
        const ExportOutcome refused = outcome;
        co_return refused;
    }
    QCoro::Task<> rendering = renderAll(run);
    co_await std::move(rendering);
    if (run->isStopped()) {
        outcome.state = State::stopped;
    } else if (run->isFailed) {
        outcome.state = State::notPrepared;
    } else {
        addressAll(*run);
        QCoro::Task<> charging = chargeAndWrite(run);
        co_await std::move(charging);
    }
    QFuture<void> emptying = emptied(run->control);
    co_await emptying;
    const ExportOutcome ended = run->outcome;
    co_return ended;
}

QString onePicture(bool isSingle)
{
    return isSingle ? u"esta imagen"_s : u"estas imágenes"_s;
}

}    // namespace

QString ExportOutcome::sentence() const
{
    const bool isSingle = kind == ExportKind::single;
    QString refund;
    if (isCharged && isRefundPending)
        refund = u" Los %1 créditos se devolverán al recuperar la conexión."_s.arg(cost);
    else if (isCharged)
        refund = u" Se han devuelto los %1 créditos."_s.arg(cost);
    const QString unrecorded = isRecorded ? QString() : u" El pago no se ha podido anotar."_s;
    switch (state) {
    case State::done:
        if (isSingle)
            return u"Exportado: "_s + QFileInfo(written.value(0)).fileName() +
                   (isRecorded ? QString() : u"."_s + unrecorded);
        return u"Exportadas %1 imágenes. "_s.arg(written.size()) +
               (isCharged ? u"Coste: %1 créditos."_s.arg(cost) : u"Sin coste adicional."_s) +
               unrecorded;
    case State::notPrepared:
        if (!reason.isEmpty())
            return reason;
        return isSingle ? u"No se pudo preparar la imagen para descargar."_s
                        : u"No se pudieron preparar todas las imágenes para descargar."_s;
    case State::tooFewCredits:
        return u"Necesitas %1 créditos para descargar %2."_s.arg(cost).arg(onePicture(isSingle));
    case State::notReserved:
        if (!isRefundPending)
            return reason;
        return reason + u" Si se habían descontado, los %1 créditos se devolverán al recuperar la "
                        "conexión."_s.arg(cost);
    case State::notWritten:
        return (isSingle ? u"No se pudo guardar el archivo."_s
                         : u"No se pudieron guardar todas las imágenes."_s) +
               refund;
    case State::stopped:
        return u"Exportación detenida."_s + refund;
    }
    Q_UNREACHABLE();
}

QCoro::Task<ExportOutcome> runExport(ExportRequest request, ExportServices services,
                                     std::shared_ptr<ExportControl> control)
{
    const auto run = std::make_shared<ExportRun>();
    run->outcome.kind = request.kind;
    run->request = std::move(request);
    run->services = std::move(services);
    run->control = std::move(control);
    return runShared(run);
}
