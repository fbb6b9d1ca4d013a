#pragma once

#include "studio/batch/Batch.h"
#include "studio/batch/Step.h"
#include "studio/copy/CloudCopy.h"
#include "studio/copy/CopyMerge.h"
#include "studio/copy/LocalCopyWriter.h"
#include "studio/copy/PaidCopies.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QTimer>

// State of an item in a run. `waiting`: its texts are there, but not applied yet. `generated` and
// `unanswered` last until the next run.
enum class CopyState { none, queued, generating, waiting, generated, unanswered };

// What keeps results from being applied now.
enum class CopyHindrance { none, editing, redoable };

// What a session lends to the generation of copy.
struct CopyServices {
    std::function<const Batch&()> batch;
    // Changes the batch and stores it, unless nothing changed.
    std::function<void(const std::function<void(Batch&)>& change, const Step& step)> apply;
    // Calls `work` in the transaction of the next save.
    std::function<void(const Strike& work)> withNextSave;
    std::function<CopyHindrance()> hindrance;
};

// Generates the copy of the batch's images, one image at a time, while the user goes on editing.
// Images are found by id. Results wait while the user drags or types, and while there is something
// to redo; those of one run are one undo step. A text that is edited during the run is kept.
class StudioCopy : public QObject {
    Q_OBJECT
public:
    // `preferences` outlive it.
    StudioCopy(const CopyServices& services, PreferencesStore& preferences);
    ~StudioCopy() override;

    void setLocalWriter(const LocalCopyWriter& writer) { m_writer = writer; }
    const LocalCopyWriter& localWriter() const { return m_writer; }
    void setAccount(AccountSession& account) { m_cloud.account = &account; }
    void setJournal(CreditJournal& journal) { m_cloud.journal = &journal; }
    void setCloudService(const CloudAIService& service) { m_cloud.writer = service; }
    void setMode(CopyGenerationMode mode) { m_mode = mode; }    // of the next run

    bool isAnalyzing() const { return m_isRunning; }
    bool isStopping() const
    {
        return m_isRunning && m_outcome.state == CopyOutcome::State::cancelled;
    }
    CopyGenerationMode runMode() const { return m_outcome.mode; }    // of the latest run
    CopyState stateOf(QUuid item) const;
    // Why an `unanswered` item has no texts, a sentence; empty for any other.
    QString whyUnanswered(QUuid item) const;
    int position() const { return std::max(1, m_at + 1); }    // of the image at turn, from 1
    int total() const { return int(m_jobs.size()); }
    int finished() const;    // images that are answered or failed
    int waiting() const;     // images whose results wait
    QString whyWaiting() const;
    // Why copy cannot be generated now; empty when it can.
    QString whyNotGenerate() const;
    // Credits for the selected images in cloud mode, 0 in local mode; below, for one image.
    qint64 cost() const;
    qint64 costPerImage() const;

    // Each starts a run; does nothing during another one.
    void analyzeSelected();
    // Writes only the text of `slot`.
    void proposeAnother(QUuid item, CopySlot slot);
    // Ends the run after what has been generated; an image in course ends at once.
    void cancel();

    // The actions that the last outcome offers, and whether there is something for them to do.
    bool canRetry() const;
    bool canRecover() const { return !m_replaced.isEmpty(); }
    bool canReplace() const { return !m_kept.isEmpty(); }
    void retryUnanswered();
    void recoverOwnTexts();
    void replaceEdited();

