#include "platform/UserFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QStorageInfo>

using namespace Qt::StringLiterals;

namespace {

QString cachePlace(const QString& name)
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + u'/' + name;
}

}    // namespace

void ignoreRelativeFolders()
{
    for (const char* name : {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME",
                             "XDG_RUNTIME_DIR"}) {
        if (!qgetenv(name).startsWith('/'))
            qunsetenv(name);
    }
}

QString userDataFolder()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(folder);
    return folder;
}

QString userStateFolder()
{
    QString base = qEnvironmentVariable("XDG_STATE_HOME");
    if (base.isEmpty())
        base = QDir::homePath() + u"/.local/state"_s;
    const QString folder = base + u'/' + QCoreApplication::applicationName();
    QDir().mkpath(base);
    QDir().mkdir(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return folder;
}

QString logFile()
{
    return userStateFolder() + u"/moltiva.log"_s;
}

QString whyNotWritable(const QString& folder, const QString& otherwise)
{
    constexpr qint64 someRoom = 64 << 10;    // bytes
    const QStorageInfo disk(folder);
    if (disk.isValid() && disk.isReadOnly())
        return u"el disco es de solo lectura"_qs;
    if (disk.isValid() && disk.bytesAvailable() < someRoom)
        return u"no queda espacio en el disco"_qs;
    return otherwise;
}

QString thumbnailFolder()
{
    return cachePlace(u"thumbnails"_qs);
}

QString stagingPlace()
{
    return cachePlace(u"exports"_qs);
}
