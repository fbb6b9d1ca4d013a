#include "studio/publish/PublishOperation.h"

#include "account/AccountError.h"
#include "account/AccountSession.h"
#include "account/PublishRequest.h"
#include "platform/Http.h"
#include "platform/StagingFolder.h"
#include "platform/Workers.h"
#include "studio/export/RenderLanes.h"
#include "studio/publish/FileToSend.h"
#include "studio/publish/SendingRate.h"

#include <QBuffer>
#include <QCoroFuture>
#include <QCoroTimer>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImageReader>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using PublishState = PublishOutcome::State;
using PublishStage = PublishProgress::Stage;

// State of one publication, shared by its coroutines and the functions that others call.
struct PublishRun {
    PublishRequest request;
    PublishServices services;
    std::shared_ptr<PublishControl> control;
    PublishOutcome outcome;
    QList<RenderedOutput> outputs;
    SocialPublishRequest post;    // without the bytes of its images
    QString postFile;             // holds the request
    qint64 postBytes = 0;
    PublishRecord record;                    // of this attempt
    std::optional<PublishRecord> earlier;    // the attempt that this one repeats
    qint64 cost = 0;
    bool isWaiting = false;    // for another operation
    bool isGoingOn = false;    // the service has told that it works on an earlier request
    qint64 sent = 0;           // bytes
    QElapsedTimer sending;
    std::optional<double> rate;    // bytes a second, if enough were sent to measure it

    bool isStopped() const { return control->stop.stop_requested(); }
    QString title() const { return row(request.network).title.toString(); }
    void progress(const PublishProgress& progress) const
    {
        if (control->progressed)
            control->progressed(progress);
    }
    void tell(const QString& sentence) const
    {
        if (control->working)
            control->working(sentence);
    }
    bool isConfirmed() const
    {
        return outcome.found.isEmpty() || (control->confirms && control->confirms(outcome.found));
    }
    void reached(const char* step) const
    {
        if (services.charge.journal)
            services.charge.journal->reached(step);
    }
};
using SharedPublish = std::shared_ptr<PublishRun>;

// What is known of the rendered pictures.
struct PictureFacts {
    QList<qint64> bytes;
    QList<QByteArray> small;    // see PublishRecord::pictures
};

QByteArray smallPicture(const QString& file)
{
    constexpr QSize largest(62, 78);
    constexpr int quality = 70;
    QImageReader reader(file);
    reader.setScaledSize(reader.size().scaled(largest, Qt::KeepAspectRatio));
    const QImage picture = reader.read();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return picture.save(&buffer, "WEBP", quality) ? bytes : QByteArray();
}

PictureFacts factsOf(const QStringList& files)
{
    PictureFacts facts;
    for (const QString& file : files) {
        facts.bytes.append(QFileInfo(file).size());
        if (facts.small.size() < PublishRecords::mostPictures)
            facts.small.append(smallPicture(file));
    }
    facts.small.removeAll(QByteArray());
    return facts;
}

// Renders all items into a new staging folder. Unless that fails, `outcome.state` remains `done`.
QCoro::Task<> renderForPost(SharedPublish run)
{
    QFuture<std::shared_ptr<StagingFolder>> staging = stagingFor(run->services.stagingPlace);
    run->control->staging = co_await staging;
    RenderedItems rendered;
    if (run->control->staging->isUsable()) {
        RenderOrder order;
        order.items = run->request.items;
        order.format = run->request.format;
        order.outputSize = run->request.outputSize;
        order.file = [run](qsizetype index) {
            return run->control->staging->filePath(u"moltiva_publish_%1.png"_s.arg(index));
        };
        RenderWatch watch;
        watch.isStopped = [run] { return run->isStopped(); };
        watch.progressed = [run](qsizetype done) {
            run->progress({PublishStage::rendering, done, run->request.items.size()});
        };
        QCoro::Task<RenderedItems> rendering = renderItems(order, run->services.photos, watch);
        rendered = co_await std::move(rendering);
    } else {
        rendered.failure = RenderFailure::file;
    }
    if (rendered.failure == RenderFailure::file)
        run->outcome.reason = stagingFailure(run->services.stagingPlace);
    else if (rendered.failure)
        run->outcome.reason = u"No se ha podido leer la foto «%1»."_s.arg(rendered.failedPhoto);
    if (run->isStopped() || rendered.failure)
        run->outcome.state = run->isStopped() ? PublishState::stopped : PublishState::notPrepared;
    else
        for (const auto& output : rendered.outputs)
            run->outputs.append(*output);
}

