#pragma once
#include "app/batch/TilePictures.h"

#include <QObject>
#include <QSet>

class BatchColumn;
class StudioSession;
struct Tile;

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
    // By the last picture of the item. Marks in the column and elsewhere show these and no others.
    QList<TextWarning> warningsOf(QUuid item) const;

Q_SIGNALS:
    void warningsChanged(QUuid item);

private:
    struct Judgement {
        TileRequest of;
        QList<TextWarning> warnings;
        QStringList sentences;
    };
    const PublicationItems& incoming() const;
    const PublicationItems& shownItems() const;
    const PublicationItem* find(QUuid id) const;
    void wish(const QList<QUuid>& ids);
    void ask();
    bool columnAsksFor(QUuid item) const;
    bool isJudged(const PublicationItem& item) const;
    void showPicture(const TileRequest& request, const QImage& picture, PhotoState photo,
                     const QList<TextWarning>& warnings);
    void judge(const TileRequest& request, const QList<TextWarning>& warnings);
    void forgetGone();
    void setMissing(QUuid item, bool missing);
    QList<Tile> tilesOf(const PublicationItems& items);

    StudioSession& m_session;
    BatchColumn* m_column;
    TilePictures* m_pictures;
    // What the column shows now, to tell what has changed.
    PublicationItems m_known;
    std::optional<SocialFormat> m_knownFormat;
    QHash<QUuid, QString> m_names;
    QSet<QUuid> m_missing;
    QHash<QUuid, Judgement> m_judgements;    // by item
    QList<QUuid> m_wished;                   // by the column, and not drawn yet
};
