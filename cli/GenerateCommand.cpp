#include "cli/GenerateCommand.h"

#include "account/ServiceConfiguration.h"
#include "cli/CopySheet.h"
#include "cli/GenerateOptions.h"
#include "cli/StoredCopies.h"
#include "cli/shared/AccountConnection.h"
#include "cli/shared/Interrupt.h"
#include "cli/shared/Terminal.h"
#include "copygen/LocalEngine.h"
#include "model/JsonMapping.h"
#include "model/PlainText.h"
#include "studio/PhotoImport.h"
#include "studio/copy/CloudCopy.h"
#include "studio/copy/CopyMerge.h"
#include "studio/copy/LocalCopyWriter.h"

#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

struct CopyLine {
    QString photo;
    std::optional<QString> title, subtitle, tagline, callToAction, publicationCaption;
    bool reused = false;    // written for an earlier command
    std::optional<QString> error;
};

struct CopySummaryLine {
    QString outcome, message;
    int written = 0, reused = 0, failed = 0;
    qint64 cost = 0;    // credits
};

}    // namespace

template <>
struct json::JsonFields<CopyLine> {
    static constexpr auto fields =
        std::tuple{required("photo", &CopyLine::photo),
                   optional("title", &CopyLine::title),
                   optional("subtitle", &CopyLine::subtitle),
                   optional("tagline", &CopyLine::tagline),
                   optional("callToAction", &CopyLine::callToAction),
                   optional("publicationCaption", &CopyLine::publicationCaption),
                   required("reused", &CopyLine::reused),
                   optional("error", &CopyLine::error)};
};

template <>
struct json::JsonFields<CopySummaryLine> {
    static constexpr auto fields = std::tuple{required("outcome", &CopySummaryLine::outcome),
                                              required("message", &CopySummaryLine::message),
                                              required("written", &CopySummaryLine::written),
                                              required("reused", &CopySummaryLine::reused),
                                              required("failed", &CopySummaryLine::failed),
                                              required("cost", &CopySummaryLine::cost)};
};

namespace {

constexpr std::chrono::milliseconds stopLatency{30};
constexpr qint64 pictureBudget = qint64(1) << 20;    // bytes; no pictures are shown
constexpr int mostFailuresInRow = 3;

// One run of the command: import, then the copy of each photo in turn.
class GenerateRun {
public:
    GenerateRun(const GenerateOptions& options, const ServiceConfiguration& configuration)
        : m_options(options), m_connection(configuration, &tellOfGeneration)
    {
        m_look.callOnTimeout([this] {
            if (m_interrupt->flag() && !m_stop.stop_requested()) {
                m_import->stop = true;
                m_stop.request_stop();
            }
        });
        m_outcome.mode = options.mode;
    }

    int run()
    {
        if (const auto status = prepared())
            return *status;
        const bool isSheetWanted = !m_options.csv.isEmpty() || !m_options.isJson;
        if (const QString problem =
                isSheetWanted ? m_sheet.emplace().open(m_options.csv) : QString();
            !problem.isEmpty()) {
            tellOfGeneration(u"no se puede escribir «%1»: %2."_s.arg(m_options.csv, problem));
            return exitWrongUse;
        }
        m_interrupt.emplace();
        m_look.start(stopLatency);
        const auto imported = QCoro::waitFor(PhotoImport::importPhotos(
            m_options.photos, m_photos, m_import, PhotoImport::Look::header));
        if (!imported)
            return ended();
        tellUnreadable(imported->items);
        if (const auto status = plan(imported->items))
            return *status;
        for (const PublicationItem& item : imported->items) {
            if (m_stop.stop_requested() || m_outcome.state != CopyOutcome::State::done)
                break;
            write(item);
        }
        return ended();
    }

private:
    using Status = std::optional<int>;

    bool isCloud() const { return m_options.mode == CopyGenerationMode::cloud; }
    CopyRequest requestOf(const PublicationItem& item) const
    {
        return {m_options.mode, item.image.digest, m_options.objective, m_options.format};
    }

    // Checks what writes. Returns an exit status on failure.
    Status prepared()
    {
        removeOldCopies(m_connection.preferences());
        if (!isCloud()) {
            LocalEngine& engine = m_engine.emplace();
            m_local = localCopyWriter(engine.manager, engine.service);
            const QString reason = m_local.whyNotReady();
            if (reason.isEmpty())
                return {};
            tellOfGeneration(reason);
            return exitSomeFailed;
        }
        if (const auto refusal = m_connection.signIn()) {
            tellOfGeneration(refusal->reason);
            return statusOf(refusal->refusal);
        }
        m_connection.refundLeftOpen();
        return {};
    }

