#pragma once

#include "studio/sheet/TextSheet.h"

#include <QFile>
#include <QHash>
#include <QSet>

// The CSV file that `moltiva generate` writes, a row as soon as it is there; standard output
// without a path. A file that an earlier command wrote is continued.
class CopySheet {
public:
    // Returns why the file cannot be written or continued, as the end of a sentence; empty on
    // success. A row that a killed command left unfinished is removed.
    QString open(const QString& path);

    // Whether an earlier command has written a row for a file of this name. Each row counts once:
    // photos of several folders may have one name.
    bool takeRow(const QString& fileName);
    // Each removes rows that others are to replace, of these files or of all, and returns as open()
    // does.
    QString removeRows(const QStringList& fileNames);
    QString removeAllRows();
    // Returns whether the row has been written.
    bool append(const PublicationItem& item);

private:
    QString readExisting();
    QString removeNamed(const QSet<QString>& names);

    QString m_path;
    QFile m_file;
    QList<SheetRow> m_rows;              // of earlier commands
    QHash<QString, int> m_rowsToTake;    // how many of m_rows a file has left, by sheetName()
};
