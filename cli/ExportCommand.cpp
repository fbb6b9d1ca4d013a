#include "cli/ExportCommand.h"

#include "account/ServiceConfiguration.h"
#include "cli/ExportOptions.h"
#include "cli/ExportReport.h"
#include "cli/shared/AccountConnection.h"
#include "cli/shared/CommandBatch.h"
#include "cli/shared/ExitStatus.h"
#include "cli/shared/Interrupt.h"
#include "cli/shared/OutputFolder.h"
#include "cli/shared/PaidRenders.h"
#include "platform/Memory.h"
#include "platform/UserFolders.h"
#include "platform/Workers.h"
#include "studio/PhotoImport.h"
#include "studio/export/ExportPaths.h"
#include "studio/publish/PublishChecks.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QScopeGuard>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

// The readable photos, with the files they are exported to.
struct PreparedBatch {
    PublicationItems items;
    QStringList destinations;    // one per item
    bool lacksTexts = false;     // --texts was given, but none of its rows fits a readable photo
};

QStringList pathsOf(const QList<QUrl>& photos)
{
    QStringList paths;
    for (const QUrl& photo : photos)
        paths.append(photo.toLocalFile());
    return paths;
}

QStringList photosOf(const PreparedBatch& batch)
{
    QStringList photos;
    for (const PublicationItem& item : batch.items)
        photos.append(item.image.path);
    return photos;
}

// One run of the command: import, price, export.
class ExportRun {
public:
    ExportRun(const ExportOptions& options, const ServiceConfiguration& configuration)
        : m_options(options), m_report(options.isJson),
          m_connection(configuration, [this](const QString& sentence) { m_report.tell(sentence); })
    {
        m_watch.start();
        m_look.callOnTimeout([this] { lookForInterrupt(); });
    }

    int run()
    {
        if (const auto refused = signIn())
            return ended(*refused, pathsOf(m_options.photos));
        // Refunds come first, because the balance is compared with the price below.
        m_connection.refundLeftOpen();
        m_interrupt.emplace();
        m_look.start(stopLatency);

        // Reads only the headers, which are enough for the price, so that each photo is decoded
        // only once: when it is drawn.
        const auto looked = importPhotos(m_options.photos, PhotoImport::Look::header);
        if (!looked)
            return ended(stopped(), pathsOf(m_options.photos));
        PreparedBatch batch = prepared(looked->items);
        if (batch.lacksTexts && !batch.items.isEmpty()) {
            ExportOutcome outcome;
            outcome.state = ExportOutcome::State::notPrepared;
            outcome.reason = u"Ninguna fila de los textos corresponde a una foto legible."_s;
            return ended(outcome, photosOf(batch));
        }
        const qint64 balance = m_connection.session().account().balance;
        auto price = priceOf(batch.items);
        // If the credits do not suffice, leaves out the photos that cannot be decoded, which cost
        // nothing. If the new price is still too high, the export ends before anything is drawn.
        if (price && !m_options.isDryRun && price->credits() > balance)
            price = leaveOutUnreadable(batch) ? priceOf(batch.items) : std::nullopt;
        if (!price)
            return ended(stopped(), photosOf(batch));
        if (m_options.isDryRun) {
            m_report.priceAlone(*price, balance);
            return m_report.isAnyFailed() || batch.items.isEmpty() ? exitSomeFailed : exitDone;
        }
        if (batch.items.isEmpty()) {
            ended({}, {});
            return exitSomeFailed;
        }
        const QString notice = noticeOfExport(batch.items);
        if (price->unpaid > 0 && !notice.isEmpty())
            m_report.tell(notice);
        m_report.price(*price);
        return exported(batch, *price);
    }

private:
    std::optional<ExportOutcome> signIn()
    {
        const auto refusal = m_connection.signIn();
        if (!refusal)
            return {};
        ExportOutcome refused;
        refused.state = ExportOutcome::State::notReserved;
        refused.refusal = refusal->refusal;
        refused.reason = refusal->reason;
        return refused;
    }

