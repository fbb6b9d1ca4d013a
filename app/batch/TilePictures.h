#pragma once

#include "canvas/TextWarnings.h"
#include "model/PublicationItem.h"
#include "model/SocialFormat.h"
#include "platform/photo/PhotoCache.h"

#include <QCoroTask>
#include <QImage>
#include <QList>
#include <QObject>
#include <QPointer>

#include <memory>

// A request for an item's picture. `item` is a copy from when the picture was requested.
struct TileRequest {
    PublicationItem item;
    SocialFormat format = SocialFormat::carouselPortrait;
    QSize pixels;
    bool operator==(const TileRequest&) const = default;
};

// Whether an item's picture shows the item's photo.
enum class PhotoState { shown, missing };

// What pictures are drawn from: thumbnails suffice for small ones; `decoded` are photos decoded at
// the level that the size of the picture needs.
enum class PhotoDetail { thumbnail, decoded };

// Draws pictures of items on worker threads, such as those of the batch column. Each want()
// replaces the one before: a picture that it does not ask for again is not begun.
class TilePictures : public QObject {
    Q_OBJECT
public:
    explicit TilePictures(std::shared_ptr<PhotoCache> photos, QObject* parent = nullptr,
                          PhotoDetail detail = PhotoDetail::thumbnail);

    // `items`: most urgent first. `pixels`: the size of each picture. Drawing begins in the next
    // turn of the event loop.
    void want(const QList<PublicationItem>& items, SocialFormat format, QSize pixels);
    bool isIdle() const { return m_running.isEmpty() && m_wanted.isEmpty(); }

Q_SIGNALS:
    // The item may have changed since the request.
    void ready(const TileRequest& request, const QImage& picture, PhotoState photo,
               const QList<TextWarning>& warnings);

private:
    void startNext();
    static QCoro::Task<> draw(QPointer<TilePictures> self, TileRequest request,
                              std::shared_ptr<PhotoCache> photos, PhotoDetail detail);

    std::shared_ptr<PhotoCache> m_photos;
    const PhotoDetail m_detail;
    QList<TileRequest> m_wanted;    // requests that are not begun yet
    QList<TileRequest> m_running;
};
