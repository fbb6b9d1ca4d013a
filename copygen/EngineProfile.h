#pragma once

#include "copygen/CopyEndpoint.h"
#include "copygen/CopyParser.h"
#include "copygen/LocalAIInstallation.h"
#include "model/GeneratedCopy.h"
#include "model/SocialFormat.h"
#include "platform/ChildProcess.h"

#include <QString>

#include <functional>
#include <optional>

// How a model chooses its words.
struct Sampling {
    double temperature = 0;
    quint32 seed = 0;    // without effect at temperature 0
};

// What a model is asked about an image.
struct EngineQuestion {
    QString imagePath;    // a PNG
    QString prompt;
    Sampling sampling;
};

enum class EngineKind { mlx, llama, configured };

// Everything that one way of running the model on this machine differs in from the others.
struct EngineProfile {
    EngineKind kind = EngineKind::llama;
    LocalAIInstallation installation;
    LlamaPins pins;    // of EngineKind::llama

    // For the user.
    QString modelName;      // "Gemma 4 E2B"
    QString subtitle;       // what it is and what it takes, before it is installed
    QString readyDetail;    // "Instalado en este equipo. 0 créditos."
    QString licenceURL;     // of the model; empty for one that the user runs himself

    // These look at the disk and start no program.
    std::function<bool()> isRuntimeInstalled, isModelInstalled;
    bool isInstalled() const { return isRuntimeInstalled() && isModelInstalled(); }

    // A program that is started for each image, and the one that tells whether it can work.
    std::function<ChildCommand()> probe;
    std::function<ChildCommand(const EngineQuestion&)> generation;
    // An engine that already runs, asked instead of those; nothing needs to be installed then.
    std::optional<CopyEndpoint> endpoint;

    std::function<QString(const QString& objective, SocialFormat)> prompt;
    // Asked again for the same image, objective and format, the model may answer differently.
    bool variesAnswers = false;
    CopyWording wording;
    GeneratedCopy noAnswer;    // stands for an answer that did not come

    std::function<QString()> installScript;    // for /bin/bash; empty where nothing is installed
};

EngineProfile mlxProfile(const LocalAIInstallation& installation);
EngineProfile llamaProfile(const LocalAIInstallation& installation, const LlamaPins& pins);
EngineProfile configuredProfile(const CopyEndpoint& endpoint);

// The profile for this machine and its configuration.
EngineProfile engineProfile();

// Whether the text is one of EngineProfile::noAnswer, of any engine.
bool isOfMissingAnswer(const QString& text);
