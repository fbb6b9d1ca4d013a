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

// A wanted picture of an item, with the item as it was when the picture was asked for.
struct TileRequest {
    PublicationItem item;
    SocialFormat format = SocialFormat::carouselPortrait;
    QSize pixels;
    bool operator==(const TileRequest&) const = default;
};

// Whether a picture of an item shows its photo.
enum class PhotoState { shown, missing };

// Pictures of items for the batch column, drawn on the workers from thumbnails. Only the last
// want() counts: a picture that it no longer names is not begun.
class TilePictures : public QObject {
    Q_OBJECT
public:
    explicit TilePictures(std::shared_ptr<PhotoCache> photos, QObject* parent = nullptr);

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
                              std::shared_ptr<PhotoCache> photos);

    std::shared_ptr<PhotoCache> m_photos;
    QList<TileRequest> m_wanted;    // not begun yet
    QList<TileRequest> m_running;
};
