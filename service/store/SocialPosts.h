#pragma once

#include "account/AccountRecords.h"
#include "service/store/SocialNetwork.h"

#include <QDir>
#include <QStringList>

#include <optional>

class Database;
class Transaction;

// Posts go no further than this machine: they are kept and shown on a page.

struct SocialPost {
    QString id;    // nobody guesses it
    SocialNetwork network = SocialNetwork::instagram;
    QString displayName, placement, caption;
    QStringList imageTypes;    // "image/png"
    qint64 created = 0;
};

struct PostFolders {
    QDir posts;
    QDir scratch;    // for pictures that are looked at
};

// The word of a request; throws Refusal when it is no network.
SocialNetwork knownNetwork(const QString& name);

// Throws Refusal for a name that cannot be shown.
void connectNetwork(Transaction& transaction, qint64 account, SocialNetwork network,
                    const QString& displayName, qint64 now);
QList<SocialNetworkConnection> connections(Transaction& transaction, qint64 account,
                                           const QString& base);

// Gives the post's identifier; a request identifier that was used gives the post it made. Looks at
// every pixel: waits. Throws Refusal.
QString publish(Database& database, const PostFolders& folders, qint64 account,
                const SocialPublishRequest& request, qint64 now);

std::optional<SocialPost> postWithId(Transaction& transaction, const QString& id);
// Removes what a post left that was never finished.
void dropUnrecordedPosts(Transaction& transaction, const QDir& posts);
QString imagePath(const QDir& posts, const QString& id, int index);
