#pragma once

#include "studio/sheet/TextSheet.h"

#include <QFile>
#include <QHash>

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
    // Removes the rows of these files: others are to be written for them. Returns as open() does.
    QString removeRows(const QStringList& fileNames);
    // Returns whether the row has been written.
    bool append(const PublicationItem& item);

private:
    QString readExisting();

    QString m_path;
    QFile m_file;
    QList<SheetRow> m_rows;              // of earlier commands
    QHash<QString, int> m_rowsToTake;    // their numbers, by sheetName()
};
