#pragma once

#include "model/GeneratedCopy.h"
#include "model/SocialFormat.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <atomic>
#include <optional>

// A server that writes texts for an image. It speaks the interface known as "chat completions".
struct CopyProvider {
    QString address;    // with or without /chat/completions
    QString key;        // may be empty; never sent in the clear to another machine
    QString model;
};

// Read from MOLTIVA_COPY_URL, _KEY and _MODEL, else from the group [copy] of moltiva.conf.
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

// Throws Refusal when the provider is not set up.
PreparedCopyOrder preparedCopyOrder(const CopyProvider& provider, const CopyOrder& order);

// Sends the order and blocks until it is answered, four minutes at most and not beyond `isEnding`.
// Throws Refusal.
GeneratedCopy forwardCopyOrder(const PreparedCopyOrder& order, const std::atomic_bool& isEnding);

// The texts in the answer of a provider; nothing unless all five are there.
std::optional<GeneratedCopy> copyFromAnswer(QByteArrayView answer);
