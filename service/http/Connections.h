#pragma once

#include "service/http/ConnectionPeer.h"

#include <QtGlobal>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>

#include <sys/socket.h>

// The open sockets of the server and the state of each. They can be ended: all when the service
// ends, one that is not busy when there are too many.
class Connections {
public:
    enum class State {
        waiting,      // idle, or the head of a request is being read
        receiving,    // the body of a request is being read
        busy,
    };

    // Returns false, and adds nothing, if the peer is not our own user and already has as many
    // connections as one source may have. Ends another connection, one that is not busy, when there
    // are too many.
    bool add(int socket, const ConnectionPeer& peer);
    void remove(int socket);
    // Returns false if `socket` has been ended. Its request must then not be carried out, because
    // the client could not receive the answer.
    bool setState(int socket, State state);

    void endWaiting();
    void endAll();
    bool waitUntilNone(std::chrono::milliseconds time);

private:
    struct Connection {
        QString source;
        quint64 since = 0;    // the value of `m_changes` when `state` was set
        State state = State::waiting;
        bool isEnded = false;
    };
    static void end(int socket, Connection& connection);
    void makeRoom();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<int, Connection> m_all;
    quint64 m_changes = 0;
};
