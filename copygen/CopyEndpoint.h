#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <chrono>
#include <optional>
#include <stop_token>

// A vision model that already runs on this machine and speaks the interface known as "chat
// completions".
struct CopyEndpoint {
    QUrl url;
    QString model, key;    // may be empty
    QString problem;       // why it cannot be used, for the user; empty when it can
};

// The address in MOLTIVA_LOCAL_COPY_URL, else url= in the group [localCopy] of the configuration
// file, with that group's model= and key=; nothing without an address.
std::optional<CopyEndpoint> configuredEndpoint(const QString& configurationFile);

struct EndpointQuestion {
    QUrl photo;
    QString prompt;
    double temperature = 0;
    quint32 seed = 0;    // without effect at temperature 0
    std::chrono::milliseconds timeout = std::chrono::seconds(420);
};

// What the model wrote, in UTF-8; nothing without an answer. Blocks: for a thread that may wait.
std::optional<QByteArray> answerOf(const CopyEndpoint& endpoint, const EndpointQuestion& question,
                                   const std::stop_token& stop);