    // Refuses what the balance does not suffice for, and prepares the sheet.
    Status plan(const PublicationItems& items)
    {
        QStringList unwritten;
        m_outcome.images = int(items.size());
        for (const PublicationItem& item : items) {
            if (!storedCopy(m_connection.preferences(), requestOf(item)))
                unwritten.append(item.url.fileName());
        }
        if (isCloud() && !unwritten.isEmpty() && !canPayFor(unwritten.size())) {
            m_outcome.state = CopyOutcome::State::refused;
            return ended();
        }
        return m_options.csv.isEmpty() ? Status() : preparedSheet(unwritten);
    }

    bool canPayFor(qint64 images)
    {
        AccountSession& account = m_connection.session();
        const qint64 price = images * account.cloudCopyConfig().costCredits;
        m_outcome.reason = whyNoCloudCopy(&account);
        if (m_outcome.reason.isEmpty() && account.balance() < price) {
            m_outcome.reason =
                u"Necesitas %1 créditos para generar %2 imagen(es)."_s.arg(price).arg(images);
            m_outcome.remedy = CopyOutcome::Remedy::purchase;
        }
        return m_outcome.reason.isEmpty();
    }

    // Removes the rows that were written for another objective, format or photo of the same name.
    Status preparedSheet(const QStringList& unwritten)
    {
        PreferencesStore& preferences = m_connection.preferences();
        const SheetOrder order{m_options.csv, requestOf({})};
        const bool isSameOrder = isLastOrder(preferences, order);
        // A sheet belongs to no order while all its rows are removed: those that a killed command
        // leaves are not taken for rows of either order.
        if (!isSameOrder && !forgetLastOrder(preferences, order)) {
            tellOfGeneration(u"no se puede anotar para qué es «%1»: %2."_s.arg(
                m_options.csv, preferences.reason()));
            return exitSomeFailed;
        }
        const QString problem =
            isSameOrder ? m_sheet->removeRows(unwritten) : m_sheet->removeAllRows();
        if (!problem.isEmpty()) {
            tellOfGeneration(u"no se puede escribir «%1»: %2."_s.arg(m_options.csv, problem));
            return exitSomeFailed;
        }
        keepLastOrder(preferences, order);
        return {};
    }

    void tellUnreadable(const PublicationItems& items)
    {
        QSet<QUrl> accepted;
        for (const PublicationItem& item : items)
            accepted.insert(item.url);
        for (const QString& photo : m_options.unreachable)
            fail(photo, u"No se pudo leer la foto."_s);
        for (const QUrl& photo : m_options.photos) {
            if (!accepted.contains(photo))
                fail(photo.toLocalFile(), u"No se pudo leer la foto."_s);
        }
    }

    void write(const PublicationItem& item)
    {
        if (const auto stored = storedCopy(m_connection.preferences(), requestOf(item))) {
            ++m_reused;
            return deliver(item, *stored, true);
        }
        if (!m_options.isJson)
            print(stderr, u"Generando %1"_s.arg(item.url.fileName()));
        isCloud() ? writeInCloud(item) : writeHere(item);
    }

    void writeHere(const PublicationItem& item)
    {
        const GeneratedCopy copy = QCoro::waitFor(
            m_local.write(item.url, m_options.objective, m_options.format, m_stop.get_token()));
        if (m_stop.stop_requested())
            return;
        if (m_local.isMissingAnswer(copy)) {
            fail(item.url.toLocalFile(), copy.subtitle);
            return failInRow();
        }
        m_failuresInRow = 0;
        storeCopy(m_connection.preferences(), requestOf(item), copy);
        ++m_outcome.written;
        deliver(item, copy, false);
    }

    void writeInCloud(const PublicationItem& item)
    {
        using State = CloudCopyResult::State;
        CloudCopySteps steps;
        steps.working = [](const QString&) {};
        steps.isWanted = [] { return true; };
        steps.record = [this, request = requestOf(item)](const GeneratedCopy& copy,
                                                         const Strike& strike) {
            return storeCopy(m_connection.preferences(), request, copy, strike);
        };
        const CloudCopyServices services{
            &m_connection.session(), &m_connection.journal(), {&m_connection.api()}};
        const CloudCopyResult result = QCoro::waitFor(
            writeCloudCopy({item.url, m_options.objective, m_options.format, m_stop.get_token()},
                           services, steps));
        switch (result.state) {
        case State::written:
            m_failuresInRow = 0;
            ++m_outcome.written;
            m_outcome.cost += result.cost;
            return deliver(item, result.copy, false);
        case State::cancelled:
        case State::unwanted:
            m_outcome.reason = result.reason;
            return;
        case State::failed:
            fail(item.url.toLocalFile(), result.reason);
            return failInRow();
        case State::impossible:
            fail(item.url.toLocalFile(), result.reason);
            m_outcome.reason = result.reason;
            m_outcome.remedy = result.remedy;
            m_outcome.state = CopyOutcome::State::failing;
            return;
        }
    }

