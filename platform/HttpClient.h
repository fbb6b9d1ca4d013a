#pragma once

#include "platform/Http.h"

#include <QCoroTask>
#include <QObject>

#include <stop_token>

// Sends requests and brings back whole replies. Keeps no cookies; follows no redirections;
// certificates are checked. Requests with a body leave once: they are never sent again unasked.
// Lives on the interface thread. When it goes, what is under way ends as stopped.
class HttpClient : public QObject {
    Q_OBJECT
public:
    explicit HttpClient(QObject* parent = nullptr);
    ~HttpClient() override;

    // Throws TransportError.
    QCoro::Task<HttpReply> send(HttpRequest request, std::stop_token stop = {});
};
