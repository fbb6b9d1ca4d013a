#pragma once

#include "service/http/ConnectionPeer.h"

#include <QtGlobal>

#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>

#include <sys/socket.h>

// Which sockets are open and what they are at, to end them: all when the service ends, and the one
// that has been waited for the longest when there are many.
class Connections {
public:
    enum class State {
        waiting,      // idle, or in the head of a request
        receiving,    // the body
        busy,
    };

    // Whether there is room. Another user or machine may only have some.
    bool add(int socket, const ConnectionPeer& peer);
    void remove(int socket);
    // Whether it is still open; else nothing may be done any more for who could not hear of it.
    bool setState(int socket, State state);

    void endWaiting();
    void endAll();
    bool waitUntilNone(std::chrono::milliseconds time);

private:
    struct Connection {
        QString source;
        quint64 since = 0;    // counts changes
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
