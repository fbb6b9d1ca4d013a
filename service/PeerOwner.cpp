#include "service/PeerOwner.h"

#include <QFile>

#include <array>
#include <cstring>
#include <optional>

#include <unistd.h>

namespace {

#ifdef Q_OS_LINUX
// As the system's table writes them: words of the machine's byte order in hexadecimal.
QByteArray written(const void* bytes, size_t size)
{
    QByteArray text;
    for (size_t place = 0; place < size; place += sizeof(quint32)) {
        quint32 word = 0;
        std::memcpy(&word, static_cast<const char*>(bytes) + place, sizeof(word));
        text += QByteArray::number(word, 16).rightJustified(8, '0').toUpper();
    }
    return text;
}

QByteArray written(const Peer& peer, QAbstractSocket::NetworkLayerProtocol protocol)
{
    const QByteArray port = QByteArray::number(peer.port, 16).rightJustified(4, '0').toUpper();
    if (protocol == QAbstractSocket::IPv6Protocol) {
        const Q_IPV6ADDR address = peer.address.toIPv6Address();
        return written(&address, sizeof(address)) + ':' + port;
    }
    bool isVersion4 = false;
    std::array<uchar, 4> bytes{};
    const quint32 address = peer.address.toIPv4Address(&isVersion4);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = uchar(address >> (24 - 8 * i));
    return isVersion4 ? written(bytes.data(), bytes.size()) + ':' + port : QByteArray();
}

// Nothing when the table does not have it.
std::optional<uint> owner(const char* table, const QByteArray& theirs, const QByteArray& ours)
{
    constexpr int userColumn = 7;
    QFile file(QString::fromLatin1(table));
    if (theirs.isEmpty() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray wanted = ' ' + theirs + ' ' + ours + ' ';
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine()) {
        if (line.contains(wanted))
            return line.simplified().split(' ').value(userColumn).toUInt();
    }
    return std::nullopt;
}
#endif

}    // namespace

bool isOwnProgram(const Peer& theirs, const Peer& ours)
{
#ifdef Q_OS_LINUX
    const auto in = [&](const char* table, QAbstractSocket::NetworkLayerProtocol protocol) {
        return owner(table, written(theirs, protocol), written(ours, protocol));
    };
    auto user = in("/proc/net/tcp", QAbstractSocket::IPv4Protocol);
    // Also an address of version 4 can be spoken to through a socket of version 6.
    if (!user)
        user = in("/proc/net/tcp6", QAbstractSocket::IPv6Protocol);
    return user == ::geteuid();
#else
    Q_UNUSED(theirs)
    Q_UNUSED(ours)
    return true;
#endif
}