// Finds an earlier attempt at the same post, and what else the user must confirm.
void judge(PublishRun& run, const QList<qint64>& bytes)
{
    PreparedPost prepared;
    for (const PublicationItem& item : run.request.items)
        prepared.items.append(item.id);
    prepared.bytes = bytes;
    prepared.requestBytes = run.postBytes;
    prepared.mostRequestBytes = run.services.largestPost;
    prepared.rate = lastSendingRate(*run.services.preferences);
    prepared.timeLimit = run.services.timeLimit;
    run.outcome.found = checksOfPrepared(prepared, run.request.network);
    const PublishRecord& record = run.record;
    if (CreditJournal* const journal = run.services.charge.journal)
        run.services.records->refresh(journal->programRun());
    const PublishRecord* const before =
        run.services.records->sent(record.renders, record.network, record.placement);
    if (!before)
        return;
    if (isSameAttempt(*before, record.renders, record.caption, run.services.now()))
        run.earlier = *before;
    else
        run.outcome.found.prepend(checkOfPublished(*before));
}

void describe(PublishRun& run, const PictureFacts& facts)
{
    PublishRecord& record = run.record;
    record.network = run.request.network;
    record.placement = run.request.placement;
    record.caption = run.request.caption;
    record.pictures = facts.small;
    SocialPublishRequest& post = run.post;
    post.network = rawValue(record.network);
    post.caption = record.caption;
    post.placement = rawValue(record.placement);
    for (const RenderedOutput& output : run.outputs) {
        record.images.append(QFileInfo(output.item.image.path).fileName());
        record.renders.append(output.fingerprint);
        post.images.append({output.item.filename() + u"-moltiva.png"_s, u"image/png"_s, {}});
    }
    record.id = QUuid::createUuid();
    record.requestId = QUuid::createUuid().toString(QUuid::WithoutBraces);
    post.requestId = record.requestId;    // each has the same length
    run.postBytes = sizeOfPublishRequest(post, facts.bytes);
}

// The files to send. Looks at two pictures at a time, because each takes much memory.
QCoro::Task<QStringList> filesToSend(SharedPublish run)
{
    constexpr qsizetype atOnce = 2;
    const qint64 mostBytes = row(run->request.network).largestImage;
    const std::stop_token stop = run->control->stop.get_token();
    QList<QFuture<QString>> choosing;
    QStringList files;
    for (const RenderedOutput& output : run->outputs) {
        if (choosing.size() == atOnce) {
            QFuture<QString> first = choosing.takeFirst();
            files.append(co_await first);
        }
        const auto choose = [file = output.file, mostBytes, stop] {
            return stop.stop_requested() ? file : fileToSend(file, mostBytes);
        };
        choosing.append(runOnWorker(choose));
    }
    for (QFuture<QString>& file : choosing)
        files.append(co_await file);
    co_return std::move(files);
}