    // Call after each change of the batch and at the end of each gesture.
    void follow();
    // Applies the results that wait, whatever hinders them: the program is about to end.
    void applyBeforeEnd();
    // Applies the results that wait if nothing hinders them any more. Called by itself.
    void applyWaiting();
    // Applies copies that an earlier run paid for to the items of a restored batch. Returns how
    // many there were.
    qsizetype applyPaid(Batch& restored);
    // Removes paid copies of images that are not in the batch.
    void dropPaid(PaidCopies::Others others) { m_paid.removeOthers(m_services.batch(), others); }

Q_SIGNALS:
    void starting();    // a run is asked for: receivers end the edit of the objective
    void changed();     // anything that the functions above return
    void working(const QString& sentence);
    void ended(const CopyOutcome& outcome);
    void told(const QString& sentence);    // what an action has done

private:
    struct Job {
        QUuid item;
        QString name = {};    // of the file
        std::optional<CopySlot> only;
        CopyTexts asked;    // the item's texts when the run began
        CopyState state = CopyState::queued;
        QString why;    // it is unanswered
    };
    // An image at its turn.
    struct Order {
        qsizetype job = 0;
        QUuid item;
        QString name;    // of the file
        CloudCopyOrder copy;
    };
    struct Result {
        qsizetype job = 0;
        GeneratedCopy copy;
        bool isAnswer = true;    // false: the record of a missing answer
        bool isPaid = false;
    };

    // A paid result whose image left the batch before it could be applied.
    struct Absent {
        QUuid item;
        PaidCopy paid;
    };
    enum class Offers { end, stay };    // of the run before

    void start(const QList<Job>& jobs, Offers offers);
    QList<Job> unansweredJobs() const;
    void applyReturned();
    Job jobOf(const PublicationItem& item) const;
    static bool isGone(const QPointer<StudioCopy>& self);
    static QCoro::Task<> runToEnd(QPointer<StudioCopy> self);
    static QCoro::Task<> writeAll(QPointer<StudioCopy> self);
    static QCoro::Task<> checkBalance(QPointer<StudioCopy> self);
    static QCoro::Task<> writeHere(QPointer<StudioCopy> self, Order order);
    static QCoro::Task<> writeInCloud(QPointer<StudioCopy> self, Order order);
    std::optional<Order> nextOrder();
    CloudCopySteps stepsOf(const Order& order);
    bool keepPaid(const Order& order, const GeneratedCopy& copy, const Strike& strike);
    void takeLocal(const Order& order, const GeneratedCopy& copy);
    void takeFromCloud(const Order& order, const CloudCopyResult& result);
    void dropAbsent(QUuid item);
    void take(const Result& result);
    void fail(const Order& order, const QString& why);
    void failInRow();
    void stopFailing();
    void setState(qsizetype job, CopyState state);
    void endQueue();
    QSet<QUuid> presentItems() const;
    QList<Result> applicable();
    void showHindrance(CopyHindrance hindrance);
    void apply(const QList<Result>& results);
    void note(const CopyMerge& merge);
    void finish();
    const PublicationItem* itemWith(QUuid id) const;
    int changeTexts(const QList<CopyChange>& changes,
                    const std::function<bool(PublicationItem&, const CopyChange&)>& write);

    CopyServices m_services;
    PaidCopies m_paid;
    LocalCopyWriter m_writer;
    CloudCopyServices m_cloud;
    CopyGenerationMode m_mode = CopyGenerationMode::local;

    bool m_isEnding = false;
    // Of the run under way, or of the latest one.
    bool m_isRunning = false;
    bool m_isWritten = false;    // no further image is generated
    QList<Job> m_jobs;
    QHash<QUuid, qsizetype> m_jobOf;    // by item
    int m_at = -1;
    int m_failuresInRow = 0;
    Step m_step = Step::own();
    std::stop_source m_stop;
    QList<Result> m_waiting;
    QList<Absent> m_absent;    // until their images come back, by undo for instance
    CopyOutcome m_outcome;
    QList<CopyChange> m_replaced, m_kept;
    QTimer m_later;    // tries again while somebody drags or types
    // The values of the services' hindrance() and of waiting() when showHindrance() last emitted
    // changed(). `none`: it is to emit changed() again.
    CopyHindrance m_shownHindrance = CopyHindrance::none;
    int m_shownWaiting = 0;
};
