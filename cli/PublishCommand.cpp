#include "cli/PublishCommand.h"

#include "account/AccountAPI.h"
#include "cli/ExportReport.h"
#include "cli/PublishOptions.h"
#include "cli/shared/AccountConnection.h"
#include "cli/shared/CommandBatch.h"
#include "cli/shared/ExitStatus.h"
#include "cli/shared/Interrupt.h"
#include "cli/shared/PaidRenders.h"
#include "cli/shared/Terminal.h"
#include "model/JsonMapping.h"
#include "platform/Memory.h"
#include "platform/UserFolders.h"
#include "platform/Workers.h"
#include "studio/PhotoImport.h"
#include "studio/publish/PublishOperation.h"
#include "studio/publish/PublishSentences.h"
#include "studio/publish/SocialPublishing.h"

#include <QScopeGuard>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

struct CheckLine {
    QString kind, sentence;
    bool warning = true;
    std::optional<QString> photo;
};

struct PublishLine {
    QString outcome, message;
    QString network, placement;
    qint64 images = 0, unpaid = 0, cost = 0, balance = 0;
    std::optional<QString> url;
    bool refundPending = false;
    QList<CheckLine> checks;
};

}    // namespace

template <>
struct json::JsonFields<CheckLine> {
    static constexpr auto fields =
        std::tuple{required("kind", &CheckLine::kind), required("sentence", &CheckLine::sentence),
                   required("warning", &CheckLine::warning), optional("photo", &CheckLine::photo)};
};

template <>
struct json::JsonFields<PublishLine> {
    static constexpr auto fields =
        std::tuple{required("outcome", &PublishLine::outcome),
                   required("message", &PublishLine::message),
                   required("network", &PublishLine::network),
                   required("placement", &PublishLine::placement),
                   required("images", &PublishLine::images),
                   required("unpaid", &PublishLine::unpaid),
                   required("cost", &PublishLine::cost),
                   required("balance", &PublishLine::balance),
                   optional("url", &PublishLine::url),
                   required("refundPending", &PublishLine::refundPending),
                   required("checks", &PublishLine::checks)};
};

namespace {

using PublishState = PublishOutcome::State;

// Words of the JSON output, which other programs read: they must not change.
QString wordOf(PublishState state)
{
    switch (state) {
    case PublishState::done:
        return u"done"_s;
    case PublishState::notPrepared:
        return u"notPrepared"_s;
    case PublishState::unconfirmed:
        return u"unconfirmed"_s;
    case PublishState::tooFewCredits:
        return u"tooFewCredits"_s;
    case PublishState::notReserved:
        return u"notReserved"_s;
    case PublishState::failed:
        return u"failed"_s;
    case PublishState::unknown:
        return u"unknown"_s;
    case PublishState::stopped:
        return u"stopped"_s;
    }
    Q_UNREACHABLE();
}

QString wordOf(PublishCheckKind kind)
{
    switch (kind) {
    case PublishCheckKind::placeholder:
        return u"placeholder"_s;
    case PublishCheckKind::missingAnswer:
        return u"missingAnswer"_s;
    case PublishCheckKind::format:
        return u"format"_s;
    case PublishCheckKind::captionLength:
        return u"captionLength"_s;
    case PublishCheckKind::tags:
        return u"tags"_s;
    case PublishCheckKind::manyHashtags:
        return u"manyHashtags"_s;
    case PublishCheckKind::imageBytes:
        return u"imageBytes"_s;
    case PublishCheckKind::requestBytes:
        return u"requestBytes"_s;
    case PublishCheckKind::requestTime:
        return u"requestTime"_s;
    case PublishCheckKind::published:
        return u"published"_s;
    case PublishCheckKind::safeZone:
        return u"safeZone"_s;
    case PublishCheckKind::overflow:
        return u"overflow"_s;
    case PublishCheckKind::glyphs:
        return u"glyphs"_s;
    case PublishCheckKind::contrast:
        return u"contrast"_s;
    }
    Q_UNREACHABLE();
}

// Why nothing was begun, and with which exit status.
struct Refused {
    QString sentence;
    int status = exitSomeFailed;
};

// What the canvas finds about an item's texts on a picture as large as a tile of the window.
QList<TextWarning> textWarnings(const PublicationItem& item, SocialFormat format,
                                PhotoCache& photos)
{
    constexpr int width = 88;
    const QSize pixels(width, qRound(width / row(format).aspectRatio));
    return judgedItem(layOut(item, exportSize(format), designSize(format)), pixels,
                      photos.thumbnail({item.image.path, item.image.digest}))
        .warnings;
}

// One run of the command: connection, import, checks, price, publication.
class PublishCommandRun {
public:
    PublishCommandRun(const PublishOptions& options, const ServiceConfiguration& configuration)
        : m_options(options), m_report(options.isJson),
          m_connection(configuration, [this](const QString& sentence) { m_report.tell(sentence); })
    {
        m_line.network = rawValue(options.network);
        m_line.placement = rawValue(options.placement);
        m_look.callOnTimeout([this] { lookForInterrupt(); });
    }

