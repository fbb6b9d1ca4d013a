#pragma once

#include <QString>

#include <memory>

class Service;

// Brings requests over HTTP to the routes of a service. What it refuses by itself: connections of
// others to a service of one user, and those that do not keep a pace; strange hosts and origins;
// bodies that are too large or of another type.
class Server {
public:
    // `host`: the address or name to listen on.
    Server(Service& service, const QString& host);
    ~Server();    // stops, and waits for what is still under way
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // `port`, or any free one for 0; then `preferred` is tried first. Whether it listens.
    bool start(int port, int preferred = 0);
    int port() const;
    QString address() const;    // "http://127.0.0.1:4321", for programs of this machine

    // Takes nothing new; lets what is under way end, for three seconds at most. Whether it did.
    bool stop();

private:
    class Http;
    std::unique_ptr<Http> m_http;
};
