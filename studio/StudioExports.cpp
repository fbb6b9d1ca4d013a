#include "studio/StudioExports.h"

#include "studio/export/ExportPaths.h"

#include "account/AccountSession.h"
#include "account/CreditJournal.h"
#include "platform/StagingFolder.h"
#include "platform/Workers.h"
#include "studio/batch/BatchSelection.h"
#include "studio/publish/PublishChecks.h"

#include <QFileInfo>

#include <numeric>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using namespace std::chrono_literals;

constexpr auto costDebounce = 15ms;
// A displayed price is removed if the new one takes longer than this.
constexpr auto costPatience = 90ms;

StatusKind kindOf(const ExportOutcome& outcome)
{
    switch (outcome.state) {
    case ExportOutcome::State::done:
        return StatusKind::done;
    case ExportOutcome::State::stopped:
        return StatusKind::note;
    case ExportOutcome::State::notPrepared:
    case ExportOutcome::State::notWritten:
        return StatusKind::error;
    default:
        return StatusKind::warning;
    }
}

QList<QUrl> filesOf(const PublicationItems& items)
{
    QList<QUrl> files;
    for (const PublicationItem& item : items)
        files.append(item.url);
    return files;
}

}    // namespace

StudioExports::StudioExports(std::shared_ptr<PhotoCache> photos, const OutputSize& outputSize,
                             const ChargeServices& payment)
    : m_photos(std::move(photos)), m_outputSize(outputSize), m_costs(m_photos, outputSize),
      m_payment(payment)
{
    m_costsAreLate.setSingleShot(true);
    m_costsAreLate.setInterval(costPatience);
    connect(&m_costs, &RenderCosts::changed, this, &StudioExports::showCosts);
    connect(&m_costsAreLate, &QTimer::timeout, this, [this] {
        m_displayedExportCurrentCost = m_displayedExportAllCost = std::nullopt;
        Q_EMIT costsChanged();
        showCosts();    // one of the two prices may already be known
    });
}

StudioExports::~StudioExports()
{
    if (!m_control)
        return;
    m_control->stop = true;
    m_control->progressed = {};
    m_control->charging = {};
    m_control->waiting = {};
    m_control->staging.reset();
}

void StudioExports::setAccount(AccountSession& account)
{
    m_payment.account = &account;
}

void StudioExports::setJournal(CreditJournal& journal, const QString& stagingPlace)
{
    m_payment.journal = &journal;
    m_stagingPlace = stagingPlace;
    connect(&journal, &CreditJournal::refunded, this, [this](qint64 credits, const QString& what) {
        tellLater(refundSentence(credits, what), StatusKind::done);
    });
    connect(&journal, &CreditJournal::lost, this, [this](qint64 credits, const QString& what) {
        tellLater(lossSentence(credits, what), StatusKind::warning);
    });
    runOnWorker([stagingPlace] { StagingFolder::removeLeftovers(stagingPlace); });
}

// Emits a sentence about a refund or a loss of credits. During an export or the restore, keeps it
// until the end, so that it does not replace the sentence about the outcome.
void StudioExports::tellLater(const QString& sentence, StatusKind kind)
{
    m_pendingSentences += u' ' + sentence;
    if (m_isTelling && !m_control)
        Q_EMIT told(std::exchange(m_pendingSentences, {}).mid(1), kind, {});
}

void StudioExports::startTelling()
{
    m_isTelling = true;
    tellOfRefund();
}

void StudioExports::tellOfRefund()
{
    if (!m_pendingSentences.isEmpty())
        Q_EMIT toldMore(std::exchange(m_pendingSentences, {}));
}

void StudioExports::follow(const Batch& batch)
{
    m_costs.scheduleRenderCostRefresh(batch, costDebounce);
}

// Updates the displayed prices. A price that is not known yet keeps its old value for
// `costPatience`.
void StudioExports::showCosts()
{
    const Batch& batch = m_costs.batch();
    const QList<int> current = batch.currentItem() ? QList<int>{batch.selectedIndex} : QList<int>();
    const auto currentCost = m_costs.renderCreditCost(current);
    const auto allCost = m_costs.renderCreditCost(exportIndices());
    const auto before = std::pair(m_displayedExportCurrentCost, m_displayedExportAllCost);
    if (currentCost)
        m_displayedExportCurrentCost = currentCost;
    if (allCost)
        m_displayedExportAllCost = allCost;
    if (currentCost && allCost)
        m_costsAreLate.stop();
    else if (!m_costsAreLate.isActive() && (before.first || before.second))
        m_costsAreLate.start();
    const bool isNew = before != std::pair(m_displayedExportCurrentCost, m_displayedExportAllCost);
    if (std::exchange(m_shownPaidVersion, m_costs.paidVersion()) != m_costs.paidVersion() || isNew)
        Q_EMIT costsChanged();
}

