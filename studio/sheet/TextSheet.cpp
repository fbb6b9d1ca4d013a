#include "studio/sheet/TextSheet.h"

#include "model/PlainText.h"
#include "model/SearchText.h"
#include "studio/sheet/SheetRecords.h"

#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");
constexpr const char* sheetLineEnd = "\r\n";
const QString notText = u"no es un archivo CSV"_s;
constexpr int mostRows = 20'000;    // far more than a batch; a hostile file may hold millions

// Converts UTF-16 to UTF-8; empty if the bytes are not valid UTF-16.
std::optional<QByteArray> fromUtf16(QByteArrayView bytes)
{
    using Flag = QStringDecoder::Flag;
    constexpr QByteArrayView bigEndianMark("\xFE\xFF"), littleEndianMark("\xFF\xFE");
    const bool isBig = bytes.startsWith(bigEndianMark) || (bytes.size() > 1 && bytes[0] == '\0');
    if (bytes.startsWith(bigEndianMark) || bytes.startsWith(littleEndianMark))
        bytes = bytes.sliced(2);
    QStringDecoder decoder(isBig ? QStringDecoder::Utf16BE : QStringDecoder::Utf16LE,
                           Flag::Stateless);
    const QString text = decoder(bytes);
    if (decoder.hasError() || bytes.size() % 2 != 0 || !text.isValidUtf16())
        return std::nullopt;
    return text.toUtf8();
}

// Recognizes UTF-16 by its byte order mark, or by the zero byte in a first character that is ASCII.
bool isUtf16(QByteArrayView bytes)
{
    return bytes.startsWith("\xFE\xFF") || bytes.startsWith("\xFF\xFE") ||
           (bytes.size() > 1 && (bytes[0] == '\0') != (bytes[1] == '\0'));
}

// Whether most bytes beyond ASCII are characters of their own, as in Windows-1252, and not parts of
// UTF-8 sequences.
bool isWindows1252(QByteArrayView bytes)
{
    qsizetype sequences = 0, strays = 0;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto lead = uchar(bytes[i]);
        if (lead < 0x80)
            continue;
        const int more = lead >= 0xC2 && lead < 0xE0   ? 1
                         : lead >= 0xE0 && lead < 0xF0 ? 2
                         : lead >= 0xF0 && lead < 0xF5 ? 3
                                                       : 0;
        const QByteArrayView rest =
            bytes.sliced(i + 1, std::min<qsizetype>(more, bytes.size() - i - 1));
        const bool isWhole = more > 0 && rest.size() == more &&
                             std::ranges::all_of(rest, [](char c) { return (c & 0xC0) == 0x80; });
        ++(isWhole ? sequences : strays);
        i += isWhole ? more : 0;
    }
    return strays > sequences && !bytes.contains('\0');
}

// Converts the bytes of a file to UTF-8; empty if they are broken UTF-16. Bytes that look like
// neither UTF-16 nor Windows-1252 are returned unchanged.
std::optional<QByteArray> inUtf8(QByteArrayView bytes)
{
    if (bytes.startsWith(byteOrderMark))
        return bytes.sliced(byteOrderMark.size()).toByteArray();
    if (isUtf16(bytes))
        return fromUtf16(bytes);
    QStringDecoder windows("windows-1252", QStringDecoder::Flag::Stateless);
    if (!isWindows1252(bytes) || !windows.isValid())
        return bytes.toByteArray();
    const QString text = windows(bytes);
    return text.toUtf8();
}

// Replaces every line end by \n, and adds one to the last line if it has none.
QByteArray withPlainLineEnds(QByteArray text)
{
    text.replace("\r\n", "\n").replace('\r', '\n');
    if (!text.endsWith('\n'))
        text.append('\n');
    return text;
}

// The separator that a line like "sep=;" names; empty for other lines. Some spreadsheet programs
// write such a line first.
std::optional<char> namedSeparator(QByteArrayView line)
{
    constexpr QByteArrayView key("sep="), separators(",;\t|");
    const bool names = line.size() == key.size() + 2 &&
                       line.first(key.size()).compare(key, Qt::CaseInsensitive) == 0 &&
                       separators.contains(line[key.size()]);
    return names ? std::optional(line[key.size()]) : std::nullopt;
}