    void lookForInterrupt()
    {
        const bool isStopped = m_interrupt->flag();
        if (isStopped && !m_export->stop)
            m_report.tell(u"Deteniendo la exportación…"_s);
        m_import->stop = m_export->stop = isStopped;
    }

    static ExportOutcome stopped()
    {
        ExportOutcome outcome;
        outcome.state = ExportOutcome::State::stopped;
        return outcome;
    }

    std::optional<PhotoImport::Imported> importPhotos(const QList<QUrl>& photos,
                                                      PhotoImport::Look look)
    {
        m_import->progressed = [this](const PhotoImport::Progress& progress) {
            m_report.showProgress(u"Leyendo imagen"_s, progress.looked, progress.total);
        };
        return QCoro::waitFor(PhotoImport::importPhotos(photos, m_photos, m_import, look));
    }

    // Decodes the photos and drops the unreadable ones. False when interrupted.
    bool leaveOutUnreadable(PreparedBatch& batch)
    {
        QList<QUrl> photos;
        for (const PublicationItem& item : batch.items)
            photos.append(item.url);
        const auto looked = importPhotos(photos, PhotoImport::Look::picture);
        if (!looked)
            return false;
        PreparedBatch readable;
        for (qsizetype i = 0; i < photos.size(); ++i) {
            // Index of the next item in `looked`, whose items are in the order of `photos`.
            const qsizetype next = readable.items.size();
            if (next == looked->items.size() || looked->items[next].url != photos[i]) {
                m_report.unreadable(photos[i].toLocalFile());
                continue;
            }
            readable.items.append(batch.items[i]);
            readable.destinations.append(batch.destinations[i]);
        }
        batch = readable;
        return true;
    }

    // Output names follow from all photos, readable or not, so that an unreadable photo does not
    // change the names of the others.
    PreparedBatch prepared(const PublicationItems& accepted)
    {
        const QStringList paths = exportPaths(m_options.photos, m_options.folder);
        m_payer = m_connection.session().accountKey();
        const CommandBatch found = commandBatch(
            m_options, accepted, paidRenders(m_connection.preferences(), m_payer),
            {.unreadable = [this](const QString& photo) { m_report.unreadable(photo); },
             .rowFailed = [this](const RowProblem& problem) { m_report.rowFailed(problem); }});
        PreparedBatch batch;
        batch.items = found.items;
        batch.lacksTexts = found.lacksTexts;
        for (const qsizetype index : found.photos) {
            const QUrl& photo = m_options.photos[index];
            if (!paths[index].endsWith(filenameOf(photo) + u"-publicacion.png"_s))
                m_report.renamed(photo.toLocalFile(), paths[index]);
            batch.destinations.append(paths[index]);
        }
        return batch;
    }

    // The price as known before drawing; it falls if an image turns out to have the same pixels as
    // a paid one. Returns nothing when interrupted.
    std::optional<ExportPrice> priceOf(const PublicationItems& items) const
    {
        const auto unpaid =
            unpaidRenders(items, m_options.format, [this] { return m_interrupt->flag().load(); });
        if (!unpaid)
            return {};
        return ExportPrice{.images = items.size(), .unpaid = *unpaid};
    }