QList<int> StudioExports::exportIndices() const
{
    const Batch& batch = m_costs.batch();
    if (batch.selectedItemIDs.size() > 1)
        return BatchSelection::selectedIndicesForBatch(batch);
    QList<int> all(batch.items.size());
    std::iota(all.begin(), all.end(), 0);
    return all;
}

// The indices of items in the batch. If one is gone, tells the user and returns nothing: the batch
// may have been replaced while the user chose the folder.
std::optional<QList<int>> StudioExports::indicesOf(const QList<QUuid>& items)
{
    QHash<QUuid, int> places;
    for (const PublicationItem& item : m_costs.batch().items)
        places.insert(item.id, int(places.size()));
    QList<int> indices;
    for (const QUuid& item : items) {
        if (!places.contains(item)) {
            Q_EMIT told(
                u"El lote ha cambiado mientras elegías dónde exportar: no se ha exportado nada."_s,
                StatusKind::warning, {});
            return std::nullopt;
        }
        indices.append(places.value(item));
    }
    return indices;
}

void StudioExports::exportItem(QUuid item, const QString& path)
{
    if (const auto indices = indicesOf({item}))
        start(ExportKind::single, *indices, {path});
}

void StudioExports::exportItems(const QList<QUuid>& items, const QString& folder)
{
    const auto indices = indicesOf(items);
    if (!indices)
        return;
    // Makes the paths for the whole batch, so that the name of a file does not depend on which
    // items are exported.
    const QStringList paths = exportPaths(filesOf(m_costs.batch().items), folder);
    QStringList destinations;
    for (const int index : *indices)
        destinations.append(paths[index]);
    start(ExportKind::batch, *indices, destinations);
}

void StudioExports::start(ExportKind kind, const QList<int>& indices,
                          const QStringList& destinations)
{
    if (m_control || indices.isEmpty())
        return;
    ExportRequest request;
    request.kind = kind;
    request.format = m_costs.batch().format;
    request.outputSize = m_outputSize;
    request.destinations = destinations;
    request.price = m_costs.renderCreditCost(indices);
    for (const int index : indices)
        request.items.append(m_costs.batch().items.mid(index, 1));
    const ExportServices services{
        .photos = m_photos, .stagingPlace = m_stagingPlace, .charge = m_payment};
    m_control = std::make_shared<ExportControl>();
    m_control->progressed = [this](const ExportProgress& progress) { showProgress(progress); };
    m_control->charging = [this](qint64 cost) {
        Q_EMIT working(u"Descontando %1 créditos..."_s.arg(cost));
    };
    m_control->waiting = [this] { Q_EMIT working(waitsForPayment); };
    showProgress({ExportProgress::Stage::rendering, 0, request.items.size()});
    // After the first step, which would hide it.
    const QString notice = noticeOfExport(request.items);
    if (request.price != 0 && !notice.isEmpty())
        Q_EMIT told(notice, StatusKind::warning, {});
    runToEnd(this, request, services, m_control);
}

QCoro::Task<> StudioExports::runToEnd(QPointer<StudioExports> self, ExportRequest request,
                                      ExportServices services,
                                      std::shared_ptr<ExportControl> control)
{
    QCoro::Task<ExportOutcome> running = runExport(request, services, control);
    ExportOutcome outcome;
    try {
        outcome = co_await std::move(running);
    } catch (const std::exception&) {
        outcome.state = ExportOutcome::State::notPrepared;    // out of memory
        outcome.kind = request.kind;
    }
    if (self)
        self->finish(outcome);
}

void StudioExports::finish(const ExportOutcome& outcome)
{
    m_control.reset();
    m_progress.reset();
    if (outcome.state == ExportOutcome::State::notPrepared)
        m_costs.lookAtPhotos();
    StatusLink link;
    if (outcome.isDone())
        link.folder = QFileInfo(outcome.written.value(0)).absolutePath();
    link.isPurchase = outcome.isShortOfCredits();
    Q_EMIT told(outcome.sentence(), kindOf(outcome), link);
    Q_EMIT changed();
    tellOfRefund();
}

void StudioExports::showProgress(const ExportProgress& progress)
{
    m_progress = progress;
    if (m_control && !m_control->stop && progress.stage != ExportProgress::Stage::charging) {
        const QString doing = progress.stage == ExportProgress::Stage::rendering
                                  ? u"Preparando imagen %1 de %2"_s
                                  : u"Guardando imagen %1 de %2"_s;
        Q_EMIT working(doing.arg(std::min(progress.done + 1, progress.total)).arg(progress.total));
    }
    Q_EMIT changed();
}

void StudioExports::stop()
{
    if (!m_control)
        return;
    m_control->stop = true;
    Q_EMIT working(u"Deteniendo la exportación…"_s);
}
