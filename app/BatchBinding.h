#pragma once
#include "app/ItemPictures.h"

#include <QObject>
#include <QSet>

class BatchColumn;
class StudioSession;

// The batch column as a view of the session. While an import runs, it shows what that has accepted
// so far.
class BatchBinding : public QObject {
    Q_OBJECT
public:
    // Both outlive it.
    BatchBinding(StudioSession& session, BatchColumn* column,
                 const std::shared_ptr<PhotoCache>& photos);

    void show();    // the batch or the import went on
    void photoFound(QUuid item);
    void photoMissing(QUuid item);
    bool isIdle() const { return m_pictures->isIdle(); }
    // A batch that the column does not show is not changed from it.
    bool showsIncoming() const;

private:
    const PublicationItems& shownItems() const;
    void wish(const QList<QUuid>& ids, QSize pixels);
    void showPicture(const TileRequest& request, const QImage& picture, PhotoState photo);
    void setMissing(QUuid item, bool missing);

    StudioSession& m_session;
    BatchColumn* m_column;
    TilePictures* m_pictures;
    // What the column shows now, to tell what has changed.
    PublicationItems m_known;
    std::optional<SocialFormat> m_knownFormat;
    QHash<QUuid, QString> m_names;
    QSet<QUuid> m_missing;
};
