#include "copygen/CloudAIService.h"

#include "account/AccountAPI.h"

QCoro::Task<GeneratedCopy> CloudAIService::analyze(const QUrl& image, const QString& objective,
                                                   SocialFormat format, const QString& requestId,
                                                   std::stop_token stop) const
{
    return api->generateSocialCopy(image, objective, format, requestId, std::move(stop));
}
