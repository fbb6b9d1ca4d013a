#pragma once

#include "model/SocialPublishNetwork.h"

#include <QString>

// What the window and the commands say about publishing in the same words.
namespace PublishSentences {

// The state of a network.
inline constexpr QStringView connected = u"Conectada", pending = u"Pendiente servidor",
                             absent = u"Sin conectar";

// More images are selected than the network takes in one post.
QString limit(SocialPublishNetwork network, qsizetype mostImages);
QString inactiveProvider(SocialPublishNetwork network);
QString signInBeforeConnecting(SocialPublishNetwork network);

}    // namespace PublishSentences
