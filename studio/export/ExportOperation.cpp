#include "studio/export/ExportOperation.h"

#include "platform/AtomicFile.h"
#include "platform/StagingFolder.h"
#include "platform/Workers.h"
#include "studio/export/RenderLanes.h"

#include <QCoroFuture>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

// A picture in the staging folder, and the path of the file that it becomes.
struct PendingExport {
    QString destination;
    RenderedOutput output;
};

// State of one export, shared by its coroutines and its work on other threads.
struct ExportRun {
    ExportRequest request;
    ExportServices services;
    std::shared_ptr<ExportControl> control;
    ExportOutcome outcome;
    QList<PendingExport> pending;
    bool isWaiting = false;    // for another operation

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
using State = ExportOutcome::State;

// Removes unfinished files that exports killed earlier have left in the destination folders.
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

RenderOrder orderOf(const SharedRun& run)
{
    const ExportRequest& request = run->request;
    return {.items = request.items,
            .format = request.format,
            .outputSize = request.outputSize,
            .jobs = request.jobs,
            .leavesOutUnreadable = bool(run->control->leftOut),
            .file = [run](qsizetype index) {
                return run->control->staging->filePath(QString::number(index));
            }};
}

RenderWatch watchOf(const SharedRun& run)
{
    return {.isStopped = [run] { return run->isStopped(); },
            .progressed = [run](qsizetype done) { run->progress(Stage::rendering, done); }};
}

// Fills `run.pending` with the pictures and their destinations, or sets the outcome's state if the
// export cannot go on.
void address(ExportRun& run, const RenderedItems& rendered)
{
    if (rendered.failure) {
        run.outcome.failed = rendered.failedPhoto;
        run.outcome.isStagingFailed = rendered.failure == RenderFailure::file;
    }
    if (run.isStopped() || rendered.failure) {
        run.outcome.state = run.isStopped() ? State::stopped : State::notPrepared;
        return;
    }
    for (qsizetype i = 0; i < run.request.items.size(); ++i) {
        const QString& destination = run.request.destinations[i];
        if (const auto& output = rendered.outputs[std::size_t(i)])
            run.pending.append({destination, *output});
        else
            run.control->leftOut(destination);
    }
}

// Renders all items into a new staging folder. Unless that fails, `outcome.state` remains `done`.
QCoro::Task<> renderAll(SharedRun run)
{
    QFuture<std::shared_ptr<StagingFolder>> staging = stagingFor(run->services.stagingPlace);
    run->control->staging = co_await staging;
    QFuture<void> clearing = cleared(run);
    co_await clearing;
    RenderedItems rendered;
    if (run->control->staging->isUsable()) {
        const RenderOrder order = orderOf(run);
        const RenderWatch watch = watchOf(run);
        QCoro::Task<RenderedItems> rendering = renderItems(order, run->services.photos, watch);
        rendered = co_await std::move(rendering);
    } else {
        rendered.failure = RenderFailure::file;
    }
    address(*run, rendered);
}

// Writes the content of `from` to `to` and deletes `from`. Returns the system's error message;
// empty on success.
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

// Goes on after a file that could not be written. Returns whether all files were written.
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
        if (run->services.charge.journal && problem.isEmpty())
            run->services.charge.journal->reached("wrote");
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

bool isWanted(const ExportRun& run, qint64 cost)
{
    if (run.isStopped())
        return false;
    run.progress(cost > 0 ? Stage::charging : Stage::writing, 0);
    if (cost > 0 && run.control->charging)
        run.control->charging(cost);
    return true;
}

bool waitsForOthers(ExportRun& run)
{
    if (run.isStopped())
        return false;
    if (!std::exchange(run.isWaiting, true) && run.control->waiting)
        run.control->waiting();
    return true;
}

RenderAction actionOf(const SharedRun& run)
{
    return {.name = u"download"_s,
            .what = u"una exportación"_s,
            .isWanted = [run](qint64 cost) { return isWanted(*run, cost); },
            .waits = [run] { return waitsForOthers(*run); },
            .work = [run] { return writeAll(run); }};
}

State stateOf(const ExportRun& run, RenderCharge::State state)
{
    switch (state) {
    case RenderCharge::State::done:
        return State::done;
    case RenderCharge::State::tooFewCredits:
        return State::tooFewCredits;
    case RenderCharge::State::notReserved:
        return State::notReserved;
    case RenderCharge::State::notWanted:
        return State::stopped;
    case RenderCharge::State::failed:
        return run.outcome.unwritten.isEmpty() && run.isStopped() ? State::stopped
                                                                  : State::notWritten;
    }
    Q_UNREACHABLE();
}

QCoro::Task<> chargeAndWrite(SharedRun run)
{
    const RenderAction action = actionOf(run);
    QCoro::Task<RenderCharge> charging =
        chargeRenders(outputsOf(*run), action, run->services.charge);
    const RenderCharge charge = co_await std::move(charging);
    static_cast<Charge&>(run->outcome) = charge;
    run->outcome.state = stateOf(*run, charge.state);
}

QCoro::Task<ExportOutcome> runShared(SharedRun run)
{
    const qint64 price = run->request.price.value_or(0);
    QCoro::Task<bool> asking = isOutOfReach(run->request.items, price, run->services.charge);
    if (co_await std::move(asking)) {
        run->outcome.state = State::tooFewCredits;
        run->outcome.cost = price;
        const ExportOutcome refused = run->outcome;
        co_return refused;
    }
    QCoro::Task<> rendering = renderAll(run);
    co_await std::move(rendering);
    if (run->outcome.isDone()) {
        QCoro::Task<> charging = chargeAndWrite(run);
        co_await std::move(charging);
    }
    QFuture<void> emptying = emptied(std::exchange(run->control->staging, nullptr));
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
        return reservationNotice();
    case State::notWritten:
        return (isSingle ? u"No se pudo guardar el archivo."_s
                         : u"No se pudieron guardar todas las imágenes."_s) +
               refundNotice();
    case State::stopped:
        return u"Exportación detenida."_s + refundNotice();
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
