#pragma once

#include "platform/HttpClient.h"

#include <QTimer>

#include <functional>
#include <variant>

class QNetworkReply;

// One request and what came of it. Emits finished() once.
class HttpExchange : public QObject {
    Q_OBJECT
public:
    using Outcome = std::variant<HttpReply, TransportError>;

    HttpExchange(QNetworkAccessManager& manager, const HttpRequest& request, std::stop_token stop,
                 QObject* parent);
    ~HttpExchange() override;

    // May have come before anybody could wait for it.
    const std::optional<Outcome>& outcome() const { return m_outcome; }
    void stop();

Q_SIGNALS:
    void finished();

private:
    void receive();
    void conclude();
    void finish(Outcome outcome);

    const qint64 m_largest;
    QNetworkReply* m_reply = nullptr;
    QByteArray m_body;
    QTimer m_timer;
    std::optional<Outcome> m_outcome;
    std::optional<std::stop_callback<std::function<void()>>> m_onStop;
};
