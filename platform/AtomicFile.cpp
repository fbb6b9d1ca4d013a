#include "platform/AtomicFile.h"

#include <QFileInfo>
#include <QTemporaryFile>

#include <cstdio>

using namespace Qt::StringLiterals;

QString writeAtomically(const QString& path, QByteArrayView bytes)
{
    const QFileInfo target(path);
    // Hidden, and short: a target's name may already be as long as the file system allows.
    QTemporaryFile file(target.dir().filePath(u".moltiva-XXXXXX"_s));
    if (!file.open())
        return file.errorString();
    if (file.write(bytes.data(), bytes.size()) != bytes.size() || !file.flush())
        return file.errorString();
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    const QString temporary = file.fileName();
    file.close();
#ifdef Q_OS_UNIX
    // QFile::rename never replaces.
    if (std::rename(QFile::encodeName(temporary).constData(),
                    QFile::encodeName(path).constData()) != 0)
        return qt_error_string();
#else
    QFile::remove(path);
    if (!QFile::rename(temporary, path))
        return qt_error_string();
#endif
    file.setAutoRemove(false);
    return {};
}
