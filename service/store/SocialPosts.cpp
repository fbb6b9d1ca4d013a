#include "service/store/SocialPosts.h"

#include "service/store/Database.h"
#include "service/store/ImageCheck.h"
#include "service/store/Refusal.h"
#include "service/store/Secrets.h"
#include "service/store/Texts.h"

#include <QFile>
#include <QScopeGuard>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 mostPixels = 16'000'000;
constexpr qsizetype longestCaption = 63'206, longestDisplayName = 80, postLongestRequestId = 200;

Refusal wrongRequest(const QString& reason)
{
    return Refusal(400, "invalid_social_publish_request", reason);
}

void check(const SocialPublishRequest& request)
{
    const auto& network = row(knownNetwork(request.network));
    if (request.placement != u"feed" && (request.placement != u"story" || !network.hasStories))
        throw wrongRequest(u"placement must be feed, or story on Instagram"_s);
    if (request.caption.size() > longestCaption)
        throw wrongRequest(u"the caption is too long"_s);
    if (request.requestId.isEmpty() || request.requestId.size() > postLongestRequestId ||
        !isPrintable(request.requestId))
        throw wrongRequest(u"requestId must be 1 to 200 characters"_s);
    if (request.images.isEmpty() || request.images.size() > network.mostImages)
        throw wrongRequest(u"1 to %1 images"_s.arg(network.mostImages));
}

void checkImages(const QList<SocialPublishImage>& images, const QDir& scratch)
{
    for (const SocialPublishImage& image : images) {
        const bool isOfAKind = image.mimeType == u"image/png" || image.mimeType == u"image/jpeg";
        if (!isOfAKind || !isImage(image.dataBase64, image.mimeType, mostPixels, scratch))
            throw Refusal(400, "invalid_social_publish_image");
    }
}

std::optional<QString> postOfRequest(Transaction& transaction, qint64 account,
                                     const QString& requestId)
{
    Rows found = transaction.rows("SELECT id FROM social_post WHERE account = ? AND request_id = ?",
                                  {account, requestId});
    return found.next() ? std::optional(found.text(0)) : std::nullopt;
}

QString connectedName(Transaction& transaction, qint64 account, const QString& network)
{
    Rows found = transaction.rows(
        "SELECT display_name FROM social_connection WHERE account = ? AND network = ?",
        {account, network});
    if (!found.next())
        throw Refusal(409, "social_account_not_connected");
    return found.text(0);
}

bool syncFolder(const QString& path)
{
    const int folder = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY);
    const bool isSynced = folder >= 0 && ::fsync(folder) == 0;
    if (folder >= 0)
        ::close(folder);
    return isSynced;
}

// Writes the pictures and returns when they are on the disk, because the database row of the post,
// written next, refers to them.
void writeImages(const QDir& posts, const QString& id, const QList<SocialPublishImage>& images)
{
    constexpr auto owner = QFile::ReadOwner | QFile::WriteOwner;
    bool isWritten = posts.mkdir(id, owner | QFile::ExeOwner);
    for (qsizetype i = 0; i < images.size() && isWritten; ++i) {
        QFile file(imagePath(posts, id, int(i)));
        const QByteArray& bytes = images[i].dataBase64;
        isWritten = file.open(QIODevice::WriteOnly | QIODevice::NewOnly, owner) &&
                    file.write(bytes) == bytes.size() && file.flush() &&
                    ::fsync(file.handle()) == 0;
    }
    if (!isWritten || !syncFolder(posts.filePath(id)) || !syncFolder(posts.path()))
        throw Refusal(500, "social_upload_failed");
}

QString typesOf(const QList<SocialPublishImage>& images)
{
    QStringList types;
    for (const SocialPublishImage& image : images)
        types.append(image.mimeType);
    return types.join(u' ');
}

}    // namespace

SocialPublishNetwork knownNetwork(const QString& name)
{
    const auto network = fromRawValue<SocialPublishNetwork>(name.toLower());
    if (!network)
        throw Refusal(400, "invalid_social_network");
    return *network;
}

