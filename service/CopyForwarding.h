#pragma once

#include "model/GeneratedCopy.h"
#include "model/SocialFormat.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <atomic>
#include <optional>

// A server that writes texts for an image. It speaks the HTTP interface known as "chat
// completions".
struct CopyProvider {
    QString address;    // URL, with or without /chat/completions at its end
    QString key;        // may be empty; sent to other machines over https only
    QString model;
};

// Reads MOLTIVA_COPY_URL, _KEY and _MODEL; for each that is empty, the group [copy] of
// moltiva.conf.
CopyProvider configuredCopyProvider();

struct CopyOrder {
    QString objective;
    SocialFormat format = SocialFormat::storyReel;
    QString mimeType;
    QByteArray image;
};

struct PreparedCopyOrder {
    QUrl url;
    QString key;
    QByteArray body;
};

// Throws Refusal when the provider's settings are missing or not supported.
PreparedCopyOrder preparedCopyOrder(const CopyProvider& provider, const CopyOrder& order);

// Sends the order and blocks until the answer arrives. Gives up after four minutes, or when
// `isEnding` becomes true. Throws Refusal on failure.
GeneratedCopy forwardCopyOrder(const PreparedCopyOrder& order, const std::atomic_bool& isEnding);

// Reads the texts in a provider's answer. Nothing if one of the five is missing or too long.
std::optional<GeneratedCopy> copyFromAnswer(QByteArrayView answer);
