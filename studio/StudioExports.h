#pragma once

#include "studio/StatusLog.h"
#include "studio/export/ExportOperation.h"
#include "studio/export/RenderCosts.h"

#include <QObject>
#include <QTimer>

// Exports items of a session's batch and shows what that would cost.
class StudioExports : public QObject {
    Q_OBJECT
public:
    // `payment` may still lack account and journal; see setAccount() and setJournal(). Without a
    // journal nothing can be exported.
    StudioExports(std::shared_ptr<PhotoCache> photos, const OutputSize& outputSize,
                  const ChargeServices& payment);
    ~StudioExports() override;

    void setAccount(AccountSession& account);
    void setJournal(CreditJournal& journal, const QString& stagingPlace);

    // Sets the batch to price and to export.
    void follow(const Batch& batch);
    // Checks again whether the photo files are the imported ones: other programs may have moved or
    // changed them.
    void lookAtPhotos() { m_costs.lookAtPhotos(); }
    std::optional<qint64> displayedExportCurrentCost() const
    {
        return m_displayedExportCurrentCost;
    }
    std::optional<qint64> displayedExportAllCost() const { return m_displayedExportAllCost; }
    // Whether exporting the item in its present state is already paid for.
    bool isPaid(QUuid item) const { return m_costs.isPaid(item); }
    const RenderCosts& costs() const { return m_costs; }
    bool areCostsUpToDate() const { return m_costs.isUpToDate(); }

    // Indices of the items that an export of several would include: the selected ones if there are
    // several, else all.
    QList<int> exportIndices() const;
    void exportItem(QUuid item, const QString& path);
    void exportItems(const QList<QUuid>& items, const QString& folder);
    const std::optional<ExportProgress>& progress() const { return m_progress; }
    void stop();
    // Begins to emit sentences about refunds, first those collected so far. Call when the session's
    // workspace has been restored.
    void startTelling();

Q_SIGNALS:
    void changed();    // progress() changed
    void working(const QString& sentence);
    void told(const QString& sentence, StatusKind kind, const StatusLink& link);
    void toldMore(const QString& sentence);    // to append to the last sentence
    void costsChanged();

private:
    void tellLater(const QString& sentence, StatusKind kind);
    void tellOfRefund();
    std::optional<QList<int>> indicesOf(const QList<QUuid>& items);
    void start(ExportKind kind, const QList<int>& indices, const QStringList& destinations);
    static QCoro::Task<> runToEnd(QPointer<StudioExports> self, ExportRequest request,
                                  ExportServices services, std::shared_ptr<ExportControl> control);
    void finish(const ExportOutcome& outcome);
    void showProgress(const ExportProgress& progress);
    void showCosts();

    std::shared_ptr<PhotoCache> m_photos;
    const OutputSize m_outputSize;
    RenderCosts m_costs;
    std::optional<qint64> m_displayedExportCurrentCost, m_displayedExportAllCost;
    int m_shownPaidVersion = 0;
    QTimer m_costsAreLate;
    bool m_isTelling = false;
    QString m_pendingSentences;    // sentences about refunds, not emitted yet
    ChargeServices m_payment;
    QString m_stagingPlace;
    std::shared_ptr<ExportControl> m_control;    // null: no export is under way
    std::optional<ExportProgress> m_progress;
};