    int run()
    {
        if (const auto refusal = m_connection.signIn())
            return refused({refusal->reason, statusOf(refusal->refusal)});
        m_connection.refundLeftOpen();
        m_interrupt.emplace();
        m_look.start(stopLatency);
        if (const auto refusal = refusalOfNetwork())
            return refused(*refusal);
        m_import->progressed = [this](const PhotoImport::Progress& progress) {
            m_report.showProgress(u"Leyendo imagen"_s, progress.looked, progress.total);
        };
        const auto looked = QCoro::waitFor(PhotoImport::importPhotos(
            m_options.photos, m_photos, m_import, PhotoImport::Look::picture));
        if (!looked)
            return stopped();
        m_payer = m_connection.session().accountKey();
        m_records = std::make_shared<PublishRecords>(m_connection.preferences(), m_payer,
                                                     m_connection.journal().programRun());
        const CommandBatch batch = commandBatch(
            m_options, looked->items, paidRenders(m_connection.preferences(), m_payer),
            {.unreadable = [this](const QString& photo) { m_report.unreadable(photo); },
             .rowFailed = [this](const RowProblem& problem) { m_report.rowFailed(problem); }});
        if (batch.items.isEmpty())
            return refused({u"No hay ninguna imagen que publicar."_s});
        if (batch.lacksTexts)
            return refused({u"Ninguna fila de los textos corresponde a una foto legible."_s});
        takeItems(batch.items);
        tellChecks();
        const auto unpaid =
            unpaidRenders(m_items, m_options.format, [this] { return m_interrupt->flag().load(); });
        if (!unpaid)
            return stopped();
        m_line.images = m_items.size();
        m_line.unpaid = *unpaid;
        m_line.cost = *unpaid * exportCreditCost;
        m_line.balance = m_connection.session().account().balance;
        const QString price = u"Coste: %1 créditos (sin pagar: %2 de %3)."_s.arg(
            QString::number(m_line.cost), QString::number(*unpaid),
            QString::number(m_items.size()));
        if (m_options.isDryRun) {
            end(u"dryRun"_s, price, stdout);
            return m_report.isAnyFailed() ? exitSomeFailed : exitDone;
        }
        m_report.tell(price);
        if (m_again) {
            m_line.cost = 0;
            end(wordOf(PublishState::unconfirmed), withWayOn(m_again->sentence), stderr);
            return exitSomeFailed;
        }
        return published();
    }

private:
    std::optional<Refused> refusalOfNetwork()
    {
        const AccountConnection::Networks networks = m_connection.networks();
        if (networks.refusal)
            return Refused{networks.refusal->reason, statusOf(networks.refusal->refusal)};
        const auto found =
            std::ranges::find_if(networks.all, [&](const SocialNetworkConnection& network) {
                return networkNamed(network.network) == m_options.network;
            });
        if (found != networks.all.end() && !found->isProviderConfigured())
            return Refused{PublishSentences::inactiveProvider(m_options.network)};
        if (found == networks.all.end() || !found->isConnected) {
            return Refused{u"Primero hay que conectar esta red en %1: «moltiva connect %2»."_s.arg(
                m_connection.api().siteName(), rawValue(m_options.network))};
        }
        return {};
    }