// Looks at the rendered pictures, and writes the request unless the user must confirm something.
QCoro::Task<> prepare(SharedPublish run)
{
    const std::stop_token stop = run->control->stop.get_token();
    QCoro::Task<QStringList> choosing = filesToSend(run);
    const QStringList files = co_await std::move(choosing);
    QFuture<PictureFacts> looking = runOnWorker([files] { return factsOf(files); });
    const PictureFacts facts = co_await looking;
    if (run->isStopped()) {
        run->outcome.state = PublishState::stopped;
        co_return;
    }
    describe(*run, facts);
    judge(*run, facts.bytes);
    if (!run->isConfirmed()) {
        run->outcome.state = PublishState::unconfirmed;
        co_return;
    }
    if (run->earlier) {
        run->record.id = run->earlier->id;
        run->post.requestId = run->record.requestId = run->earlier->requestId;
    }
    run->postFile = run->control->staging->filePath(u"moltiva_publish_request.json"_s);
    const auto write = [post = run->post, file = run->postFile, files, stop] {
        return writePublishRequest(post, files, file, stop);
    };
    QFuture<WrittenPublishRequest> writing = runOnWorker(write);
    const WrittenPublishRequest written = co_await writing;
    run->postBytes = written.bytes;
    if (written.isStopped)
        run->outcome.state = PublishState::stopped;
    else if (!written.problem.isEmpty())
        run->outcome.state = PublishState::notPrepared;
    if (!written.problem.isEmpty())
        run->outcome.reason = stagingFailure(run->services.stagingPlace);
}

void followSending(PublishRun& run, qint64 sent)
{
    run.sent = sent;
    const bool hasLeft = sent >= run.postBytes;
    run.progress(
        {hasLeft ? PublishStage::waiting : PublishStage::sending, sent, run.postBytes, !hasLeft});
    // Less may have gone no further than into the system's buffers.
    constexpr qint64 leastToMeasure = 1'000'000;
    const qint64 milliseconds = run.sending.elapsed();
    if (sent >= leastToMeasure && milliseconds > 0)
        run.rate = double(sent) * 1000 / double(milliseconds);
}

// Nothing was published: forgets the attempt, but not an earlier one that may have been.
void forget(PublishRun& run)
{
    run.services.records->endAttempt(run.record.id, run.earlier);
}

void doubt(PublishRun& run)
{
    run.outcome.state = PublishState::unknown;
    run.record.state = PublishRecord::State::unknown;
    run.record.time = run.services.now();
    run.services.records->endAttempt(run.record.id, run.record);
}

// What an error in sending says about the post.
void takeFailure(PublishRun& run, const std::exception& error)
{
    const auto* answer = dynamic_cast<const AccountError*>(&error);
    const auto* transport = dynamic_cast<const TransportError*>(&error);
    const bool wasSent = (transport && transport->wasSent()) || run.sent >= run.postBytes;
    const bool isRefused = answer && answer->kind() != AccountError::Kind::invalidResponse;
    // Of an earlier request that was going on, only the service's own refusal tells the outcome.
    const bool isRefusalOfEarlier =
        answer && answer->kind() == AccountError::Kind::message && !answer->code().isEmpty();
    if (run.isGoingOn ? !isRefusalOfEarlier : wasSent && !isRefused)
        return doubt(run);
    forget(run);
    const bool isStopped = transport && transport->kind() == TransportError::Kind::stopped;
    run.outcome.state = isStopped ? PublishState::stopped : PublishState::failed;
}

void takeAnswer(PublishRun& run, const SocialPublishResponse& response)
{
    run.outcome.url = run.record.url = pageOfPost(response.url);
    run.record.state = PublishRecord::State::published;
    run.record.time = run.services.now();
}

bool isStillGoingOn(const std::exception& error)
{
    const auto* refusal = dynamic_cast<const AccountError*>(&error);
    return refusal && refusal->code() == u"social_publish_in_progress";
}

