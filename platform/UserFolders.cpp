#include "platform/UserFolders.h"

#include <QDir>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

QString cachePlace(const QString& name)
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + u'/' + name;
}

}    // namespace

void ignoreRelativeFolders()
{
    for (const char* name :
         {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"}) {
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

QString thumbnailFolder()
{
    return cachePlace(u"thumbnails"_qs);
}

QString stagingPlace()
{
    return cachePlace(u"exports"_qs);
}
