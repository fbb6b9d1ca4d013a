#pragma once

#include "model/CopyGenerationMode.h"

// What the interface shows of a local engine.
struct LocalAIEngineStatus {
    LocalAIEngine engine = LocalAIEngine::gemma4E2B;
    bool isAvailable = false;    // can write texts now
    bool isInstalled = false;
    bool isInstalling = false;
    QString detail;                    // a Spanish sentence
    std::optional<double> progress;    // 0 to 1, while installing

    bool operator==(const LocalAIEngineStatus&) const = default;

    static LocalAIEngineStatus unavailable(LocalAIEngine engine, const QString& detail)
    {
        LocalAIEngineStatus status;
        status.engine = engine;
        status.detail = detail;
        return status;
    }
};
