#pragma once

#include "model/GeneratedCopy.h"
#include "model/SocialFormat.h"

#include <QCoroTask>
#include <QUrl>

#include <stop_token>

class AccountAPI;

// Has the account service write the copy of an image.
struct CloudAIService {
    AccountAPI* api = nullptr;    // outlives every call

    // `requestId`: that of the reservation which pays for the copy. Throws what
    // AccountAPI::generateSocialCopy() throws.
    QCoro::Task<GeneratedCopy> analyze(const QUrl& image, const QString& objective,
                                       SocialFormat format, const QString& requestId,
                                       std::stop_token stop = {}) const;
};
