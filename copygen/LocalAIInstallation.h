#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

// Where the local engine lives on this machine, and what of it is there. All paths are derived from
// the root. The functions look at the disk and start no program.
struct LocalAIInstallation {
    static constexpr QStringView gemmaRepository = u"mlx-community/gemma-4-e2b-it-4bit";

    QString rootDirectory;

    static LocalAIInstallation ofThisUser();

    QString gemmaDirectory() const;
    QString gemmaEnvironmentDirectory() const;    // a Python environment
    QString gemmaModelDirectory() const;
    QString gemmaCacheDirectory() const;
    QString gemmaProgressFile() const;
    QString gemmaPythonExecutable() const;
    QString engineDirectory() const;    // the unpacked llama.cpp, its executables at the top

    // Of the MLX build.
    bool gemmaRuntimeIsInstalled() const;
    bool gemmaModelIsInstalled() const;
    bool gemmaIsInstalled() const;
    // What the model is called on the command line: its folder, else its repository.
    QString gemmaModelReference() const;
};

// A file that is fetched from a fixed address and never used unless size and digest agree.
struct PinnedFile {
    QString url;
    qint64 bytes = 0;
    QString sha256;    // hexadecimal, lower case

    QString fileName() const;    // on the disk: the last part of the address
    bool operator==(const PinnedFile&) const = default;
};

// The files of the llama.cpp engine.
struct LlamaPins {
    PinnedFile model, projector;
    PinnedFile engine;    // an archive for this processor and C library; without an address: none
    QString program;      // a configured llama-mtmd-cli; usually empty

    bool operator==(const LlamaPins&) const = default;
};

// The built-in pins; the group [localEngine] of the configuration file replaces any of them:
// program=, and url, bytes and sha256 each after model, projector or engine (modelUrl=,
// modelBytes=, modelSha256=, …).
LlamaPins llamaPins(const QString& configurationFile);

// Whether model and projector are there, each with exactly its pinned size.
bool llamaModelIsInstalled(const LocalAIInstallation& installation, const LlamaPins& pins);
// The executable in PATH; empty when there is none.
QString llamaProgramInPath();
// The engine's executable: the configured one, the one in the engine's directory, or the one in
// PATH. Empty when there is none.
QString llamaProgram(const LocalAIInstallation& installation, const LlamaPins& pins);
