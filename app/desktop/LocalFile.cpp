#include "app/desktop/LocalFile.h"

#include <QSysInfo>

using namespace Qt::StringLiterals;

QUrl onThisMachine(const QUrl& address)
{
    const QString host = address.host();
    const bool isPath =
        address.scheme().isEmpty() && host.isEmpty() && address.path().startsWith(u'/');
    const bool isHere = host.compare(u"localhost"_s, Qt::CaseInsensitive) == 0 ||
                        host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
    const bool isFile = address.scheme() == u"file"_s && isHere;
    return isPath || isFile ? QUrl::fromLocalFile(address.path()) : address;
}
