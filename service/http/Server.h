#pragma once

#include <QString>

#include <memory>

class Service;

// Serves the routes of a service over HTTP. Also refuses connections of other users to a service
// that is for one user; clients that are too slow; requests for other hosts or from other origins;
// bodies that are too large or of the wrong type.
class Server {
public:
    // `host`: the address or name to listen on.
    Server(Service& service, const QString& host);
    ~Server();    // stops, and waits for the requests under way
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    // Listens on `port`; for 0, on `preferred` if possible, else on any free port. Returns whether
    // it listens.
    bool start(int port, int preferred = 0);
    int port() const;
    QString address() const;    // "http://127.0.0.1:4321", for programs of this machine

    // Accepts nothing new and gives the requests under way three seconds to end. Returns whether
    // all of them have ended.
    bool stop();

private:
    class Http;
    std::unique_ptr<Http> m_http;
};
