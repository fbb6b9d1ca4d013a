#include "studio/copy/LocalCopyWriter.h"

#include "copygen/LocalAIManager.h"
#include "copygen/LocalAIService.h"

LocalCopyWriter localCopyWriter(LocalAIManager& manager, LocalAIService& service)
{
    LocalCopyWriter writer;
    writer.write = [&service](const QUrl& photo, const QString& objective, SocialFormat format,
                              const std::stop_token& stop) {
        return service.analyze(photo, objective, format, LocalAIEngine::gemma4E2B,
                               AnalysisMode::gemmaOnly, stop);
    };
    writer.isMissingAnswer = [&service](const GeneratedCopy& copy) {
        return service.isMissingAnswer(copy);
    };
    writer.whyNotReady = [&manager] {
        return manager.canGenerate() ? QString() : manager.gemmaStatus().detail;
    };
    writer.engineName = [&manager] { return manager.engineTitle(); };
    return writer;
}
