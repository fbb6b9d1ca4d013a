#pragma once

#include <QByteArrayList>
#include <QByteArrayView>

#include <csv.h>

#include <optional>

struct SheetRecord {
    static constexpr int mostCells = 16'384;    // what a spreadsheet holds

    QByteArrayList cells;       // mostCells at most
    qsizetype count = 0;        // of cells; less is not known of one that is not whole
    bool hasSurplus = false;    // beyond mostCells there is more than blank cells
    bool isWhole = false;       // else its quotes are wrong

    bool isBlank() const;
    bool isNarrowerThan(qsizetype columns) const { return count < columns; }
    // Not counting blank cells.
    bool isWiderThan(qsizetype columns) const;
};

// The records of a text, one by one. A quote that is wrong spoils the record that it stands in and
// none of those that it seems to hold.
class SheetRecords {
public:
    // The text outlives this, and each of its lines ends with \n.
    SheetRecords(QByteArrayView text, char separator);
    ~SheetRecords();
    SheetRecords(const SheetRecords&) = delete;
    SheetRecords& operator=(const SheetRecords&) = delete;

    // How many cells the records that follow should have: tells rows that a quote has swallowed.
    void setColumns(qsizetype columns) { m_columns = columns; }
    std::optional<SheetRecord> next();

private:
    struct Reading {
        SheetRecord record;
        qsizetype end = 0;    // the line to go on with
    };

    // Where the line after the one at `line` begins.
    qsizetype nextLine(qsizetype line) const { return m_text.indexOf('\n', line) + 1; }
    Reading read(qsizetype from, qsizetype until);
    bool holdsRow(qsizetype from, qsizetype until, const SheetRecord& record);
    void addCell(QByteArrayView cell);

    csv_parser m_parser{};
    QByteArrayView m_text;
    char m_separator;
    qsizetype m_columns = 0;    // 0: not known
    qsizetype m_at = 0;         // the line that the next record begins on
    SheetRecord m_record;       // being read
};
