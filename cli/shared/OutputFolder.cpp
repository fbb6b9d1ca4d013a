#include "cli/shared/OutputFolder.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

// The folders of `path` that do not exist, the innermost first.
QStringList missingFolders(const QString& path)
{
    QStringList missing;
    QString folder = QDir::cleanPath(QDir(path).absolutePath());
    for (; !QFileInfo::exists(folder) && folder != QFileInfo(folder).path();
         folder = QFileInfo(folder).path())
        missing.append(folder);
    return missing;
}

}    // namespace

OutputFolder::OutputFolder(const QString& path)
    : m_made(missingFolders(path)), m_isThere(QDir().mkpath(path))
{
}

OutputFolder::~OutputFolder()
{
    std::ranges::find_if(m_made, [](const QString& folder) {
        return QFileInfo(folder).isDir() && !QDir().rmdir(folder);
    });
}

bool OutputFolder::canBeMade(const QString& path)
{
    const QStringList missing = missingFolders(path);
    const QFileInfo there(missing.isEmpty() ? path : QFileInfo(missing.last()).path());
    return there.isDir() && there.isWritable();
}