// Sends the post once. Returns false if an earlier request for it is still being worked on.
QCoro::Task<bool> sendOnce(SharedPublish run)
{
    const SentBytes follow = [run](qint64 sent) { followSending(*run, sent); };
    run->sent = 0;
    run->sending.start();
    std::exception_ptr failure;
    bool isAnswered = true;
    try {
        QCoro::Task<SocialPublishResponse> sending =
            run->services.send(run->postFile, follow, run->control->stop.get_token());
        const SocialPublishResponse response = co_await std::move(sending);
        takeAnswer(*run, response);
    } catch (const std::exception& error) {
        isAnswered = !isStillGoingOn(error);
        if (isAnswered) {
            takeFailure(*run, error);
            failure = std::current_exception();
        }
    }
    if (failure)
        std::rethrow_exception(failure);
    if (!isAnswered)
        run->isGoingOn = true;
    co_return isAnswered;
}

bool isRecent(const QDateTime& time, const QDateTime& now)
{
    const std::chrono::milliseconds age(time.msecsTo(now));
    return age >= std::chrono::milliseconds(0) && age < sameAttempt;
}

// Stores the record of the attempt. Returns false if the same images were sent meanwhile, which the
// user does not know.
bool noteAttempt(PublishRun& run)
{
    // Somebody else may have signed in since the credits were reserved.
    const AccountSession* const account = run.services.charge.account;
    CreditJournal* const journal = run.services.charge.journal;
    PublishRecords& records = *run.services.records;
    if (!journal || !account || account->accountKey() != records.account())
        throw AccountError::unauthorized();
    run.record.time = run.services.now();
    std::optional<PublishRecord> newer;
    if (records.beginAttempt(run.record, journal->programRun(), newer))
        return true;
    if (!newer)
        throw AccountError::message(u"No se ha podido anotar la publicación antes de enviarla."_s);
    run.outcome.found = {checkOfPublished(*newer)};
    run.outcome.state = PublishState::unconfirmed;
    return false;
}

// Ends early when the stop is requested.
QCoro::Task<> pauseBeforeAsking(SharedPublish run)
{
    constexpr std::chrono::milliseconds step(100);
    for (auto left = run->services.pause; left.count() > 0 && !run->isStopped(); left -= step) {
        QCoro::Task<> pausing = QCoro::sleepFor(std::min(left, step));
        co_await std::move(pausing);
    }
}

QCoro::Task<bool> sendPost(SharedPublish run)
{
    if (run->isStopped()) {
        run->outcome.state = PublishState::stopped;
        co_return false;
    }
    run->tell(run->cost > 0 ? u"Enviando %1 imagen(es) a %2. Coste: %3 créditos..."_s.arg(
                                  QString::number(run->outputs.size()), run->title(),
                                  QString::number(run->cost))
                            : u"Enviando %1 imagen(es) a %2. Ya estaban pagadas."_s.arg(
                                  QString::number(run->outputs.size()), run->title()));
    run->progress({PublishStage::sending, 0, run->postBytes});
    if (!noteAttempt(*run))
        co_return false;
    run->reached("noted");
    const QDateTime begun = run->services.now();
    while (true) {
        QCoro::Task<bool> sending = sendOnce(run);
        if (co_await std::move(sending))
            break;
        run->tell(u"Esperando a saber si se publicó…"_s);
        run->progress({PublishStage::asking, 0, 0});
        QCoro::Task<> pausing = pauseBeforeAsking(run);
        co_await std::move(pausing);
        if (run->isStopped()) {
            doubt(*run);
            throw AccountError::message(u"Publicación detenida."_s);
        }
        if (!isRecent(begun, run->services.now())) {
            doubt(*run);
            throw TransportError::timedOut();
        }
    }
    run->reached("sent");
    co_return true;
}

bool isPublishWanted(PublishRun& run, qint64 cost)
{
    run.cost = cost;
    run.progress({PublishStage::charging, 0, 0});
    if (run.isStopped())
        return false;
    if (cost > 0)
        run.tell(u"Descontando %1 créditos para publicar..."_s.arg(cost));
    return true;
}

