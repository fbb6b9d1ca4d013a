#include "service/http/ConnectionPeer.h"

#include <QFile>
#include <QHostAddress>

#include <array>
#include <cstring>
#include <optional>

#include <arpa/inet.h>
#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

// One end of a connection. endOf() turns an IPv4 address that is written as IPv6 (::ffff:127.0.0.1)
// into plain IPv4.
struct End {
    QHostAddress address;
    quint16 port = 0;

    bool isVersion4() const { return address.protocol() == QAbstractSocket::IPv4Protocol; }
};

using NameOf = int (*)(int, sockaddr*, socklen_t*);

End endOf(int socket, NameOf nameOf)
{
    sockaddr_storage name{};
    socklen_t size = sizeof(name);
    if (nameOf(socket, reinterpret_cast<sockaddr*>(&name), &size) != 0)
        return {};
    End end{QHostAddress(reinterpret_cast<const sockaddr*>(&name)),
            ntohs(name.ss_family == AF_INET6 ? reinterpret_cast<sockaddr_in6&>(name).sin6_port
                                             : reinterpret_cast<sockaddr_in&>(name).sin_port)};
    bool isVersion4 = false;
    const quint32 number = end.address.toIPv4Address(&isVersion4);
    if (isVersion4)
        end.address = QHostAddress(number);
    return end;
}

// The user of a socket; nothing for an inode of 0, which means that the program has closed it.
std::optional<uint> ownerIfHeld(uint user, quint64 inode)
{
    return inode != 0 ? std::optional(user) : std::nullopt;
}

void setAddress(__be32 (&words)[4], const End& end)
{
    if (end.isVersion4()) {
        words[0] = htonl(end.address.toIPv4Address());
    } else {
        const Q_IPV6ADDR bytes = end.address.toIPv6Address();
        std::memcpy(words, &bytes, sizeof(bytes));
    }
}

// Asks the kernel for the user of the socket that is bound to `theirs` and connected to `ours`.
// Takes equally long however many sockets there are.
std::optional<uint> askedOwner(const End& theirs, const End& ours)
{
    struct {
        nlmsghdr head{};
        inet_diag_req_v2 question{};
    } request;
    request.head.nlmsg_len = sizeof(request);
    request.head.nlmsg_type = SOCK_DIAG_BY_FAMILY;
    request.head.nlmsg_flags = NLM_F_REQUEST;
    request.question.sdiag_family = theirs.isVersion4() ? AF_INET : AF_INET6;
    request.question.sdiag_protocol = IPPROTO_TCP;
    request.question.idiag_states = ~0U;
    inet_diag_sockid& wanted = request.question.id;
    wanted.idiag_sport = htons(theirs.port);
    wanted.idiag_dport = htons(ours.port);
    setAddress(wanted.idiag_src, theirs);
    setAddress(wanted.idiag_dst, ours);
    wanted.idiag_if = theirs.address.scopeId().toUInt();
    wanted.idiag_cookie[0] = wanted.idiag_cookie[1] = INET_DIAG_NOCOOKIE;

    struct {
        nlmsghdr head{};
        inet_diag_msg found{};
        std::array<char, 1024> more{};
    } answer;
    const int system = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_SOCK_DIAG);
    if (system < 0)
        return std::nullopt;
    const bool isAnswered = ::send(system, &request, sizeof(request), 0) == sizeof(request) &&
                            ::recv(system, &answer, sizeof(answer), MSG_DONTWAIT) >=
                                ssize_t(sizeof(answer.head) + sizeof(answer.found));
    ::close(system);
    // Checks the port in the answer: if the connection does not exist, the kernel answers with a
    // socket that listens on the port of `theirs`.
    if (!isAnswered || answer.head.nlmsg_type != SOCK_DIAG_BY_FAMILY ||
        answer.found.id.idiag_dport != wanted.idiag_dport)
        return std::nullopt;
    return ownerIfHeld(answer.found.idiag_uid, answer.found.idiag_inode);
}

// Writes an end as /proc/net/tcp does: 32-bit words in the machine's byte order, in hexadecimal.
QByteArray written(const End& end, bool asVersion6)
{
    __be32 words[4]{};
    QHostAddress address = end.address;
    if (asVersion6)
        address = QHostAddress(address.toIPv6Address());
    setAddress(words, {address, end.port});
    QByteArray text;
    for (int i = 0; i < (asVersion6 ? 4 : 1); ++i)
        text += QByteArray::number(words[i], 16).rightJustified(8, '0').toUpper();
    return text + ':' + QByteArray::number(end.port, 16).rightJustified(4, '0').toUpper();
}

// Finds the user in /proc/net/tcp or /proc/net/tcp6; reads the whole file in the worst case.
std::optional<uint> readOwner(bool ofVersion6, const End& theirs, const End& ours)
{
    constexpr int userColumn = 7, inodeColumn = 9;
    QFile file(ofVersion6 ? u"/proc/net/tcp6"_s : u"/proc/net/tcp"_s);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray wanted =
        ' ' + written(theirs, ofVersion6) + ' ' + written(ours, ofVersion6) + ' ';
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine()) {
        if (line.contains(wanted)) {
            const auto columns = line.simplified().split(' ');
            return ownerIfHeld(columns.value(userColumn).toUInt(),
                               columns.value(inodeColumn).toULongLong());
        }
    }
    return std::nullopt;
}

}    // namespace

ConnectionPeer peerOf(int socket)
{
    const End theirs = endOf(socket, &::getpeername), ours = endOf(socket, &::getsockname);
    const bool isLoopback = theirs.address.isLoopback();
    auto user = askedOwner(theirs, ours);
    // Falls back to /proc, because some kernels do not answer askedOwner().
    if (!user && isLoopback && theirs.isVersion4())
        user = readOwner(false, theirs, ours);
    if (!user && isLoopback)
        user = readOwner(true, theirs, ours);
    if (user)
        return {u"user %1"_s.arg(*user), *user == ::geteuid()};
    return {isLoopback ? u"loopback"_s : theirs.address.toString(), false};
}