void connectNetwork(Transaction& transaction, qint64 account, SocialPublishNetwork network,
                    const QString& displayName, qint64 now)
{
    const auto name = lineOfText(displayName, longestDisplayName);
    if (!name || name->isEmpty())
        throw Refusal(400, "invalid_display_name");
    transaction.run("INSERT INTO social_connection (account, network, display_name, connected)"
                    " VALUES (?, ?, ?, ?) ON CONFLICT (account, network) DO UPDATE SET"
                    " display_name = excluded.display_name, connected = excluded.connected",
                    {account, rawValue(network), *name, now});
}

QList<SocialNetworkConnection> connections(Transaction& transaction, qint64 account,
                                           const QString& base)
{
    QList<SocialNetworkConnection> all;
    for (const auto& network : Vocabulary<SocialPublishNetwork>::rows) {
        const QString name = network.rawValue.toString();
        SocialNetworkConnection one{
            .network = name,
            .name = network.title.toString(),
            .provider = u"local"_s,
            .providerConfigured = true,
            .isConnected = false,
            .displayName = {},
            .connectedAt = {},
            .connectURL =
                QUrl(base + u"/api/social/connect?network="_s + name + u"&client=moltiva-macos"_s),
        };
        Rows found = transaction.rows("SELECT display_name, connected FROM social_connection"
                                      " WHERE account = ? AND network = ?",
                                      {account, name});
        if (found.next()) {
            one.isConnected = true;
            one.displayName = found.text(0);
            one.connectedAt = isoTime(found.number(1));
        }
        all.append(one);
    }
    return all;
}

QString publish(Database& database, const PostFolders& folders, qint64 account,
                const SocialPublishRequest& request, qint64 now)
{
    check(request);
    const QString network = rawValue(knownNetwork(request.network));
    {
        Transaction transaction(database);
        connectedName(transaction, account, network);
        if (const auto made = postOfRequest(transaction, account, request.requestId))
            return *made;
    }
    checkImages(request.images, folders.scratch);

    const QDir& posts = folders.posts;
    QString id = QString::fromLatin1(newToken());
    auto discard = qScopeGuard([&] { QDir(posts.filePath(id)).removeRecursively(); });
    writeImages(posts, id, request.images);
    Transaction transaction(database);
    // Another thread may have published this request meanwhile.
    if (const auto made = postOfRequest(transaction, account, request.requestId))
        return *made;
    transaction.run("INSERT INTO social_post (id, account, request_id, network, display_name,"
                    " placement, caption, image_types, created) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)",
                    {id, account, request.requestId, network,
                     connectedName(transaction, account, network), request.placement,
                     request.caption, typesOf(request.images), now});
    transaction.commit();
    discard.dismiss();
    return id;
}

std::optional<SocialPost> postWithId(Transaction& transaction, const QString& id)
{
    Rows found = transaction.rows("SELECT network, display_name, placement, caption, image_types,"
                                  " created FROM social_post WHERE id = ?",
                                  {id});
    const auto network =
        found.next() ? fromRawValue<SocialPublishNetwork>(found.text(0)) : std::nullopt;
    if (!network)
        return std::nullopt;
    return SocialPost{id,
                      *network,
                      found.text(1),
                      found.text(2),
                      found.text(3),
                      found.text(4).split(u' '),
                      found.number(5)};
}

QString imagePath(const QDir& posts, const QString& id, int index)
{
    return posts.filePath(u"%1/%2"_s.arg(id).arg(index + 1));
}

void dropUnrecordedPosts(Transaction& transaction, const QDir& posts)
{
    for (const QString& id : posts.entryList(QDir::Dirs | QDir::NoSymLinks)) {
        if (looksLikeToken(id.toUtf8()) && !postWithId(transaction, id))
            QDir(posts.filePath(id)).removeRecursively();
    }
}
