#pragma once

#include "studio/export/ExportOperation.h"
#include "studio/export/RenderCosts.h"

#include <QObject>
#include <QTimer>

class StudioSession;
enum class StatusKind;

// The exports of a session's batch and what they would cost.
class StudioExports : public QObject {
    Q_OBJECT
public:
    // Part of the session, which outlives it.
    StudioExports(StudioSession& session, std::shared_ptr<PhotoCache> photos,
                  const OutputSize& outputSize);
    ~StudioExports() override;

    void setPayment(CreditJournal& journal, const QString& stagingPlace);

    // The session's batch was changed.
    void follow();
    // Photos may have been moved or changed by others: looks at their files again.
    void lookAtPhotos() { m_costs.lookAtPhotos(); }
    std::optional<qint64> displayedExportCurrentCost() const
    {
        return m_displayedExportCurrentCost;
    }
    std::optional<qint64> displayedExportAllCost() const { return m_displayedExportAllCost; }
    // The item as it stands was paid for.
    bool isPaid(QUuid item) const { return m_costs.isPaid(item); }
    bool areCostsUpToDate() const { return m_costs.isUpToDate(); }

    // The images that are exported together: those selected when there are several, else all.
    QList<int> exportIndices() const;
    void exportItem(QUuid item, const QString& path);
    void exportItems(const QList<QUuid>& items, const QString& folder);
    const std::optional<ExportProgress>& progress() const { return m_progress; }
    void stop();
    // Adds what came back meanwhile to what is told.
    void tellOfRefund();

Q_SIGNALS:
    void changed();    // an export began, went on or ended
    void costsChanged();

private:
    void tellLater(const QString& sentence, StatusKind kind);
    std::optional<QList<int>> indicesOf(const QList<QUuid>& items);
    void start(ExportKind kind, const QList<int>& indices, const QStringList& destinations);
    static QCoro::Task<> runToEnd(QPointer<StudioExports> self, ExportRequest request,
                                  ExportServices services, std::shared_ptr<ExportControl> control);
    void finish(const ExportOutcome& outcome);
    void showProgress(const ExportProgress& progress);
    void showCosts();

    StudioSession& m_session;
    std::shared_ptr<PhotoCache> m_photos;
    const OutputSize m_outputSize;
    RenderCosts m_costs;
    std::optional<qint64> m_displayedExportCurrentCost, m_displayedExportAllCost;
    int m_shownPaidVersion = 0;
    QTimer m_costsAreLate;
    QString m_refundToTell;    // that came back while something else was being told
    QPointer<CreditJournal> m_journal;
    QString m_stagingPlace;
    std::shared_ptr<ExportControl> m_control;    // of the export under way
    std::optional<ExportProgress> m_progress;
};
