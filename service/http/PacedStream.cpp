#include "service/http/PacedStream.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

constexpr auto headPatience = 2500ms, patience = 15'000ms, drainTime = 1000ms;
constexpr size_t bytesPerMillisecond = 64;
constexpr size_t longestHead = 64 * 1024;

void describe(const sockaddr_storage& address, std::string& ip, int& port)
{
    std::array<char, INET6_ADDRSTRLEN> text{};
    const void* number = nullptr;
    if (address.ss_family == AF_INET) {
        const auto& v4 = reinterpret_cast<const sockaddr_in&>(address);
        number = &v4.sin_addr;
        port = ntohs(v4.sin_port);
    } else if (address.ss_family == AF_INET6) {
        const auto& v6 = reinterpret_cast<const sockaddr_in6&>(address);
        number = &v6.sin6_addr;
        port = ntohs(v6.sin6_port);
    }
    if (number && inet_ntop(address.ss_family, number, text.data(), text.size()))
        ip = text.data();
}

}    // namespace

std::chrono::milliseconds PacedStream::Pace::left() const
{
    return base + std::chrono::milliseconds(bytes / bytesPerMillisecond) - waited;
}

bool PacedStream::wait(socket_t socket, short events, Pace& pace)
{
    const auto left = pace.left();
    if (left <= 0ms)
        return false;
    const auto begin = Clock::now();
    pollfd poll{socket, events, 0};
    const int result = ::poll(&poll, 1, int(left.count()));
    pace.waited += std::chrono::ceil<std::chrono::milliseconds>(Clock::now() - begin);
    return result > 0 || (result < 0 && errno == EINTR);
}

bool PacedStream::waitForRequest(std::chrono::milliseconds time)
{
    pollfd poll{m_socket, POLLIN, 0};
    return m_begin < m_end || ::poll(&poll, 1, int(time.count())) > 0;
}

void PacedStream::beginRequest()
{
    m_inHead = true;
    m_sectionBytes = 0;
    m_reading = {.base = headPatience};
    m_writing = {.base = patience};
}

void PacedStream::headHasEnded()
{
    m_inHead = false;
    m_sectionBytes = 0;
    m_reading = {.base = patience};
}

void PacedStream::drain()
{
    ::shutdown(m_socket, SHUT_WR);
    const auto end = Clock::now() + drainTime;
    while (Clock::now() < end) {
        pollfd poll{m_socket, POLLIN, 0};
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (::poll(&poll, 1, int(left.count())) <= 0 ||
            ::recv(m_socket, m_buffer.data(), m_buffer.size(), 0) <= 0)
            return;
    }
}

bool PacedStream::is_readable() const
{
    return m_begin < m_end || wait(m_socket, POLLIN, m_reading);
}

bool PacedStream::is_writable() const
{
    return wait(m_socket, POLLOUT, m_writing);
}

ssize_t PacedStream::read(char* to, size_t size)
{
    if (m_inHead && m_sectionBytes >= longestHead)
        return -1;
    while (m_begin == m_end) {
        if (!wait(m_socket, POLLIN, m_reading))
            return -1;
        const ssize_t received = ::recv(m_socket, m_buffer.data(), m_buffer.size(), MSG_DONTWAIT);
        if (received < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (received <= 0)
            return received;
        m_begin = 0;
        m_end = size_t(received);
        m_reading.bytes += size_t(received);
    }
    const size_t taken = std::min(size, m_end - m_begin);
    std::memcpy(to, m_buffer.data() + m_begin, taken);
    m_begin += taken;
    m_sectionBytes += taken;
    return ssize_t(taken);
}

ssize_t PacedStream::write(const char* from, size_t size)
{
    while (true) {
        if (!wait(m_socket, POLLOUT, m_writing))
            return -1;
        const ssize_t sent = ::send(m_socket, from, size, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (sent > 0)
            m_writing.bytes += size_t(sent);
        return sent;
    }
}

void PacedStream::get_remote_ip_and_port(std::string& ip, int& port) const
{
    sockaddr_storage address{};
    socklen_t size = sizeof(address);
    if (::getpeername(m_socket, reinterpret_cast<sockaddr*>(&address), &size) == 0)
        describe(address, ip, port);
}

void PacedStream::get_local_ip_and_port(std::string& ip, int& port) const
{
    sockaddr_storage address{};
    socklen_t size = sizeof(address);
    if (::getsockname(m_socket, reinterpret_cast<sockaddr*>(&address), &size) == 0)
        describe(address, ip, port);
}