    int exported(PreparedBatch& batch, const ExportPrice& price)
    {
        const OutputFolder folder(m_options.folder);
        if (!folder.isThere()) {
            m_report.tell(u"No se puede crear la carpeta «%1»."_s.arg(m_options.folder));
            ExportOutcome outcome;
            outcome.state = ExportOutcome::State::notWritten;
            return ended(outcome, photosOf(batch));
        }
        ExportRequest request;
        request.items = batch.items;
        request.destinations = batch.destinations;
        request.format = m_options.format;
        request.jobs = m_options.jobs;
        request.price = price.credits();
        const ExportServices services{.photos = m_photos,
                                      .stagingPlace = stagingPlace(),
                                      .charge = chargeServices(m_connection, m_payer, batch.items)};
        m_export->progressed = [this](const ExportProgress& progress) { show(progress); };
        m_export->leftOut = [this, &batch](const QString& file) {
            const qsizetype index = batch.destinations.indexOf(file);
            m_report.unreadable(batch.items[index].image.path);
            batch.items.removeAt(index);
            batch.destinations.removeAt(index);
        };
        m_export->charging = [this, &batch, &price](qint64 credits) {
            if (batch.items.size() < price.images)
                m_report.price({batch.items.size(), credits / exportCreditCost});
        };
        m_export->waiting = [this] { m_report.tell(waitsForPayment); };
        m_export->wrote = [this, &batch](const QString& file, const QString& reason) {
            const qsizetype index = batch.destinations.indexOf(file);
            const QString photo = batch.items[index].image.path;
            if (reason.isEmpty())
                m_report.wrote(photo, file);
            else
                m_report.unwritten(photo, file, reason);
        };
        const ExportOutcome outcome = QCoro::waitFor(runExport(request, services, m_export));
        return ended(outcome, notReached(outcome, batch));
    }

    // The photos that the export did not reach. If the staging folder was full, reports them itself
    // and returns none.
    QStringList notReached(const ExportOutcome& outcome, const PreparedBatch& batch)
    {
        // The first items' files were written, or could not be, and have been reported.
        QStringList photos = photosOf(batch).mid(outcome.written.size() + outcome.unwritten.size());
        if (outcome.isStagingFailed)
            m_report.unprepared(std::exchange(photos, {}), stagingPlace());
        return photos;
    }

    void show(const ExportProgress& progress)
    {
        const bool isWriting = progress.stage == ExportProgress::Stage::writing;
        if (progress.stage != ExportProgress::Stage::charging) {
            m_report.showProgress(isWriting ? u"Guardando imagen"_s : u"Preparando imagen"_s,
                                  progress.done, progress.total);
        }
    }

    int ended(const ExportOutcome& outcome, const QStringList& notReached)
    {
        using State = ExportOutcome::State;
        m_report.notReached(notReached);
        m_report.end(outcome, double(m_watch.elapsed()) / 1000, peakMemory());
        switch (outcome.state) {
        case State::done:
            return m_report.isAnyFailed() || !outcome.isRecorded ? exitSomeFailed : exitDone;
        case State::tooFewCredits:
            return exitTooFewCredits;
        case State::notReserved:
            return statusOf(outcome.refusal);
        case State::stopped:
            return exitInterrupted;
        case State::notPrepared:
        case State::notWritten:
            return exitSomeFailed;
        }
        Q_UNREACHABLE();
    }

    static constexpr std::chrono::milliseconds stopLatency{30};
    static constexpr qint64 pictureBudget = qint64(1) << 20;    // bytes; no pictures are shown

    const ExportOptions& m_options;
    ExportReport m_report;
    AccountConnection m_connection;
    const std::shared_ptr<PhotoCache> m_photos =
        std::make_shared<PhotoCache>(thumbnailFolder(), pictureBudget, pictureBudget);
    const std::shared_ptr<PhotoImport::Control> m_import = std::make_shared<PhotoImport::Control>();
    const std::shared_ptr<ExportControl> m_export = std::make_shared<ExportControl>();
    std::optional<Interrupt> m_interrupt;
    QTimer m_look;      // polls m_interrupt
    QString m_payer;    // key of the account that the price is for
    QElapsedTimer m_watch;
};

}    // namespace

int runExport(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    const auto asked = exportOptions(arguments);
    if (const int* status = std::get_if<int>(&asked))
        return *status;
    if (!configuration.problem.isEmpty()) {
        tellOfExport(configuration.problem);
        return exitWrongUse;
    }
    keepFreedMemory();
    // The workers must finish before the application object is destroyed: drawing needs it.
    const auto finish = qScopeGuard(&finishWorkers);
    return ExportRun(std::get<ExportOptions>(asked), configuration).run();
}