    void takeItems(const PublicationItems& all)
    {
        const int most = SocialPublishing::maxImageCount(rawValue(m_options.network));
        m_items = all.mid(0, most);
        if (all.size() > most)
            m_report.tell(PublishSentences::limit(m_options.network, most));
        const QString& own = m_items[0].analysis.publicationCaption;
        const bool isWritten = own != GeneratedCopy::placeholder().publicationCaption;
        m_caption = m_options.caption.value_or(isWritten ? own : QString());
    }

    void tellChecks()
    {
        PublishSubject subject;
        for (const PublicationItem& item : m_items) {
            subject.items.append(item);
            subject.warnings.insert(item.id, textWarnings(item, m_options.format, *m_photos));
        }
        subject.format = m_options.format;
        subject.network = m_options.network;
        subject.placement = m_options.placement;
        subject.caption = m_caption;
        const QStringList renders = fingerprintsOf(subject.items, m_options.format, exportSizeOf);
        if (const PublishRecord* const earlier =
                m_records->sent(renders, m_options.network, m_options.placement)) {
            subject.published = *earlier;
            if (!m_options.isDryRun && !m_options.isConfirmed &&
                !isSameAttempt(*earlier, renders, m_caption, QDateTime::currentDateTimeUtc()))
                m_again = checkOfPublished(*earlier);
        }
        const QList<PublishCheck> found = checkedPost(subject).found;
        take(found);
        for (const PublishCheck& check : found) {
            if (check != m_again)    // the command ends with that
                m_report.tell(check.sentence);
        }
    }

    // Notes the checks for the JSON output. They are told in another place.
    void take(const QList<PublishCheck>& found)
    {
        for (const PublishCheck& check : found) {
            if (m_found.contains(check))
                continue;
            m_found.append(check);
            const auto item = std::ranges::find(m_items, check.item, &PublicationItem::id);
            m_line.checks.append(
                {wordOf(check.kind), check.sentence, check.isWarning,
                 item == m_items.end() ? std::nullopt : std::optional(item->image.path)});
        }
    }

    // Tells what --again confirms; otherwise the command ends with the same sentences.
    bool confirm(const QList<PublishCheck>& found)
    {
        for (const PublishCheck& check : found) {
            if (m_options.isConfirmed && !m_found.contains(check))
                m_report.tell(check.sentence);
        }
        return m_options.isConfirmed;
    }

    int published()
    {
        PublishRequest request;
        request.items = m_items;
        request.format = m_options.format;
        request.network = m_options.network;
        request.placement = m_options.placement;
        request.caption = m_caption;
        request.price = m_line.cost;
        m_publish->working = [this](const QString& sentence) { m_report.tell(sentence); };
        m_publish->progressed = [this](const PublishProgress& progress) { show(progress); };
        m_publish->confirms = [this](const QList<PublishCheck>& found) { return confirm(found); };
        const PublishOutcome outcome = QCoro::waitFor(runPublish(request, services(), m_publish));
        take(outcome.found);
        m_line.cost = outcome.isDone() && outcome.isCharged ? outcome.cost : 0;
        m_line.balance = m_connection.session().account().balance;
        m_line.refundPending = outcome.isRefundPending || !outcome.isRecorded;
        if (outcome.url)
            m_line.url = outcome.url->toString(QUrl::FullyEncoded);
        const bool isUnconfirmed = outcome.state == PublishState::unconfirmed;
        const QString sentence = outcome.sentence();
        end(wordOf(outcome.state), isUnconfirmed ? withWayOn(sentence) : sentence,
            outcome.isDone() ? stdout : stderr);
        return statusAfter(outcome);
    }

    static QString withWayOn(const QString& sentence)
    {
        return sentence + u" Para publicar de todos modos, añade --again."_s;
    }

