#pragma once

#include "platform/Http.h"

#include <QCoroTask>
#include <QObject>

#include <stop_token>

// Sends requests and returns whole replies. Stores no cookies, follows no redirections, checks
// certificates. A request with a body is sent only once: Qt is prevented from repeating it. Lives
// on the interface thread. The destructor ends open requests with TransportError::stopped().
class HttpClient : public QObject {
    Q_OBJECT
public:
    explicit HttpClient(QObject* parent = nullptr);
    ~HttpClient() override;

    // Throws TransportError.
    QCoro::Task<HttpReply> send(HttpRequest request, std::stop_token stop = {});
};
