#include "platform/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QUuid>

#include <cerrno>
#include <cstdio>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

QString writeAtomically(const QString& path, QByteArrayView bytes, const QString& run)
{
    const QString number = QString::number(QRandomGenerator::system()->generate64(), 36);
    // Not a QTemporaryFile, which only its user could read, whatever the umask.
    QFile file(QFileInfo(path).dir().filePath(unfinishedPrefix() + run + u'.' + number));
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return file.errorString();
    auto discard = qScopeGuard([&] { file.remove(); });
    if (file.write(bytes.data(), bytes.size()) != bytes.size() || !file.flush()) {
        // On a full disk, write() accepts a part of the bytes, and QFile reports no error.
        return file.error() == QFile::NoError ? qt_error_string(ENOSPC) : file.errorString();
    }
    file.close();
#ifdef Q_OS_UNIX
    // QFile::rename() never replaces an existing file; std::rename() does.
    if (std::rename(QFile::encodeName(file.fileName()).constData(),
                    QFile::encodeName(path).constData()) != 0)
        return qt_error_string();
#else
    QFile::remove(path);
    if (!file.rename(path))
        return file.errorString();
#endif
    discard.dismiss();
    return {};
}

namespace {

// Whether the file belongs to this user. Those of other users are not removed, because `isGoingOn`
// in removeUnfinished() knows only the runs of this user.
bool isOurs(const QString& file)
{
#ifdef Q_OS_UNIX
    return QFileInfo(file).ownerId() == ::geteuid();
#else
    Q_UNUSED(file)
    return true;
#endif
}

}    // namespace

void removeUnfinished(const QString& folder,
                      const std::function<bool(const QString& run)>& isGoingOn)
{
    const QDir place(folder);
    for (const QString& name :
         place.entryList({unfinishedPrefix() + u'*'}, QDir::Files | QDir::Hidden)) {
        const QString run = name.mid(unfinishedPrefix().size()).section(u'.', 0, 0);
        if (!QUuid::fromString(run).isNull() && isOurs(place.filePath(name)) && !isGoingOn(run))
            QFile::remove(place.filePath(name));
    }
}
