#include "platform/PrivateSocket.h"

#include <QDir>
#include <QFile>
#include <QLocalSocket>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// Whether no other user can enter the folder. A symbolic link is refused, because it could later
// lead elsewhere.
bool isOursAlone(const QString& folder)
{
    struct stat status = {};
    return QDir::isAbsolutePath(folder) &&
           ::lstat(QFile::encodeName(QDir::cleanPath(folder)).constData(), &status) == 0 &&
           S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
           (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

bool fits(const QString& path)
{
    return size_t(QFile::encodeName(path).size()) < sizeof(sockaddr_un::sun_path);
}

}    // namespace

QString privateSocketPath(const QString& name, const QString& dataFolder)
{
    const auto pathIn = [&](const QString& folder) {
        const QString path = QDir(folder).filePath(name);
        return isOursAlone(folder) && fits(path) ? path : QString();
    };
    // A program that no session manager started lacks XDG_RUNTIME_DIR, although the folder may
    // exist.
    for (const QString& runtime :
         {qEnvironmentVariable("XDG_RUNTIME_DIR"), u"/run/user/%1"_s.arg(::geteuid())}) {
        if (const QString path = pathIn(runtime); !path.isEmpty())
            return path;
    }
    const QString beside = QDir(dataFolder).absoluteFilePath(u"run"_s);
    QDir().mkdir(beside, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return pathIn(beside);
}

bool leadsToOwnUser(const QLocalSocket& socket)
{
    ucred listener = {};
    socklen_t size = sizeof(listener);
    return ::getsockopt(int(socket.socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &listener,
                        &size) == 0 &&
           listener.uid == ::geteuid();
}
