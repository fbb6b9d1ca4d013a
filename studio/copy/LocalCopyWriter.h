#pragma once

#include "model/GeneratedCopy.h"
#include "model/SocialFormat.h"

#include <QCoroTask>
#include <QUrl>

#include <functional>
#include <stop_token>

class LocalAIManager;
class LocalAIService;

// What writes copy on this machine, as functions. All are set, or none.
struct LocalCopyWriter {
    // Never throws. A stop ends the engine at once; what comes back is then of no use.
    std::function<QCoro::Task<GeneratedCopy>(QUrl photo, QString objective, SocialFormat format,
                                             std::stop_token stop)>
        write;
    // Whether the copy is the record that stands for a missing answer.
    std::function<bool(const GeneratedCopy&)> isMissingAnswer;
    // The engine row's detail while the engine cannot write; empty when it can.
    std::function<QString()> whyNotReady;
    std::function<QString()> engineName;    // as the engine row shows it
};

// Refers to both arguments, which must outlive it.
LocalCopyWriter localCopyWriter(LocalAIManager& manager, LocalAIService& service);
