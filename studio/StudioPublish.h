#pragma once

#include "studio/StatusLog.h"
#include "studio/batch/Batch.h"
#include "studio/export/RenderCosts.h"
#include "studio/publish/PublishCaptions.h"
#include "studio/publish/PublishChecks.h"
#include "studio/publish/PublishOperation.h"
#include "studio/publish/SocialConnections.h"

#include <QCoroTask>
#include <QMap>
#include <QObject>
#include <QPointer>

class AccountAPI;
class StagingFolder;

// Publishes the selected images of a session's batch, and holds what the publish sheet shows.
class StudioPublish : public QObject {
    Q_OBJECT
public:
    // `payment` may still lack account and journal; see setAccount() and setJournal(). `costs` know
    // the batch. `costs` and `preferences` outlive it.
    StudioPublish(std::shared_ptr<PhotoCache> photos, const OutputSize& outputSize,
                  const ChargeServices& payment, const RenderCosts& costs,
                  PreferencesStore& preferences);
    ~StudioPublish() override;

    void setAccount(AccountSession& account);
    void setJournal(CreditJournal& journal, const QString& stagingPlace);
    // Without the service nothing can be published.
    void setService(AccountAPI& api);
    // What the canvas found about the texts of the batch's items.
    void setTextWarnings(const QHash<QUuid, QList<TextWarning>>& warnings);

    bool isPublishPresented() const { return m_isPresented; }
    // The network and placement that the sheet shows. Networks without stories use the feed.
    SocialPublishNetwork network() const { return m_network; }
    SocialPublishPlacement placement() const;
    // Both do nothing while publishing.
    void choose(SocialPublishNetwork network);
    void choose(SocialPublishPlacement placement);

    // The images that are selected, and those of them that would be sent.
    QList<PublicationItem> selectedItems() const;
    QList<PublicationItem> sentItems() const;
    qsizetype batchSize() const { return m_costs.batch().items.size(); }
    SocialFormat format() const { return m_costs.batch().format; }

    // Each network has a caption of its own. What the user did not edit is emptied when the sheet
    // closes; what he edited is kept until it is published, also over restarts.
    const QString& publishCaption() const { return m_captions.text(m_network); }
    void setPublishCaption(const QString& caption);    // as the user typed it
    CaptionOrigin captionOrigin() const { return m_captions.origin(m_network); }
    void takeCaptionOf(QUuid item);    // replaces the caption by that of an image

    const QString& publishStatus() const { return m_status; }
    StatusKind publishStatusKind() const { return m_statusKind; }
    const QList<SocialNetworkConnection>& socialNetworks() const { return m_connections.all(); }
    // Null while unknown.
    const SocialNetworkConnection* connection(SocialPublishNetwork network) const
    {
        return m_connections.of(network);
    }
    bool isPublishing() const { return m_control != nullptr; }
    const std::optional<PublishProgress>& progress() const { return m_progress; }
    const std::optional<PublishedPost>& publishedPost() const { return m_publishedPost; }
    // Credits; a network is missing while its price is unknown.
    const QMap<SocialPublishNetwork, qint64>& displayedPublishCosts() const { return m_prices; }
    qint64 balance() const;
    QString siteName() const;
    // What the status panel lists while the sheet is open; those found after rendering included.
    const CheckedPost& checks() const { return m_checks; }
    // Whether checks() may still miss that the same renders were published: a worker names them.
    bool isComparing() const { return m_isComparing; }
    // The next press publishes although a check that asks for a second press stands.
    bool isConfirming() const { return !m_told.isEmpty(); }
    const QList<PublishRecord>& history() const;    // of the signed-in account, newest first

    void openPublishWindow();
    void closePublishWindow();    // does nothing while publishing
    QCoro::Task<> refreshSocialStatus();
    QCoro::Task<> refreshSocialConnectionsOnly();
    QCoro::Task<> connectSocialNetwork(SocialPublishNetwork network);
    // Publishes, if the network is connected.
    QCoro::Task<> preparePublish(SocialPublishNetwork network, SocialPublishPlacement placement);
    void stop();

Q_SIGNALS:
    void changed();    // anything that the functions above return, but the progress
    void progressed();
    void working(const QString& sentence);    // a step of publishing
    void told(const QString& sentence, StatusKind kind, const StatusLink& link);    // how it ended

private:
    // Images in a format, as they would be rendered.
    struct Rendered {
        QList<PublicationItem> items;
        SocialFormat format = SocialFormat::carouselPortrait;
        bool operator==(const Rendered&) const = default;
    };

    static bool isGone(const QPointer<StudioPublish>& self);
    static QCoro::Task<> publish(QPointer<StudioPublish> self);
    static QCoro::Task<> runToEnd(QPointer<StudioPublish> self, PublishRequest request,
                                  PublishServices services,
                                  std::shared_ptr<PublishControl> control);
    static QCoro::Task<> nameRenders(QPointer<StudioPublish> self, Rendered rendered);
    void followAccount();
    void followCosts();
    void showPrices();
    void showChecks();
    void findEarlier();
    void startOver();
    bool asksForConfirmation();
    PublishRequest requestNow() const;
    PublishServices servicesNow();
    void finish(const PublishOutcome& outcome, const QString& caption);
    void tell(const QString& sentence, StatusKind kind);
    void fillCaption();

    std::shared_ptr<PhotoCache> m_photos;
    const OutputSize m_outputSize;
    const RenderCosts& m_costs;
    PreferencesStore& m_preferences;
    SocialConnections m_connections;
    PublishCaptions m_captions;
    ChargeServices m_payment;
    QString m_stagingPlace;
    QPointer<AccountAPI> m_api;
    std::shared_ptr<PublishRecords> m_records;    // null while nobody is signed in
    QHash<QUuid, QList<TextWarning>> m_warnings;
    QString m_accountKey;      // AccountSession::accountKey()
    int m_refreshToken = 0;    // AccountSession::socialConnectionRefreshToken()

    bool m_isEnding = false;
    bool m_isPresented = false;
    SocialPublishNetwork m_network = SocialPublishNetwork::instagram;
    SocialPublishPlacement m_placement = SocialPublishPlacement::feed;
    QString m_status;
    StatusKind m_statusKind = StatusKind::note;
    QMap<SocialPublishNetwork, qint64> m_prices;
    std::optional<PublishedPost> m_publishedPost;
    std::shared_ptr<PublishControl> m_control;    // null: nothing is being published
    std::optional<PublishProgress> m_progress;

    QList<PublishCheck> m_foundPrepared;    // by the last attempt, after rendering
    CheckedPost m_checks;
    QList<PublishCheck> m_told;    // checks that the next press confirms
    Rendered m_subject;            // of the attempt that m_told and m_foundPrepared come from
    std::optional<Rendered> m_rendered;
    std::optional<QStringList> m_renders;      // fingerprints of m_rendered; null: not yet known
    std::optional<PublishRecord> m_earlier;    // the newest with the same renders
    bool m_isComparing = false;
};
