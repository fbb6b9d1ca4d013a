#pragma once

#include "canvas/TextWarnings.h"
#include "model/PublicationItem.h"
#include "model/SocialFormat.h"
#include "platform/PhotoCache.h"

#include <QCoroTask>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPointer>

#include <atomic>
#include <memory>
#include <optional>

// One picture of one item, as it was when it was asked for.
struct TileRequest {
    PublicationItem item;
    SocialFormat format = SocialFormat::carouselPortrait;
    QSize pixels;
    bool operator==(const TileRequest&) const = default;
};

// Whether a picture of an item shows its photo.
enum class PhotoState { shown, missing };

// Pictures of items for the batch column, drawn on the workers from thumbnails. Only the last wish
// counts: what it no longer names is not begun.
class TilePictures : public QObject {
    Q_OBJECT
public:
    explicit TilePictures(std::shared_ptr<PhotoCache> photos, QObject* parent = nullptr);

    // Most urgent first; begun in the next turn of the event loop. `pixels`: of each picture.
    void want(const QList<PublicationItem>& items, SocialFormat format, QSize pixels);
    bool isIdle() const { return m_running.isEmpty() && m_wanted.isEmpty(); }

Q_SIGNALS:
    // Of an item that may have changed since.
    void ready(const TileRequest& request, const QImage& picture, PhotoState photo,
               const QList<TextWarning>& warnings);

private:
    void startNext();
    static QCoro::Task<> draw(QPointer<TilePictures> self, TileRequest request,
                              std::shared_ptr<PhotoCache> photos);

    std::shared_ptr<PhotoCache> m_photos;
    QList<TileRequest> m_wanted;    // not begun yet
    QList<TileRequest> m_running;
};

// The decoded photo of the item on the stage: at once what is in memory, then the level that its
// size there needs. Only the last request counts.
class StagePhoto : public QObject {
    Q_OBJECT
public:
    explicit StagePhoto(std::shared_ptr<PhotoCache> photos, QObject* parent = nullptr);

    // `pixels`: of the whole canvas on screen. Asks for nothing that it has told already.
    void show(const PublicationItem& item, SocialFormat format, QSize pixels);
    void clear();
    bool isIdle() const { return m_running == 0; }

Q_SIGNALS:
    void ready(const QImage& photo);
    void photoRead();                          // from its file, just now or a while ago
    void photoMissing(const QString& name);    // its pixels can no longer be read

private:
    struct Wish {
        PhotoHandle photo;
        PhotoLevel level = PhotoLevel::full;
        bool operator==(const Wish&) const = default;
    };
    // The number of the last request; a worker looks before it begins something long.
    using Latest = std::shared_ptr<std::atomic<quint64>>;
    static QCoro::Task<> load(QPointer<StagePhoto> self, quint64 request, Wish wish, QString name,
                              std::shared_ptr<PhotoCache> photos, Latest latest);

    std::shared_ptr<PhotoCache> m_photos;
    Latest m_latest = std::make_shared<std::atomic<quint64>>(0);
    std::optional<Wish> m_wish;
    int m_running = 0;
};
