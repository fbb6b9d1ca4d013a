#pragma once

#include <QByteArrayList>
#include <QByteArrayView>

#include <csv.h>

#include <optional>

struct SheetRecord {
    static constexpr int mostCells = 16'384;    // columns that spreadsheet programs can hold

    QByteArrayList cells;       // mostCells at most
    qsizetype count = 0;        // of all cells; of the cells before the fault if not isWhole
    bool hasSurplus = false;    // a cell beyond mostCells is not blank
    bool isWhole = false;       // false: the record's quotes are wrong

    bool isBlank() const;
    bool isNarrowerThan(qsizetype columns) const { return count < columns; }
    // Whether a cell beyond the first `columns` is not blank.
    bool isWiderThan(qsizetype columns) const;
};

// Reads the records of a CSV text one by one. A wrong quote spoils the record that it stands in,
// but none of the rows that it seems to enclose.
class SheetRecords {
public:
    // `text` outlives this object, and each of its lines ends with \n.
    SheetRecords(QByteArrayView text, char separator);
    ~SheetRecords();
    SheetRecords(const SheetRecords&) = delete;
    SheetRecords& operator=(const SheetRecords&) = delete;

    // The number of cells that the following records should have, to recognize rows that an open
    // quote has swallowed.
    void setColumns(qsizetype columns) { m_columns = columns; }
    std::optional<SheetRecord> next();

private:
    struct Reading {
        SheetRecord record;
        qsizetype end = 0;    // offset of the line to go on with
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
    qsizetype m_at = 0;         // offset of the line that the next record begins on
    SheetRecord m_record;       // being read
};
