#pragma once

#include "studio/export/ExportOperation.h"
#include "studio/sheet/SheetMatch.h"

// Number of images in an export and how many of them cost credits.
struct ExportPrice {
    qsizetype images = 0, unpaid = 0;

    qint64 credits() const { return exportCreditCost * unpaid; }
};

// Output of `moltiva export`: a progress bar on a terminal, else one line for each file; with
// --json, one object for each file and a summary. Results go to standard output, the price and
// failures to standard error.
class ExportReport {
public:
    explicit ExportReport(bool json);

    void showProgress(const QString& doing, qsizetype done, qsizetype total);
    void tell(const QString& sentence);
    void renamed(const QString& photo, const QString& path);
    void rowFailed(const RowProblem& problem);    // a row of the file of texts was not applied
    void unreadable(const QString& photo);
    void unwritten(const QString& photo, const QString& path, const QString& reason);
    // The photos could not be rendered into the folder `place`, which may be on a full disk.
    void unprepared(const QStringList& photos, const QString& place);
    void notReached(const QStringList& photos);    // the export stopped or failed before them
    void wrote(const QString& photo, const QString& path);

    void price(const ExportPrice& price);
    void priceAlone(const ExportPrice& price, qint64 balance);    // the result of --dry-run
    // `peakBytes`: the largest memory use of the process.
    void end(const ExportOutcome& outcome, double seconds, qint64 peakBytes);

    void close();    // removes the progress bar

    bool isAnyFailed() const { return m_failed > 0; }

private:
    void fail(const QString& photo, const QString& name, const QString& error);
    void printFailures(const QStringList& photos, const QString& error) const;
    void drawBar();
    void clearBar();

    bool m_json, m_terminal;
    QString m_bar;
    qsizetype m_written = 0, m_failed = 0;    // photos; m_failed counts rows of texts as well
    qsizetype m_skipped = 0;                  // unreadable photos
};
