#include "copygen/MlxRuntime.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

// The folder that contains the application bundle; an executable outside of a bundle counts as one.
QString bundleContainer(const QString& executableFolder)
{
    const QString inside = u"/Contents/MacOS"_s;
    QString bundle = executableFolder;
    if (bundle.endsWith(u".app"_s + inside))
        bundle.chop(inside.size());
    return QFileInfo(bundle).path();
}

}    // namespace

MlxRuntime::Interpreter MlxRuntime::pythonExecutable(const LocalAIInstallation& installation)
{
    if (installation.gemmaRuntimeIsInstalled())
        return {installation.gemmaPythonExecutable(), {}};
    return {u"/usr/bin/env"_s, {u"python3"_s}};
}

QProcessEnvironment MlxRuntime::gemmaEnvironment(const LocalAIInstallation& installation)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HF_HOME"_s, installation.gemmaCacheDirectory());
    environment.insert(u"TOKENIZERS_PARALLELISM"_s, u"false"_s);
    return environment;
}

QStringList MlxRuntime::executableSearchDirectories(const QString& executableFolder)
{
    constexpr int levels = 6;
    QStringList folders;
    for (QString folder = executableFolder; !folder.isEmpty() && folders.size() < levels;
         folder = QFileInfo(folder).path())
        folders.append(folder);
    return folders;
}

QStringList MlxRuntime::pythonSearchDirectories(const QString& currentFolder,
                                                const QString& executableFolder)
{
    QStringList folders{currentFolder};
    if (!executableFolder.isEmpty())
        folders.append(bundleContainer(executableFolder));
    folders += executableSearchDirectories(executableFolder);
    for (QString& folder : folders)
        folder = QDir::cleanPath(folder);
    folders.removeDuplicates();
    return folders;
}

QString MlxRuntime::projectDirectory(const QStringList& folders)
{
    for (const QString& folder : folders) {
        const QFileInfo python(folder + u"/.venv/bin/python3"_s);
        if (python.isFile() && python.isExecutable())
            return folder;
    }
    return {};
}