bool publishWaits(PublishRun& run)
{
    if (run.isStopped())
        return false;
    run.progress({PublishStage::charging, 0, 0});
    if (!std::exchange(run.isWaiting, true))
        run.tell(waitsForPayment);
    return true;
}

PublishState stateOf(const PublishRun& run, RenderCharge::State state)
{
    switch (state) {
    case RenderCharge::State::done:
        return PublishState::done;
    case RenderCharge::State::tooFewCredits:
        return PublishState::tooFewCredits;
    case RenderCharge::State::notReserved:
        return PublishState::notReserved;
    case RenderCharge::State::notWanted:
        return PublishState::stopped;
    case RenderCharge::State::failed:
        return run.outcome.state == PublishState::done ? PublishState::failed : run.outcome.state;
    }
    Q_UNREACHABLE();
}

QCoro::Task<> chargeAndSend(SharedPublish run)
{
    RenderAction action;
    action.name = u"publish"_s;
    action.what = u"una publicación"_s;
    action.isWanted = [run](qint64 cost) { return isPublishWanted(*run, cost); };
    action.waits = [run] { return publishWaits(*run); };
    action.work = [run] { return sendPost(run); };
    action.alsoStore = [run] { return run->services.records->keep(run->record); };
    QCoro::Task<RenderCharge> charging = chargeRenders(run->outputs, action, run->services.charge);
    const RenderCharge charge = co_await std::move(charging);
    static_cast<Charge&>(run->outcome) = charge;
    run->outcome.state = stateOf(*run, charge.state);
}

QCoro::Task<> publishShared(SharedPublish run)
{
    const qint64 price = run->request.price.value_or(0);
    QCoro::Task<bool> asking = isOutOfReach(run->request.items, price, run->services.charge);
    if (co_await std::move(asking)) {
        run->outcome.state = PublishState::tooFewCredits;
        run->outcome.cost = price;
        co_return;
    }
    QCoro::Task<> rendering = renderForPost(run);
    co_await std::move(rendering);
    if (run->outcome.isDone()) {
        QCoro::Task<> preparing = prepare(run);
        co_await std::move(preparing);
    }
    if (run->outcome.isDone()) {
        QCoro::Task<> charging = chargeAndSend(run);
        co_await std::move(charging);
    }
}

QCoro::Task<PublishOutcome> publishAndTidy(SharedPublish run)
{
    std::exception_ptr failure;
    QCoro::Task<> publishing = publishShared(run);
    try {
        co_await std::move(publishing);
    } catch (...) {
        failure = std::current_exception();
    }
    if (run->rate)
        storeSendingRate(*run->services.preferences, *run->rate);
    QFuture<void> emptying = emptied(std::exchange(run->control->staging, nullptr));
    co_await emptying;
    if (failure)
        std::rethrow_exception(failure);
    const PublishOutcome ended = run->outcome;
    co_return ended;
}

}    // namespace

SendPost sendThrough(AccountAPI* api)
{
    return
        [api = QPointer(api)](const QString& request, SentBytes sentBytes, std::stop_token stop) {
            if (!api)
                throw TransportError::stopped();
            return api->publishSocialPost(request, std::move(sentBytes), std::move(stop));
        };
}

bool isSameAttempt(const PublishRecord& earlier, const QStringList& renders, const QString& caption,
                   const QDateTime& now)
{
    return earlier.state != PublishRecord::State::published && earlier.renders == renders &&
           earlier.caption == caption && isRecent(earlier.time, now);
}

QCoro::Task<PublishOutcome> runPublish(PublishRequest request, PublishServices services,
                                       std::shared_ptr<PublishControl> control)
{
    const auto run = std::make_shared<PublishRun>();
    run->outcome.network = request.network;
    run->outcome.placement = request.placement;
    run->outcome.images = request.items.size();
    run->request = std::move(request);
    run->services = std::move(services);
    run->control = std::move(control);
    return publishAndTidy(run);
}
