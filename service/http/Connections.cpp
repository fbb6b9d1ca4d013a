#include "service/http/Connections.h"

#include <algorithm>
#include <tuple>

namespace {

// Numbers of connections. From `mostAtEase` on, each new connection ends one that is not busy.
constexpr int mostAtEase = 192, mostOfOneSource = 64;

}    // namespace

bool Connections::add(int socket, const ConnectionPeer& peer)
{
    const std::scoped_lock lock(m_mutex);
    const auto ofTheSame = std::ranges::count_if(
        m_all, [&](const auto& entry) { return entry.second.source == peer.source; });
    if (ofTheSame >= mostOfOneSource && !peer.isOwnUser)
        return false;
    makeRoom();
    m_all[socket] = {.source = peer.source, .since = ++m_changes};
    return true;
}

void Connections::remove(int socket)
{
    const std::scoped_lock lock(m_mutex);
    m_all.erase(socket);
    m_changed.notify_all();
}

bool Connections::setState(int socket, State state)
{
    const std::scoped_lock lock(m_mutex);
    Connection& connection = m_all[socket];
    connection.state = state;
    connection.since = ++m_changes;
    return !connection.isEnded;
}

void Connections::endWaiting()
{
    const std::scoped_lock lock(m_mutex);
    for (auto& [socket, connection] : m_all) {
        if (connection.state == State::waiting)
            end(socket, connection);
    }
}

void Connections::endAll()
{
    const std::scoped_lock lock(m_mutex);
    for (auto& [socket, connection] : m_all)
        end(socket, connection);
}

bool Connections::waitUntilNone(std::chrono::milliseconds time)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, time, [&] { return m_all.empty(); });
}

void Connections::end(int socket, Connection& connection)
{
    connection.isEnded = true;
    ::shutdown(socket, SHUT_RDWR);
}

void Connections::makeRoom()
{
    const auto counts = [](const auto& entry) { return !entry.second.isEnded; };
    if (std::ranges::count_if(m_all, counts) < mostAtEase)
        return;
    // Ranks busy connections last and never ends them here: their answers are under way.
    const auto rank = [](const auto& entry) {
        const Connection& one = entry.second;
        return std::tuple(one.isEnded || one.state == State::busy, one.state, one.since);
    };
    const auto first = std::ranges::min_element(m_all, {}, rank);
    if (!first->second.isEnded && first->second.state != State::busy)
        end(first->first, first->second);
}
