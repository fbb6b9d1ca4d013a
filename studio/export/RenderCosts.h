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

// Finds out which items of a batch are paid, and so the price of an export, without rendering.
// Checks only items that have changed. Used on the interface thread; long work runs on workers.
class RenderCosts : public QObject {
    Q_OBJECT
public:
    RenderCosts(std::shared_ptr<PhotoCache> photos, OutputSize outputSize,
                QObject* parent = nullptr);

    // Sets the batch. Items that differ from those of the last call are checked after `debounce`;
    // the others keep their result.
    void scheduleRenderCostRefresh(const Batch& batch, std::chrono::milliseconds debounce);
    void refreshRenderCostsNow();
    const Batch& batch() const { return m_batch; }

    // Checks on workers whether the photo files are still the imported ones.
    void lookAtPhotos();

    // Price of exporting the items at `indices`, in credits; empty while unknown. If one of them
    // cannot be rendered, this is the full price, as if none were paid.
    std::optional<qint64> renderCreditCost(const QList<int>& indices) const;
    // Whether the item is paid; while that is being checked, the last known answer.
    bool isPaid(QUuid item) const;
    // Increases when an answer of isPaid() changes.
    int paidVersion() const { return m_paidVersion; }
    bool isUpToDate() const { return m_unknown == 0 && !m_refresh.isActive(); }

Q_SIGNALS:
    void changed();

private:
    enum class Payment { unknown, unpaid, paid, unrenderable };
    struct Row {
        Payment payment = Payment::unknown;
        bool wasPaid = false;    // the last known answer
        int job = 0;             // number of the job that is checking the item; 0: none
    };
    // Everything that decides whether an item is paid.
    struct Question {
        PublicationItem item;
        SocialFormat format;
        OutputSize outputSize;
        QByteArray content;    // digest of the photo's file
    };
    using Questions = QList<Question>;
    // By item: the digest of the photo's file when it was read last; empty if the file is gone or
    // is not a photo.
    using Contents = QHash<QUuid, std::optional<QByteArray>>;

    static Payment answer(const Question& question);
    Payment knownAtOnce(const PublicationItem& item) const;
    bool isLookedAt(const PublicationItem& item) const;
    std::optional<QByteArray> digestOf(const PublicationItem& item) const;
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
    QList<Row> m_rows;                   // one per item of `m_batch`
    QHash<QUuid, qsizetype> m_places;    // index in `m_batch`, by item id
    qsizetype m_unknown = 0;             // number of rows with an unknown payment
    Contents m_contents;
    int m_lastJob = 0, m_paidVersion = 0;
    bool m_isLooking = false, m_mustLookAgain = false;
    QTimer m_refresh;
};
