#pragma once

#include "platform/Completion.h"
#include "platform/Http.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <stop_token>
#include <variant>

class QNetworkAccessManager;
class QNetworkProxyFactory;
class QNetworkReply;
class RequestBody;

// Why a reply did not come, or not whole.
TransportError transportErrorOf(const QNetworkReply& reply);

// The system's proxies, but none for this machine itself.
std::unique_ptr<QNetworkProxyFactory> systemProxies();

// One request and its outcome: a reply or an error.
class HttpExchange : public QObject {
    Q_OBJECT
public:
    using Outcome = std::variant<HttpReply, TransportError>;

    HttpExchange(const HttpRequest& request, std::stop_token stop, QObject* parent);
    ~HttpExchange() override;

    Completion& finished() { return m_finished; }
    const Outcome& outcome() const { return *m_outcome; }    // valid once finished() is complete
    void stop();    // also a request that stays once it is sent

private:
    void stopUnlessSent();
    void receive();
    void conclude();
    void answer();
    void finish(Outcome outcome);

    const qint64 m_largest;
    const bool m_cutsLargeReply, m_staysOnceSent;
    // Each exchange has its own manager: a shared one would reuse a connection that the server is
    // about to close.
    QNetworkAccessManager* m_manager;
    RequestBody* m_upload = nullptr;    // null: the request has no body
    QNetworkReply* m_reply = nullptr;
    QByteArray m_body;    // of the reply
    QTimer m_timer;
    std::optional<Outcome> m_outcome;
    Completion m_finished;
    std::optional<std::stop_callback<std::function<void()>>> m_onStop;
};
