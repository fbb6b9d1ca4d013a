#pragma once
#include "app/batch/TilePictures.h"

#include <QObject>
#include <QSet>

class BatchColumn;
class StudioSession;
struct Tile;
enum class TileState;

// Shows the session's batch in the batch column. While an import runs, the column shows the images
// that the import has accepted so far.
class BatchBinding : public QObject {
    Q_OBJECT
public:
    // `session` and `column` must outlive the binding.
    BatchBinding(StudioSession& session, BatchColumn* column,
                 const std::shared_ptr<PhotoCache>& photos);

    void show();    // call it after a change of the batch or of the import's progress
    void photoFound(QUuid item);
    void photoMissing(QUuid item);
    bool isIdle() const { return m_pictures->isIdle(); }
    // Whether the column shows the images of a running import. Clicks on them must not change the
    // batch.
    bool showsIncoming() const;
    // Warnings found when the item's picture was last drawn. Whatever shows warnings of an item
    // takes them from here.
    QList<TextWarning> warningsOf(QUuid item) const;
    // Whether these are the warnings of the item as it is now.
    bool isJudged(QUuid item) const;
    // Has these items judged as well while their tiles are out of view.
    void watch(const QList<QUuid>& items);

Q_SIGNALS:
    void warningsChanged(QUuid item);
    void judged(QUuid item);    // also if its warnings are the same as before

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
    bool isUnasked(QUuid item) const;
    void showPicture(const TileRequest& request, const QImage& picture, PhotoState photo,
                     const QList<TextWarning>& warnings);
    void judge(const TileRequest& request, const QList<TextWarning>& warnings);
    void forgetGone();
    void setMissing(QUuid item, bool missing);
    QList<Tile> tilesOf(const PublicationItems& items);
    void showTiles();
    void followCopy();
    TileState stateOf(QUuid item) const;

    StudioSession& m_session;
    BatchColumn* m_column;
    TilePictures* m_pictures;
    // The items and the format that show() has shown last, to find what changed.
    PublicationItems m_known;
    std::optional<SocialFormat> m_knownFormat;
    QHash<QUuid, QString> m_names;
    QSet<QUuid> m_missing;
    // Items with generated texts, and those of them whose tile still shows a tick for it.
    QSet<QUuid> m_generated, m_ticked;
    QHash<QUuid, Judgement> m_judgements;    // by item id
    QList<QUuid> m_watched;
    QList<QUuid> m_wished;    // items whose pictures the column wants and that are not drawn yet
};