// The separator: comma or semicolon, whichever is more frequent in the first line.
char separatorOf(QByteArrayView text)
{
    qsizetype commas = 0, semicolons = 0;
    bool isQuoted = false;
    for (const char c : text) {
        if (c == '"')
            isQuoted = !isQuoted;
        if (isQuoted)
            continue;
        if (c == '\n')
            break;
        commas += c == ',';
        semicolons += c == ';';
    }
    return semicolons > commas ? ';' : ',';
}

struct HeaderStart {
    qsizetype at = 0;
    int number = 1;    // number of the header's row, counted from 1
    char separator = ',';
};

// Finds the header. Skips blank rows and a row that names the separator; empty if no row is left.
std::optional<HeaderStart> headerStart(QByteArrayView text)
{
    std::optional<char> named;
    HeaderStart start;
    for (; start.at < text.size(); ++start.number) {
        const qsizetype end = text.indexOf('\n', start.at) + 1;
        const QByteArrayView line = text.sliced(start.at, end - start.at);
        const bool isEmpty = std::ranges::all_of(
            line, [](char c) { return QByteArrayView(" \t,;|\n").contains(c); });
        const auto separator = namedSeparator(line);
        if (!isEmpty && (named || !separator)) {
            start.separator = named.value_or(separatorOf(text.sliced(start.at)));
            return start;
        }
        if (separator)
            named = separator;
        start.at = end;
    }
    return std::nullopt;
}

std::optional<QString> decoded(const QByteArray& cell)
{
    using Flag = QStringDecoder::Flag;
    // ConvertInitialBom keeps a byte order mark at the start of a cell, where it is text.
    QStringDecoder decoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    const QString text = decoder(cell);
    return decoder.hasError() ? std::nullopt : std::optional(text);
}

// Whether a spreadsheet program could take the cell for a formula, if apostrophes before it are
// ignored. written() puts one apostrophe before such a cell and withoutGuard() removes one, so that
// a text that begins with apostrophes keeps them.
bool isLikeFormula(QStringView cell)
{
    while (cell.startsWith(u'\''))
        cell = cell.mid(1);
    return !cell.isEmpty() && QStringView(u"=+-@\t").contains(cell.front());
}

QString withoutGuard(const QString& cell)
{
    return cell.startsWith(u'\'') && isLikeFormula(cell) ? cell.mid(1) : cell;
}

QString written(const QString& text)
{
    QString cell = isLikeFormula(text) ? u'\'' + text : text;
    const bool isPlain = std::ranges::none_of(cell, [](QChar c) {
        return c == u';' || c == u',' || c == u'"' || c.category() == QChar::Other_Control;
    });
    if (isPlain && cell == cell.trimmed())
        return cell;
    return u'"' + cell.replace(u'"', u"\"\""_s) + u'"';
}

struct Header {
    QList<std::optional<SheetColumn>> columns;    // empty for an unknown column, which is ignored
    QString error;
};

std::optional<SheetColumn> columnNamed(const QString& name)
{
    const QString folded = foldedForSearch(name.trimmed()).replace(u' ', u'_');
    return folded == u"tagline" ? SheetColumn::tagline : fromRawValue<SheetColumn>(folded);
}

Header headerOf(const SheetRecord& record)
{
    if (!record.isWhole)
        return {{}, u"la primera fila tiene comillas mal puestas"_s};
    if (record.count > SheetRecord::mostCells)
        return {{}, u"tiene más de %1 columnas"_s.arg(SheetRecord::mostCells)};
    Header header;
    for (const QByteArray& cell : record.cells) {
        const auto name = decoded(cell);
        if (!name || std::ranges::any_of(*name, isControl))
            return {{}, notText};
        const auto column = columnNamed(*name);
        if (column && header.columns.contains(column))
            return {{}, u"la columna «%1» está dos veces"_s.arg(rawValue(*column))};
        header.columns.append(column);
    }
    // Spreadsheet programs add empty cells to the header if another row is wider.
    while (header.columns.size() > 1 && record.cells[header.columns.size() - 1].trimmed().isEmpty())
        header.columns.removeLast();

    const auto file = std::optional(SheetColumn::file);
    const auto isText = [&](const auto& column) { return column && column != file; };
    if (!header.columns.contains(file))
        return {{}, u"falta la columna «%1»"_s.arg(rawValue(SheetColumn::file))};
    if (std::ranges::none_of(header.columns, isText))
        return {{}, u"no tiene ninguna columna de textos"_s};
    return header;
}

