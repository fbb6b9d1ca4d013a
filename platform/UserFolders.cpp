#include "platform/UserFolders.h"

#include <QDir>
#include <QStandardPaths>

QString userDataFolder()
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(folder);
    return folder;
}
