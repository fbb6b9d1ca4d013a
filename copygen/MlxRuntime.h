#pragma once

#include "copygen/LocalAIInstallation.h"

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

// How the MLX build of the model is started: by a Python interpreter.
namespace MlxRuntime {

struct Interpreter {
    QString executable;
    QStringList prefix;    // its first arguments
};

// The interpreter of the installed environment; without one, the first python3 in PATH.
Interpreter pythonExecutable(const LocalAIInstallation& installation);

QProcessEnvironment gemmaEnvironment(const LocalAIInstallation& installation);

// The folder of the executable and its parents, six in all; none for an empty folder.
QStringList executableSearchDirectories(const QString& executableFolder);
// Where a Python environment of a project may stand, the likeliest first, each folder once.
QStringList pythonSearchDirectories(const QString& currentFolder, const QString& executableFolder);
// The first of these folders with a Python environment in ".venv"; empty when none has one.
QString projectDirectory(const QStringList& folders);

}    // namespace MlxRuntime
