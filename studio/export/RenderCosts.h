#pragma once

#include "studio/batch/Batch.h"
#include "studio/export/RenderedOutput.h"

#include <QCoroTask>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <chrono>
#include <memory>

// Which renders of a batch are paid for, and so what exporting costs: known without drawing
// anything, for the items that changed since the last look at them. Lives on the interface thread;
// what takes longer than a moment runs on the workers.
class RenderCosts : public QObject {
    Q_OBJECT
public:
    RenderCosts(std::shared_ptr<PhotoCache> photos, OutputSize outputSize,
                QObject* parent = nullptr);

    // The batch is this one from now on. What changed is looked at after `debounce`, together with
    // what changes until then; what is known of the others stays.
    void scheduleRenderCostRefresh(const Batch& batch, std::chrono::milliseconds debounce);
    void refreshRenderCostsNow();
    const Batch& batch() const { return m_batch; }

    // Looks whether the photos are still those that came into the batch.
    void lookAtPhotos();

    // Credits for exporting these items of the batch; nothing as long as it is not known. Where one
    // cannot be rendered, no earlier payment counts.
    std::optional<qint64> renderCreditCost(const QList<int>& indices) const;
    // As it is or, until that is found out, was.
    bool isPaid(QUuid item) const;
    int paidVersion() const { return m_paidVersion; }    // rises when the paid ones are others
    bool isUpToDate() const { return m_unknown == 0 && !m_refresh.isActive(); }

Q_SIGNALS:
    void changed();

private:
    enum class Payment { unknown, unpaid, paid, unrenderable };
    struct Row {
        Payment payment = Payment::unknown;
        bool wasPaid = false;    // when that was known last
        int job = 0;             // that is finding it out
    };
    // What is to be found out of one item.
    struct Question {
        PublicationItem item;
        SocialFormat format;
        OutputSize outputSize;
        QByteArray content;    // of the photo's file
    };
    using Questions = QList<Question>;
    // What the files of photos hold as of the last look; none: nothing that can be rendered.
    using Contents = QHash<QUuid, std::optional<QByteArray>>;

    static Payment answer(const Question& question);
    Payment knownAtOnce(const PublicationItem& item) const;
    bool isLookedAt(const PublicationItem& item) const;
    std::optional<QByteArray> contentOf(const PublicationItem& item) const;
    void setPayment(qsizetype index, Payment payment);
    void findOutOnWorkers(const QList<qsizetype>& indices);
    static QCoro::Task<> runJob(QPointer<RenderCosts> self, int job, QList<QUuid> items,
                                Questions questions);
    void finishJob(int job, const QList<QUuid>& items, const QList<Payment>& payments);
    static QCoro::Task<> runLook(QPointer<RenderCosts> self, PublicationItems items,
                                 std::shared_ptr<PhotoCache> photos);
    void takeLook(const Contents& contents);
    void finishLook();

    std::shared_ptr<PhotoCache> m_photos;
    const OutputSize m_outputSize;
    Batch m_batch;
    QList<Row> m_rows;                   // one an item
    QHash<QUuid, qsizetype> m_places;    // of the items
    qsizetype m_unknown = 0;             // rows
    Contents m_contents;
    int m_lastJob = 0, m_paidVersion = 0;
    bool m_isLooking = false, m_mustLookAgain = false;
    QTimer m_refresh;
};
