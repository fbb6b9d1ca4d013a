#include "copygen/LocalAIService.h"

#include "copygen/AnalysisPicture.h"

#include <QCoroFuture>
#include <QHash>
#include <QPointer>
#include <QRandomGenerator>

#include <atomic>
#include <exception>
#include <utility>

namespace {

constexpr qint64 mostAnswerBytes = 1 << 20;    // of a program; an answer has a few thousand
constexpr double warmTemperature = 0.7;

}    // namespace

// What was written for one image, given once: by the thread, or by a stop request before it.
class LocalAIService::Answer {
public:
    Answer() { m_promise.reportStarted(); }

    QFuture<Written> future() { return m_promise.future(); }
    void give(const Written& written)
    {
        if (m_isGiven.exchange(true))
            return;
        m_promise.reportResult(written);
        m_promise.reportFinished();
    }

private:
    QFutureInterface<Written> m_promise;    // not a QPromise, whose destructor cancels the future
    std::atomic<bool> m_isGiven = false;
};

// One image at work.
class LocalAIService::Analysis {
public:
    Analysis(const LocalAIService& service, const Order& order) : m_service(service), m_order(order)
    {
    }

    std::optional<GeneratedCopy> copy(const Sampling& sampling)
    {
        try {
            return written(sampling);
        } catch (const std::exception&) {    // memory is short
            return std::nullopt;
        }
    }

private:
    std::optional<GeneratedCopy> written(const Sampling& sampling)
    {
        const EngineProfile& profile = m_service.m_profile;
        if (!profile.isInstalled() || isStopped())
            return std::nullopt;
        const auto output = profile.endpoint ? askedEndpoint(sampling) : printed(sampling);
        const auto text = output ? answerText(*output, profile.wording) : std::nullopt;
        if (!text)
            return std::nullopt;
        return parseGeneratedCopy(*text, m_order.objective, m_order.format, profile.wording);
    }

    std::optional<QByteArray> printed(const Sampling& sampling)
    {
        const EngineProfile& profile = m_service.m_profile;
        const AnalysisPicture picture(m_order.image, m_order.stop);
        if (picture.path().isEmpty())
            return std::nullopt;
        ChildCommand probe = profile.probe();
        probe.timeout = m_service.m_limits.probe;
        if (!outcomeOf(probe).isSuccess() || isStopped())
            return std::nullopt;
        ChildCommand generation = profile.generation({picture.path(), prompt(), sampling});
        generation.timeout = m_service.m_limits.generation;
        generation.mostOutput = mostAnswerBytes;
        const ChildOutcome outcome = outcomeOf(generation);
        return outcome.isSuccess() ? std::optional(outcome.output) : std::nullopt;
    }

    std::optional<QByteArray> askedEndpoint(const Sampling& sampling)
    {
        const EndpointQuestion question{m_order.image, prompt(), sampling.temperature,
                                        sampling.seed, m_service.m_limits.generation};
        // The question is stopped by the order's stop, and when the service is destroyed.
        std::stop_source stop;
        const auto end = [stop]() mutable { stop.request_stop(); };
        const std::stop_callback onStop(m_order.stop, end);
        const std::stop_callback onAbandon(m_service.m_abandon.get_token(), end);
        return answerOf(*m_service.m_profile.endpoint, question, stop.get_token());
    }

    ChildOutcome outcomeOf(const ChildCommand& command)
    {
        m_child.reset();
        m_child = std::make_unique<ChildProcess>(command, m_service.m_abandon.get_token(),
                                                 m_service.m_limits.ending);
        return m_child->wait(m_order.stop);
    }

    QString prompt() const
    {
        QString text = m_service.m_profile.prompt(m_order.objective, m_order.format);
        return text.remove(QChar());    // would end the argument of a program
    }

    bool isStopped() const
    {
        return m_order.stop.stop_requested() || m_service.m_abandon.stop_requested();
    }

    const LocalAIService& m_service;
    const Order& m_order;
    std::unique_ptr<ChildProcess> m_child;    // may be ending while the answer is given
};

LocalAIService::LocalAIService(EngineProfile profile, QObject* parent)
    : LocalAIService(std::move(profile), Limits(), parent)
{
}

LocalAIService::LocalAIService(EngineProfile profile, Limits limits, QObject* parent)
    : QObject(parent), m_profile(std::move(profile)), m_limits(limits)
{
    m_thread.run(AnalysisPicture::removeLeftovers);
}

LocalAIService::~LocalAIService()
{
    m_abandon.request_stop();
}

QCoro::Task<GeneratedCopy> LocalAIService::analyze(QUrl imageURL, QString objective,
                                                   SocialFormat format, LocalAIEngine engine,
                                                   AnalysisMode mode, std::stop_token stop)
{
    Q_UNUSED(engine)
    Q_UNUSED(mode)
    const QPointer<LocalAIService> self(this);
    const Written nothing{m_profile.noAnswer, {}};
    const auto answer = std::make_shared<Answer>();
    const Order order{std::move(imageURL), std::move(objective), format, stop};
    m_thread.run([this, order, answer] { work(order, *answer); });
    const std::stop_callback onStop(stop, [answer, nothing] { answer->give(nothing); });
    QFuture<Written> future = answer->future();
    const Written written = co_await future;
    if (self && written.duration)
        self->m_lastDuration = written.duration;
    const GeneratedCopy copy = written.copy;
    co_return copy;
}

void LocalAIService::work(const Order& order, Answer& answer)
{
    const auto begin = std::chrono::steady_clock::now();
    const size_t question = qHashMulti(0, order.image, order.objective, int(order.format));
    Sampling sampling;
    if (m_profile.variesAnswers && m_answered.contains(question))
        sampling = {warmTemperature, QRandomGenerator::global()->generate()};

    Analysis analysis(*this, order);
    const std::optional<GeneratedCopy> copy = analysis.copy(sampling);
    if (!copy) {
        answer.give({m_profile.noAnswer, {}});
        return;
    }
    m_answered.insert(question);
    answer.give({*copy, std::chrono::duration_cast<std::chrono::milliseconds>(
                            std::chrono::steady_clock::now() - begin)});
}

bool LocalAIService::isMissingAnswer(const GeneratedCopy& copy) const
{
    return copy == m_profile.noAnswer;
}

std::optional<std::chrono::milliseconds> LocalAIService::lastDuration() const
{
    return m_lastDuration;
}
