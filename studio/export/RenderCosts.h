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

// Knows which renders of a batch are paid, and so the price of an export, without drawing. Only
// items that changed are looked at. Lives on the interface thread; longer work runs on the workers.
class RenderCosts : public QObject {
    Q_OBJECT
public:
    RenderCosts(std::shared_ptr<PhotoCache> photos, OutputSize outputSize,
                QObject* parent = nullptr);

    // Takes `batch` as the current one. Changed items are looked at after `debounce`; the others
    // keep their answer.
    void scheduleRenderCostRefresh(const Batch& batch, std::chrono::milliseconds debounce);
    void refreshRenderCostsNow();
    const Batch& batch() const { return m_batch; }

    // Checks whether the photos' files are still those that were imported.
    void lookAtPhotos();

    // Price of exporting the items at `indices`, in credits; empty while unknown. If one cannot be
    // rendered, no payment counts.
    std::optional<qint64> renderCreditCost(const QList<int>& indices) const;
    // Whether the item is paid; while that is unknown, whether it was.
    bool isPaid(QUuid item) const;
    int paidVersion() const { return m_paidVersion; }    // rises when an answer of isPaid() changes
    bool isUpToDate() const { return m_unknown == 0 && !m_refresh.isActive(); }

Q_SIGNALS:
    void changed();

private:
    enum class Payment { unknown, unpaid, paid, unrenderable };
    struct Row {
        Payment payment = Payment::unknown;
        bool wasPaid = false;    // the last known answer
        int job = 0;             // the job that asks for it; 0: none
    };
    // The parts of an item that decide whether its render is paid.
    struct Question {
        PublicationItem item;
        SocialFormat format;
        OutputSize outputSize;
        QByteArray content;    // digest of the photo's file
    };
    using Questions = QList<Question>;
    // Digests of the photos' files at the last look; none for a file that is gone or no photo.
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
    QHash<QUuid, qsizetype> m_places;    // index of each item
    qsizetype m_unknown = 0;             // number of rows with an unknown payment
    Contents m_contents;
    int m_lastJob = 0, m_paidVersion = 0;
    bool m_isLooking = false, m_mustLookAgain = false;
    QTimer m_refresh;
};