SheetRow rowOf(const SheetRecord& record, const Header& header)
{
    SheetRow row;
    const auto blame = [&row](bool isWrong, RowFault fault) {
        if (isWrong && !row.fault)
            row.fault = fault;
    };
    const auto count = header.columns.size();
    blame(!record.isWhole, RowFault::badQuotes);
    blame(record.isNarrowerThan(count), RowFault::tooFewCells);
    blame(record.isWiderThan(count), RowFault::tooManyCells);
    bool isTooLong = false;
    for (qsizetype i = 0; i < std::min(count, record.cells.size()); ++i) {
        const auto& column = header.columns[i];
        if (!column)
            continue;
        const auto text = decoded(record.cells[i]);
        blame(!text, RowFault::notUtf8);
        if (!text)
            continue;
        blame(std::ranges::any_of(*text, isControl), RowFault::controlCharacter);
        const QString& cell = row.cells[std::size_t(*column)].emplace(withoutGuard(*text));
        isTooLong = isTooLong || (*column != SheetColumn::file && cell.size() > longestText);
    }
    row.name = sheetName(row.file());
    blame(row.name.isEmpty(), RowFault::noFile);
    // Checked last, because `fault` is the first fault found, and this one is tolerated for some
    // images.
    blame(isTooLong, RowFault::tooLong);
    return row;
}

}    // namespace

TextSheet readTextSheet(QByteArrayView bytes)
{
    const std::optional<QByteArray> decodedText = inUtf8(bytes);
    if (!decodedText)
        return {{}, notText};
    const QByteArray text = withPlainLineEnds(*decodedText);
    const auto start = headerStart(text);
    if (!start)
        return {{}, u"está vacío"_s};
    SheetRecords records(QByteArrayView(text).sliced(start->at), start->separator);
    const Header header = headerOf(*records.next());
    if (!header.error.isEmpty())
        return {{}, header.error};
    records.setColumns(header.columns.size());
    TextSheet sheet;
    for (int number = start->number + 1; const auto record = records.next(); ++number) {
        if (record->isBlank())
            continue;
        if (sheet.rows.size() == mostRows)
            return {{}, u"tiene más de %1 filas"_s.arg(mostRows)};
        sheet.rows.append(rowOf(*record, header));
        sheet.rows.last().number = number;
    }
    return sheet;
}

QString sheetName(const QString& fileName)
{
    return plainText(fileName).trimmed().normalized(QString::NormalizationForm_C);
}

std::optional<QString> textOf(const PublicationItem& item, SheetColumn column)
{
    if (column == SheetColumn::file)
        return item.url.fileName();
    if (column == SheetColumn::caption)
        return item.analysis.publicationCaption;
    const auto layer = std::ranges::find(item.layers, *row(column).slot, &TextLayer::slot);
    return layer == item.layers.end() ? std::nullopt : std::optional(layer->text);
}

void fillTexts(PublicationItem& item, const SheetRow& row)
{
    for (const auto& column : Vocabulary<SheetColumn>::rows) {
        const auto& cell = row.cell(column.value);
        if (!cell)
            continue;
        if (column.value == SheetColumn::caption && item.analysis.publicationCaption != *cell) {
            item.analysis.publicationCaption = *cell;
            item.isCaptionOwn = true;
        } else if (TextLayer* layer = column.slot ? item.layer(*column.slot) : nullptr)
            layer->text = *cell;
    }
}

QByteArray textSheetHead()
{
    QStringList names;
    for (const auto& column : Vocabulary<SheetColumn>::rows)
        names.append(column.rawValue.toString());
    return byteOrderMark.toByteArray() + names.join(u';').toUtf8() + sheetLineEnd;
}

QByteArray textSheetRow(const PublicationItem& item)
{
    QStringList cells;
    for (const SheetColumn column : allCases<SheetColumn>())
        cells.append(written(plainText(textOf(item, column).value_or(QString()))));
    return cells.join(u';').toUtf8() + sheetLineEnd;
}

QByteArray textSheetOf(const PublicationItems& items)
{
    QByteArray sheet = textSheetHead();
    for (const PublicationItem& item : items)
        sheet += textSheetRow(item);
    return sheet;
}
