#pragma once

#include "model/SocialPublishNetwork.h"

#include <QDateTime>
#include <QStringList>
#include <QUrl>
#include <QUuid>

#include <optional>

class PreferencesStore;
class ProgramRun;

struct PublishedPost {
    SocialPublishNetwork network = SocialPublishNetwork::instagram;
    SocialPublishPlacement placement = SocialPublishPlacement::feed;
    std::optional<QUrl> url = {};
    bool operator==(const PublishedPost&) const = default;
};

// A post that was sent, or that may have been.
struct PublishRecord {
    enum class State {
        sending,    // the request may be under way
        published,
        unknown,    // the request was sent, but no answer came
    };

    QUuid id;
    State state = State::sending;
    QString requestId;    // of the request that publishes it
    SocialPublishNetwork network = SocialPublishNetwork::instagram;
    SocialPublishPlacement placement = SocialPublishPlacement::feed;
    QString caption;
    QStringList images;            // names of the files
    QStringList renders;           // fingerprints, in order
    QList<QByteArray> pictures;    // of at most three images, small and encoded
    QDateTime time;                // UTC
    std::optional<QUrl> url;       // http or https alone
    bool operator==(const PublishRecord&) const = default;
};

// The posts of one account, newest first, stored in the preferences.
class PublishRecords {
public:
    static constexpr qsizetype mostRecords = 500;    // older ones are removed
    static constexpr qsizetype mostPictures = 3;     // of a record

    // `account`: CreditAccount::accountKey(). `run`: this run of the program; records that other
    // runs, which have ended, left as sending become unknown. `preferences` outlive the records.
    PublishRecords(PreferencesStore& preferences, const QString& account, ProgramRun& run);

    // Reads what other runs of the program have stored since.
    void refresh(const ProgramRun& run);

    const QString& account() const { return m_account; }
    const QList<PublishRecord>& all() const { return m_records; }
    bool keep(const PublishRecord& record);    // adds or replaces it; false: could not be stored
    bool remove(QUuid id);
    // The newest record on this network and placement that has these renders, in any order; of
    // stories, each of which is a post of its own, the newest that has any of them. Null if there
    // is none.
    const PublishRecord* sent(const QStringList& renders, SocialPublishNetwork network,
                              SocialPublishPlacement placement) const;

    // Stores the attempt `record` so that it survives a power cut. Returns false if that fails, or
    // if another run of the program has sent the same images since the last refresh(); `newer` is
    // that post then.
    bool beginAttempt(const PublishRecord& record, const ProgramRun& run,
                      std::optional<PublishRecord>& newer);
    // Replaces the attempt that beginAttempt() has stored by `record`; by nothing if that is empty.
    // If another run has stored something about the same post meanwhile, that stays.
    void endAttempt(QUuid attempt, const std::optional<PublishRecord>& record);

private:
    QString keyOf(QUuid id) const;
    bool store(const PublishRecord& record);
    void insert(const PublishRecord& record);
    void takeOut(QUuid id);

    PreferencesStore& m_preferences;
    QString m_account, m_run;
    QList<PublishRecord> m_records;
};
