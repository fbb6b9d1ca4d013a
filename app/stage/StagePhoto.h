#pragma once

#include "model/PublicationItem.h"
#include "model/SocialFormat.h"
#include "platform/photo/PhotoCache.h"

#include <QCoroTask>
#include <QImage>
#include <QObject>
#include <QPointer>

#include <atomic>
#include <memory>
#include <optional>

// Loads the photo of the item on the stage: emits at once what is in memory, later the photo
// decoded at the level that its size on screen needs. A new call of show() cancels the previous
// one.
class StagePhoto : public QObject {
    Q_OBJECT
public:
    explicit StagePhoto(std::shared_ptr<PhotoCache> photos, QObject* parent = nullptr);

    // `pixels`: size of the whole canvas in device pixels. Does nothing while the photo and the
    // level it needs stay the same.
    void show(const PublicationItem& item, SocialFormat format, QSize pixels);
    void clear();
    bool isIdle() const { return m_running == 0; }

Q_SIGNALS:
    void ready(const QImage& photo);
    void photoRead();                          // emitted after a load that found the photo's pixels
    void photoMissing(const QString& name);    // emitted when the photo's pixels cannot be read

private:
    struct Wish {
        PhotoHandle photo;
        PhotoLevel level = PhotoLevel::full;
        bool operator==(const Wish&) const = default;
    };
    // The number of the last request, shared with the workers. A worker skips long work if its own
    // request is no longer the last.
    using Latest = std::shared_ptr<std::atomic<quint64>>;
    static QCoro::Task<> load(QPointer<StagePhoto> self, quint64 request, Wish wish, QString name,
                              std::shared_ptr<PhotoCache> photos, Latest latest);

    std::shared_ptr<PhotoCache> m_photos;
    Latest m_latest = std::make_shared<std::atomic<quint64>>(0);
    std::optional<Wish> m_wish;
    int m_running = 0;
};