    void deliver(const PublicationItem& item, const GeneratedCopy& copy, bool isReused)
    {
        PublicationItem filled = item;
        applyCopy(filled, copy, textsOf(filled));
        const bool isThere = isReused && m_sheet && m_sheet->takeRow(item.url.fileName());
        if (m_sheet && !isThere && !m_sheet->append(filled)) {
            m_outcome.state = CopyOutcome::State::failing;
            m_outcome.reason = u"No se pudo escribir la fila de «%1». Sus textos están guardados: "
                               "repite la orden cuando haya sitio."_s.arg(item.url.fileName());
            return fail(item.url.toLocalFile(), m_outcome.reason);
        }
        if (m_options.isJson) {
            printJson(CopyLine{.photo = item.url.toLocalFile(),
                               .title = copy.title,
                               .subtitle = copy.subtitle,
                               .tagline = copy.tagline,
                               .callToAction = copy.callToAction,
                               .publicationCaption = copy.publicationCaption,
                               .reused = isReused,
                               .error = {}});
        }
    }

    void fail(const QString& photo, const QString& error)
    {
        ++m_failed;
        print(stderr, u"%1: %2"_s.arg(printable(photo), error));
        if (m_options.isJson) {
            CopyLine line;
            line.photo = photo;
            line.error = error;
            printJson(line);
        }
    }

    void failInRow()
    {
        if (++m_failuresInRow < mostFailuresInRow)
            return;
        m_outcome.isThreeInRow = true;
        m_outcome.state = CopyOutcome::State::failing;
    }

    template <typename Line>
    static void printJson(const Line& line)
    {
        print(stdout, QString::fromUtf8(json::written(line)));
    }

    int ended()
    {
        if (m_stop.stop_requested())
            m_outcome.state = CopyOutcome::State::cancelled;
        m_outcome.unanswered = m_failed;
        QString sentence = m_outcome.sentence();
        if (m_reused > 0) {
            sentence += u' ' + counted(m_reused, u"ya estaba generada.", u"ya estaban generadas.");
        }
        print(stderr, sentence);
        if (m_options.isJson) {
            printJson(CopySummaryLine{.outcome = wordOf(m_outcome.state),
                                      .message = sentence,
                                      .written = m_outcome.written,
                                      .reused = m_reused,
                                      .failed = m_failed,
                                      .cost = m_outcome.cost});
        }
        if (m_stop.stop_requested())
            return exitInterrupted;
        switch (m_outcome.remedy) {
        case CopyOutcome::Remedy::signIn:
            return exitNotSignedIn;
        case CopyOutcome::Remedy::purchase:
            return exitTooFewCredits;
        case CopyOutcome::Remedy::none:
            break;
        }
        const bool isAllThere =
            m_failed == 0 && m_outcome.state == CopyOutcome::State::done && m_outcome.images > 0;
        return isAllThere ? exitDone : exitSomeFailed;
    }

    // Words of the JSON output, which other programs read: they must not change.
    static QString wordOf(CopyOutcome::State state)
    {
        switch (state) {
        case CopyOutcome::State::done:
            return u"done"_s;
        case CopyOutcome::State::cancelled:
            return u"stopped"_s;
        case CopyOutcome::State::refused:
            return u"refused"_s;
        case CopyOutcome::State::failing:
            return u"failing"_s;
        }
        Q_UNREACHABLE();
    }

    const GenerateOptions& m_options;
    AccountConnection m_connection;
    std::optional<LocalEngine> m_engine;    // in local mode
    LocalCopyWriter m_local;
    const std::shared_ptr<PhotoCache> m_photos =
        std::make_shared<PhotoCache>(thumbnailFolder(), pictureBudget, pictureBudget);
    const std::shared_ptr<PhotoImport::Control> m_import = std::make_shared<PhotoImport::Control>();
    std::optional<CopySheet> m_sheet;
    std::optional<Interrupt> m_interrupt;
    QTimer m_look;    // polls m_interrupt
    std::stop_source m_stop;
    CopyOutcome m_outcome;
    int m_reused = 0, m_failed = 0;    // photos
    int m_failuresInRow = 0;
};

}    // namespace

int runGenerate(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    const auto asked = generateOptions(arguments);
    if (const int* status = std::get_if<int>(&asked))
        return *status;
    if (!configuration.problem.isEmpty()) {
        tellOfGeneration(configuration.problem);
        return exitWrongUse;
    }
    return GenerateRun(std::get<GenerateOptions>(asked), configuration).run();
}
