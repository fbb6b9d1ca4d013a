#pragma once

#include "copygen/EngineProfile.h"
#include "copygen/InstallChecks.h"
#include "copygen/InstallScripts.h"
#include "tests/copygen/Installing.h"

// Two model files on a server, and an installation in a folder of its own.
struct LlamaTrial {
    // A machine that all checks let pass.
    static Machine goodMachine(const QString&)
    {
        return {.processor = QStringLiteral("x86_64"),
                .memory = 16'000'000'000,
                .free = 100'000'000'000};
    }

    explicit LlamaTrial(const QString& folder = QStringLiteral("LocalAI"))
        : installation{home.filePath(folder)}
    {
        server.files = {{"model.gguf", someBytes(300'000, "model")},
                        {"mmproj.gguf", someBytes(50'000, "projector")}};
        pins.model = pinOf(server, "model.gguf");
        pins.projector = pinOf(server, "mmproj.gguf");
        pins.program = home.filePath(QStringLiteral("llama-mtmd-cli"));
        writeFile(pins.program, "#!/bin/sh\nexit 0\n", true);
    }

    EngineProfile profile() const
    {
        EngineProfile made = llamaProfile(installation, pins);
        const auto at = installation;
        const auto with = pins;
        made.installScript = [=] {
            return llamaInstallScript(at, with, {QStringLiteral(MOLTIVA_FETCH_PROGRAM)});
        };
        return made;
    }

    QString modelFile() const
    {
        return installation.gemmaModelDirectory() + QStringLiteral("/model.gguf");
    }
    // Bytes of the model files, whole or not.
    qint64 storedBytes() const
    {
        qint64 sum = 0;
        for (const QFileInfo& file :
             QDir(installation.gemmaModelDirectory()).entryInfoList(QDir::Files))
            sum += file.size();
        return sum;
    }

    QTemporaryDir home;
    FileServer server;
    LocalAIInstallation installation;
    LlamaPins pins;
};
