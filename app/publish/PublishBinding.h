#pragma once
#include "app/batch/TilePictures.h"
#include "app/publish/PressedPost.h"
#include "app/publish/PublishShown.h"
#include "studio/publish/PublishRecords.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QTimer>

class AccountSession;
class BatchBinding;
class PublishSheet;
class StudioPublish;
class StudioSession;

// Connects the session's part that publishes with the publish sheet.
class PublishBinding : public QObject {
    Q_OBJECT
public:
    // The arguments outlive the binding. The sheet is made when it is first shown, as a child of
    // `window`.
    PublishBinding(StudioSession& session, AccountSession& account, BatchBinding& column,
                   std::shared_ptr<PhotoCache> photos, QWidget* window);

    // Why nothing can be published now; empty when something can.
    QString refusal() const;
    void open();     // tells the user if nothing can be published
    void close();    // hides the sheet, also while publishing
    bool isSheetPresented() const;
    bool isIdle() const;    // no picture is being drawn

Q_SIGNALS:
    void sheetChanged();
    void imageRequested(QUuid layer);    // the sheet was left for the current image

private:
    PublishSheet* sheet();
    void connectSheet();
    void present();
    void show();
    void showTyped();    // what a key of the caption changes
    void showReport();
    void showHistory();
    PublishShown shown() const;
    QList<PublishImage> images() const;
    NetworkShown network(SocialPublishNetwork network) const;
    bool isAwaitingAnswer() const;
    bool isChecked() const;    // the checks of the post are made
    void resumePress();
    void leave();                  // the user closes the sheet
    QSet<QUuid> marked() const;    // images that a warning speaks of
    CaptionShown caption() const;
    QList<CaptionChoice> captionChoices() const;
    PublishReport report() const;
    void publish(SocialPublishNetwork network);
    void follow(const PublishCheck& check);
    const PublishRecord* record(QUuid id) const;
    void openPage(const std::optional<QUrl>& url);
    void askStrip();
    void askPreview();
    const PublicationItem* find(QUuid id) const;
    void tellWarnings();

    StudioSession& m_session;
    StudioPublish& m_publish;
    AccountSession& m_account;
    BatchBinding& m_column;
    std::shared_ptr<PhotoCache> m_photos;
    QWidget* m_window;
    QPointer<PublishSheet> m_sheet;
    // The pictures of the strip and of the preview, and what was drawn last.
    TilePictures* m_small;
    TilePictures* m_large;
    QHash<QUuid, TileRequest> m_drawn;
    std::optional<TileRequest> m_previewed;
    QList<PublishRecord> m_history;          // that the sheet shows
    QSet<QUuid> m_marked;                    // likewise
    QTimer m_reportLater;                    // progress is shown at most so often
    bool m_isTyping = false;                 // the caption is being edited
    bool m_isClosed = false;                 // by close(), until open()
    std::optional<PressedPost> m_pressed;    // that waits until it is checked
    QString m_notice;    // a warning told in the place of the status, until that is another one
    QString m_status;    // when m_notice was told
};
