#include "platform/PlainFile.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

std::optional<QByteArray> plainFile(const QString& path, qint64 largest)
{
    // O_NONBLOCK: opening a named pipe could block without end.
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0)
        return std::nullopt;
    QFile file;
    if (!file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return std::nullopt;
    }
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > largest)
        return std::nullopt;
    QByteArray bytes = file.read(largest + 1);
    const bool isWhole = file.error() == QFileDevice::NoError && bytes.size() <= largest;
    return isWhole ? std::optional(std::move(bytes)) : std::nullopt;
}
