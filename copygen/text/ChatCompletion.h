#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <optional>

// The interface of model servers that is known as "chat completions": a question about one image.
struct ChatQuestion {
    QString model;    // empty: the server has only one
    QString prompt;
    QString mimeType;
    QByteArray image;
    int mostTokens = 0;    // of the answer; 0: the server decides
    std::optional<double> temperature;
    std::optional<quint32> seed;
    QByteArray schema;    // JSON schema that the answer must fit; empty: none
};

QByteArray chatRequestBody(const ChatQuestion& question);

// What the model wrote; nothing when the reply has another form.
std::optional<QString> chatAnswer(QByteArrayView reply);

// `address`: with or without /chat/completions. May be invalid.
QUrl chatUrl(const QString& address);
