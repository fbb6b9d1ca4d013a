#include "cli/CopySheet.h"

#include "platform/AtomicFile.h"

#include <QFileInfo>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 largestSheet = 64 << 20;    // bytes; far more than a batch needs

// The bytes up to the end of the last whole row.
QByteArray wholeRows(const QByteArray& bytes)
{
    qsizetype end = 0;
    bool isQuoted = false;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '"')
            isQuoted = !isQuoted;
        else if (bytes[i] == '\n' && !isQuoted)
            end = i + 1;
    }
    return bytes.first(end);
}

}    // namespace

QString CopySheet::open(const QString& path)
{
    if (path.isEmpty()) {
        const bool isOpen = m_file.open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered);
        m_file.write(textSheetHead());
        return isOpen ? QString() : m_file.errorString();
    }
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return m_file.errorString();
    m_path = QFileInfo(path).canonicalFilePath();    // removing rows replaces the file, not a link
    return readExisting();
}

QString CopySheet::readExisting()
{
    if (m_file.size() > largestSheet)
        return u"es demasiado grande"_s;
    const QByteArray bytes = m_file.readAll();
    // A command may have been killed while it wrote the head.
    const bool isOfOurs = textSheetHead().startsWith(
        bytes.first(std::min<qsizetype>(bytes.size(), textSheetHead().size())));
    if (!isOfOurs)
        return u"existe y no es una hoja de «moltiva generate»"_s;
    const QByteArray whole = wholeRows(bytes);
    if (whole.isEmpty()) {
        m_file.resize(0);
        m_file.seek(0);
        return m_file.write(textSheetHead()) == textSheetHead().size() ? QString()
                                                                       : m_file.errorString();
    }
    if (whole.size() < bytes.size() && !m_file.resize(whole.size()))
        return m_file.errorString();
    m_rows = readTextSheet(whole).rows;
    for (const SheetRow& row : m_rows)
        ++m_rowsToTake[row.name];
    return m_file.seek(whole.size()) ? QString() : m_file.errorString();
}

QString CopySheet::removeRows(const QStringList& fileNames)
{
    QSet<QString> names;
    for (const QString& name : fileNames) {
        if (m_rowsToTake.contains(sheetName(name)))
            names.insert(sheetName(name));
    }
    return removeNamed(names);
}

QString CopySheet::removeAllRows()
{
    const QStringList names = m_rowsToTake.keys();
    return removeNamed({names.begin(), names.end()});
}

// `removed`: names of sheetName().
QString CopySheet::removeNamed(const QSet<QString>& removed)
{
    if (removed.isEmpty() || m_path.isEmpty())
        return {};
    QByteArray kept = textSheetHead();
    for (const SheetRow& row : m_rows) {
        if (removed.contains(row.name))
            continue;
        PublicationItem item = PublicationItem::make(QUrl::fromLocalFile(u'/' + row.file()), {});
        fillTexts(item, row);
        kept += textSheetRow(item);
    }
    m_file.close();
    if (const QString error = writeAtomically(m_path, kept); !error.isEmpty())
        return error;
    m_rows.removeIf([&](const SheetRow& row) { return removed.contains(row.name); });
    m_rowsToTake.removeIf([&](const auto& row) { return removed.contains(row.key()); });
    return m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered)
               ? QString()
               : m_file.errorString();
}

// One write call a row: a killed command leaves the row whole or not at all.
bool CopySheet::append(const PublicationItem& item)
{
    const QByteArray row = textSheetRow(item);
    return m_file.write(row) == row.size() && m_file.flush();
}

bool CopySheet::takeRow(const QString& fileName)
{
    const auto left = m_rowsToTake.find(sheetName(fileName));
    if (left == m_rowsToTake.end() || *left == 0)
        return false;
    --*left;
    return true;
}
