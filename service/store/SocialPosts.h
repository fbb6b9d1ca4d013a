#pragma once

#include "account/AccountRecords.h"
#include "model/SocialPublishNetwork.h"

#include <QDir>
#include <QStringList>

#include <optional>

class Database;
class Transaction;

// Posts are not sent to the social networks: they are stored on this machine, and a page shows
// them.

struct SocialPost {
    QString id;    // cannot be guessed
    SocialPublishNetwork network = SocialPublishNetwork::instagram;
    QString displayName, placement, caption;
    QStringList imageTypes;    // MIME types of the images in their order: "image/png"
    qint64 created = 0;
};

struct PostFolders {
    QDir posts;
    QDir scratch;    // for temporary files of pictures being checked
};

// The network that a request names. Throws Refusal for an unknown one.
SocialPublishNetwork knownNetwork(const QString& name);

// Throws Refusal for a name that is empty, too long or holds control characters.
void connectNetwork(Transaction& transaction, qint64 account, SocialPublishNetwork network,
                    const QString& displayName, qint64 now);
QList<SocialNetworkConnection> connections(Transaction& transaction, qint64 account,
                                           const QString& base);

// Returns the identifier of the new post. If the request's `requestId` was used before, makes no
// post and returns the identifier of the earlier one. Blocks while it decodes every picture. Throws
// Refusal.
QString publish(Database& database, const PostFolders& folders, qint64 account,
                const SocialPublishRequest& request, qint64 now);

std::optional<SocialPost> postWithId(Transaction& transaction, const QString& id);
// Removes the pictures of posts that are not in the database, because the service ended before it
// could record them.
void dropUnrecordedPosts(Transaction& transaction, const QDir& posts);
QString imagePath(const QDir& posts, const QString& id, int index);
