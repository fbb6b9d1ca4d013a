#pragma once

#include "studio/export/ExportOperation.h"
#include "studio/sheet/SheetMatch.h"

// What exporting costs, before it is charged.
struct ExportPrice {
    qsizetype images = 0, unpaid = 0;

    qint64 credits() const { return exportCreditCost * unpaid; }
};

// What `moltiva export` prints: a bar on a terminal, else a line a file; or, as JSON, an object a
// file and a summary. Results go to standard output, the price and what went wrong to standard
// error.
class ExportReport {
public:
    explicit ExportReport(bool json);

    void showProgress(const QString& doing, qsizetype done, qsizetype total);
    void tell(const QString& sentence);
    void renamed(const QString& photo, const QString& path);
    void rowFailed(const RowProblem& problem);    // of the texts
    void unreadable(const QString& photo);
    void unwritten(const QString& photo, const QString& path, const QString& reason);
    void unprepared(const QStringList& photos, const QString& place);    // for want of room there
    void notReached(const QStringList& photos);    // for another one, or for the whole
    void wrote(const QString& photo, const QString& path);

    void price(const ExportPrice& price);
    void priceAlone(const ExportPrice& price, qint64 balance);    // the result of a dry run
    // `peakBytes`: the largest memory the process took.
    void end(const ExportOutcome& outcome, double seconds, qint64 peakBytes);

    bool isAnyFailed() const { return m_failed > 0; }

private:
    void fail(const QString& photo, const QString& name, const QString& error);
    void printFailures(const QStringList& photos, const QString& error) const;
    void drawBar();
    void clearBar();

    bool m_json, m_terminal;
    QString m_bar;
    qsizetype m_written = 0, m_failed = 0;    // photos; rows of the texts are failures too
    qsizetype m_skipped = 0;                  // photos
};
