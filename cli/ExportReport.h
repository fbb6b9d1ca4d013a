#pragma once

#include "studio/BatchExport.h"
#include "studio/SheetMatch.h"

// What `moltiva export` prints: a bar on a terminal, else a line a file; or, as JSON, an object a
// file and a summary. Results go to standard output, what went wrong to standard error.
class ExportReport {
public:
    ExportReport(bool json, qsizetype total);

    void renamed(const QString& photo, const QString& path);
    void rowFailed(const RowProblem& problem);    // of the texts
    void finished(const QString& photo, const ExportedFile& file);
    // `peakBytes`: the largest memory the process took.
    void end(double seconds, qint64 peakBytes, bool interrupted);

    qsizetype written() const { return m_written; }

private:
    void drawBar();
    void clearBar();

    bool m_json, m_terminal;
    qsizetype m_total, m_written = 0, m_skipped = 0;
};
