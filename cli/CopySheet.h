#pragma once

#include "studio/sheet/TextSheet.h"

#include <QFile>
#include <QSet>

// The CSV file that `moltiva generate` writes, a row as soon as it is there; standard output
// without a path. A file that an earlier command wrote is continued.
class CopySheet {
public:
    // Returns why the file cannot be written or continued, as the end of a sentence; empty on
    // success. A row that a killed command left unfinished is removed.
    QString open(const QString& path);

    bool hasRow(const QString& fileName) const { return m_names.contains(sheetName(fileName)); }
    // Removes the rows of these files: others are to be written for them. Returns as open() does.
    QString removeRows(const QStringList& fileNames);
    // Returns whether the row has been written.
    bool append(const PublicationItem& item);

private:
    QString readExisting();

    QString m_path;
    QFile m_file;
    QSet<QString> m_names;    // sheetName()s of the files that have a row
    QList<SheetRow> m_rows;
};
