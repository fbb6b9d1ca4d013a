#pragma once

#include "copygen/EngineProfile.h"
#include "model/CopyGenerationMode.h"
#include "model/GeneratedCopy.h"
#include "model/SocialFormat.h"
#include "platform/SerialThread.h"

#include <QCoroTask>
#include <QObject>
#include <QSet>
#include <QUrl>

#include <chrono>
#include <memory>
#include <optional>
#include <stop_token>

enum class AnalysisMode { gemmaOnly };

// Has the model on this machine write the copy of images, one after the other, on a thread of its
// own. Lives on the interface thread. Its destructor ends what is under way; the coroutines that
// await it resume with the record of a missing answer.
class LocalAIService : public QObject {
    Q_OBJECT
public:
    struct Limits {
        std::chrono::milliseconds probe = std::chrono::seconds(25);
        std::chrono::milliseconds generation = std::chrono::seconds(420);
        ChildEnding ending;
    };

    explicit LocalAIService(EngineProfile profile, QObject* parent = nullptr);
    LocalAIService(EngineProfile profile, Limits limits, QObject* parent = nullptr);
    ~LocalAIService() override;

    const EngineProfile& profile() const { return m_profile; }

    // Never throws: a missing answer is the profile's record of it. `stop` ends the model and gives
    // that record at once.
    QCoro::Task<GeneratedCopy> analyze(QUrl imageURL, QString objective, SocialFormat format,
                                       LocalAIEngine engine = LocalAIEngine::gemma4E2B,
                                       AnalysisMode mode = AnalysisMode::gemmaOnly,
                                       std::stop_token stop = {});
    bool isMissingAnswer(const GeneratedCopy& copy) const;
    // How long the last image that was answered took; nothing before.
    std::optional<std::chrono::milliseconds> lastDuration() const;

private:
    class Analysis;
    class Answer;
    struct Order {
        QUrl image;
        QString objective;
        SocialFormat format;
        std::stop_token stop;
    };
    struct Written {
        GeneratedCopy copy;
        std::optional<std::chrono::milliseconds> duration;    // of an answer of the model
    };

    void work(const Order& order, Answer& answer);    // on m_thread

    const EngineProfile m_profile;
    const Limits m_limits;
    std::optional<std::chrono::milliseconds> m_lastDuration;
    QSet<size_t> m_answered;    // hashes of image, objective and format; for m_thread
    std::stop_source m_abandon;
    SerialThread m_thread;
};
