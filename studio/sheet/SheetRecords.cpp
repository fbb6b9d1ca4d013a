#include "studio/sheet/SheetRecords.h"

#include <algorithm>
#include <new>

namespace {

bool isFilled(QByteArrayView cell)
{
    return !cell.trimmed().isEmpty();
}

// Removes the blanks between a quoted cell and its separators. All other blanks belong to the text;
// libcsv, if told to skip blanks, would skip those as well. `beginsQuoted`: the line begins inside
// a quoted cell.
QByteArray withoutBlanksAroundQuotes(QByteArrayView line, bool beginsQuoted, char separator)
{
    enum class At { cellStart, text, quoted, quoteEnd };
    At at = beginsQuoted ? At::quoted : At::cellStart;
    QByteArray kept;
    kept.reserve(line.size());
    qsizetype blanks = 0;    // at the end of `kept`, perhaps beside a quoted cell
    for (const char c : line) {
        const bool isQuote = c == '"';
        const bool isEnd = at != At::quoted && (c == separator || c == '\n');
        const bool isBlank = !isEnd && (c == ' ' || c == '\t');
        if ((at == At::cellStart && isQuote) || (at == At::quoteEnd && isEnd))
            kept.chop(blanks);
        kept.append(c);
        blanks = isBlank && (at == At::cellStart || at == At::quoteEnd) ? blanks + 1 : 0;
        if (blanks > 0)
            continue;
        if (isEnd)
            at = At::cellStart;
        else if (isQuote)
            at = at == At::quoted ? At::quoteEnd : at == At::text ? At::text : At::quoted;
        else if (at != At::quoted)
            at = At::text;
    }
    return kept;
}

}    // namespace

bool SheetRecord::isBlank() const
{
    return isWhole && !hasSurplus && std::ranges::none_of(cells, isFilled);
}

bool SheetRecord::isWiderThan(qsizetype columns) const
{
    return hasSurplus || std::ranges::any_of(cells.mid(columns), isFilled);
}

SheetRecords::SheetRecords(QByteArrayView text, char separator)
    : m_text(text), m_separator(separator)
{
    if (csv_init(&m_parser, CSV_STRICT | CSV_REPALL_NL) != 0)
        throw std::bad_alloc();
    csv_set_delim(&m_parser, static_cast<unsigned char>(separator));
    csv_set_space_func(&m_parser, [](unsigned char) { return 0; });
    csv_set_blk_size(&m_parser, 65536);
}

SheetRecords::~SheetRecords()
{
    csv_free(&m_parser);
}

void SheetRecords::addCell(QByteArrayView cell)
{
    ++m_record.count;
    if (m_record.count <= SheetRecord::mostCells)
        m_record.cells.append(cell.toByteArray());
    else if (isFilled(cell))
        m_record.hasSurplus = true;
}

// Reads the record that begins at offset `from`, using only lines before offset `until`.
SheetRecords::Reading SheetRecords::read(qsizetype from, qsizetype until)
{
    const auto onCell = [](void* cell, std::size_t size, void* self) {
        const QByteArrayView bytes(static_cast<const char*>(cell), qsizetype(size));
        static_cast<SheetRecords*>(self)->addCell(bytes);
    };
    const auto onRecord = [](int, void* self) {
        static_cast<SheetRecords*>(self)->m_record.isWhole = true;
    };
    m_record = {};
    qsizetype cellLine = from;    // offset of the line on which the cell being read began
    for (qsizetype line = from; line < until;) {
        const qsizetype end = nextLine(line);
        const qsizetype known = m_record.count;
        const QByteArray bytes =
            withoutBlanksAroundQuotes(m_text.sliced(line, end - line), line > from, m_separator);
        const auto size = std::size_t(bytes.size());
        const bool isRead =
            csv_parse(&m_parser, bytes.constData(), size, onCell, onRecord, this) == size;
        if (csv_error(&m_parser) == CSV_ENOMEM)
            throw std::bad_alloc();
        if (m_record.count > known)
            cellLine = line;
        if (!isRead)
            break;
        if (m_record.isWhole)
            return {m_record, end};
        line = end;
    }
    // The record is faulty: it has a misplaced quote, or one that is never closed, so that all
    // following lines seem to belong to it. The next record begins on the line after the faulty
    // cell's first one.
    csv_fini(&m_parser, nullptr, nullptr, nullptr);
    return {m_record, nextLine(cellLine)};
}

// Whether a line between the two offsets looks like a row of its own, not a part of `record`. A
// line with wrong quotes does so only if the quotes of `record` are wrong, too.
bool SheetRecords::holdsRow(qsizetype from, qsizetype until, const SheetRecord& record)
{
    for (qsizetype line = from; line < until; line = nextLine(line)) {
        const SheetRecord row = read(line, nextLine(line)).record;
        if ((row.isWhole || !record.isWhole) &&
            !row.isNarrowerThan(m_columns - (row.isWhole ? 0 : 1)))
            return true;
    }
    return false;
}

std::optional<SheetRecord> SheetRecords::next()
{
    if (m_at == m_text.size())
        return std::nullopt;
    auto [record, end] = read(m_at, m_text.size());
    const bool isWrong =
        !record.isWhole || record.isNarrowerThan(m_columns) || record.isWiderThan(m_columns);
    // An unclosed quote seems to end at a quote of a later row, and to enclose the rows between.
    // Then only the first line counts as the record, and the other rows are read again.
    const qsizetype second = nextLine(m_at);
    if (m_columns > 0 && isWrong && holdsRow(second, end, record)) {
        record.isWhole = false;
        end = second;
    }
    m_at = end;
    return record;
}
