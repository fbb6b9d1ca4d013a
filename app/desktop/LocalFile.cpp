#include "app/desktop/LocalFile.h"

#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace {

// A bare path as it was given. Taken for an address, it would end at the first "?" or "#".
QString barePath(const QUrl& address)
{
    QString path = address.path();
    if (address.hasQuery())
        path += u'?' + address.query(QUrl::FullyDecoded);
    if (address.hasFragment())
        path += u'#' + address.fragment(QUrl::FullyDecoded);
    return path;
}

}    // namespace

QUrl onThisMachine(const QUrl& address)
{
    const QString host = address.host();
    const bool isPath =
        address.scheme().isEmpty() && host.isEmpty() && address.path().startsWith(u'/');
    const bool isHere = host.compare(u"localhost"_s, Qt::CaseInsensitive) == 0 ||
                        host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
    if (isPath)
        return QUrl::fromLocalFile(barePath(address));
    const bool isFile = address.scheme() == u"file"_s && isHere;
    return isFile ? QUrl::fromLocalFile(address.path()) : address;
}