    PublishServices services()
    {
        PreferencesStore& preferences = m_connection.preferences();
        PublishServices services;
        services.photos = m_photos;
        services.stagingPlace = stagingPlace();
        services.charge = chargeServices(m_connection, m_payer, m_items);
        services.records = m_records;
        services.send = sendThrough(&m_connection.api());
        services.largestPost = m_connection.api().largestPost();
        services.timeLimit = m_connection.api().limits().withBody;
        services.preferences = &preferences;
        return services;
    }

    void show(const PublishProgress& progress)
    {
        using Stage = PublishProgress::Stage;
        constexpr qint64 kilobyte = 1'000;
        if (progress.stage == Stage::rendering)
            m_report.showProgress(u"Preparando imagen"_s, progress.done, progress.total);
        else if (progress.stage == Stage::sending)
            m_report.showProgress(u"Enviando kB"_s, progress.done / kilobyte,
                                  progress.total / kilobyte);
    }

    void lookForInterrupt()
    {
        if (!m_interrupt->flag() || std::exchange(m_isStopping, true))
            return;
        m_report.tell(u"Deteniendo la publicación…"_s);
        m_import->stop = true;
        m_publish->stop.request_stop();
    }

    int stopped()
    {
        end(wordOf(PublishState::stopped), u"Publicación detenida."_s, stderr);
        return exitInterrupted;
    }

    int refused(const Refused& refusal)
    {
        end(u"refused"_s, refusal.sentence, stderr);
        return refusal.status;
    }

    void end(const QString& outcome, const QString& sentence, std::FILE* stream)
    {
        m_report.close();
        if (!m_options.isJson || stream == stderr)
            print(m_options.isJson ? stderr : stream, sentence);
        if (m_line.url && !m_options.isJson)
            print(stdout, *m_line.url);
        m_line.outcome = outcome;
        m_line.message = sentence;
        if (m_options.isJson)
            print(stdout, QString::fromUtf8(json::written(m_line)));
    }

    int statusAfter(const PublishOutcome& outcome) const
    {
        switch (outcome.state) {
        case PublishState::done:
            return m_report.isAnyFailed() || !outcome.isRecorded ? exitSomeFailed : exitDone;
        case PublishState::tooFewCredits:
            return exitTooFewCredits;
        case PublishState::notReserved:
            return statusOf(outcome.refusal);
        case PublishState::unknown:
            return exitUnknown;
        case PublishState::stopped:
            return exitInterrupted;
        case PublishState::notPrepared:
        case PublishState::unconfirmed:
        case PublishState::failed:
            return exitSomeFailed;
        }
        Q_UNREACHABLE();
    }

    static constexpr std::chrono::milliseconds stopLatency{30};

    const PublishOptions& m_options;
    ExportReport m_report;
    AccountConnection m_connection;
    const std::shared_ptr<PhotoCache> m_photos = std::make_shared<PhotoCache>(thumbnailFolder());
    const std::shared_ptr<PhotoImport::Control> m_import = std::make_shared<PhotoImport::Control>();
    const std::shared_ptr<PublishControl> m_publish = std::make_shared<PublishControl>();
    std::optional<Interrupt> m_interrupt;
    QTimer m_look;    // polls m_interrupt
    bool m_isStopping = false;
    PublicationItems m_items;
    QString m_caption, m_payer;
    std::shared_ptr<PublishRecords> m_records;    // of m_payer
    QList<PublishCheck> m_found;                  // so far
    std::optional<PublishCheck> m_again;          // only --again publishes in spite of it
    PublishLine m_line;
};

}    // namespace

int runPublish(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    const auto asked = publishOptions(arguments);
    if (const int* status = std::get_if<int>(&asked))
        return *status;
    if (!configuration.problem.isEmpty()) {
        tellOfPublishing(configuration.problem);
        return exitWrongUse;
    }
    keepFreedMemory();
    // The workers must finish before the application object is destroyed: drawing needs it.
    const auto finish = qScopeGuard(&finishWorkers);
    return PublishCommandRun(std::get<PublishOptions>(asked), configuration).run();
}
