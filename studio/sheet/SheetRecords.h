#pragma once

#include <QByteArrayList>
#include <QByteArrayView>

#include <csv.h>

#include <optional>

struct SheetRecord {
    static constexpr int mostCells = 16'384;    // columns that spreadsheet programs can hold

    QByteArrayList cells;       // at most mostCells
    qsizetype count = 0;        // number of cells; if not isWhole, of those before the fault
    bool hasSurplus = false;    // a cell beyond mostCells is not blank
    bool isWhole = false;       // false: a quote is misplaced or not closed

    bool isBlank() const;
    bool isNarrowerThan(qsizetype columns) const { return count < columns; }
    // Whether a cell beyond the first `columns` is not blank.
    bool isWiderThan(qsizetype columns) const;
};

// Reads the records of a CSV text one by one. A misplaced quote makes its own record faulty, but
// not the rows after it, even if it seems to enclose them.
class SheetRecords {
public:
    // `text` must outlive this object, and each of its lines must end with \n.
    SheetRecords(QByteArrayView text, char separator);
    ~SheetRecords();
    SheetRecords(const SheetRecords&) = delete;
    SheetRecords& operator=(const SheetRecords&) = delete;

    // Sets the number of cells that the following records should have. Without it, rows that an
    // unclosed quote seems to enclose are not recognized.
    void setColumns(qsizetype columns) { m_columns = columns; }
    std::optional<SheetRecord> next();

private:
    struct Reading {
        SheetRecord record;
        qsizetype end = 0;    // offset of the line to read next
    };

    // Offset of the line after the one at offset `line`.
    qsizetype nextLine(qsizetype line) const { return m_text.indexOf('\n', line) + 1; }
    Reading read(qsizetype from, qsizetype until);
    bool holdsRow(qsizetype from, qsizetype until, const SheetRecord& record);
    void addCell(QByteArrayView cell);

    csv_parser m_parser{};
    QByteArrayView m_text;
    char m_separator;
    qsizetype m_columns = 0;    // 0: not known
    qsizetype m_at = 0;         // offset of the line on which the next record begins
    SheetRecord m_record;       // the record being read
};
