#include "studio/TextSheet.h"

#include "model/SearchText.h"

#include <QHash>
#include <QStringDecoder>

#include <csv.h>

#include <new>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");
constexpr int mostColumns = 16'384;    // what a spreadsheet holds
constexpr int mostRows = 100'000;      // far more than a batch; a hostile file may hold millions

const QString badQuotes = u"comillas mal puestas"_s;
const QString tooFewCells = u"faltan columnas"_s;
const QString tooManyCells = u"sobran columnas"_s;
const QString notUtf8 = u"no está en UTF-8"_s;
const QString controlCharacter = u"tiene caracteres de control"_s;
const QString noFile = u"no dice el archivo"_s;
const QString tooLong = u"un texto pasa de %1 caracteres"_s.arg(longestText);
const QString unknownFile = u"no hay ninguna imagen con ese nombre"_s;
const QString repeated = u"repite una imagen"_s;

// The text with \n as the only line end, the last line's included.
QByteArray withPlainLineEnds(QByteArrayView bytes)
{
    QByteArray text = bytes.toByteArray();
    text.replace("\r\n", "\n").replace('\r', '\n');
    if (!text.endsWith('\n'))
        text.append('\n');
    return text;
}

// The one that the header holds more of.
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

struct Record {
    QByteArrayList cells;       // mostColumns at most
    qsizetype count = 0;        // of cells; less is not known of one that is not whole
    bool hasSurplus = false;    // beyond mostColumns there is more than empty cells
    bool isWhole = false;
};

// The records of a text with plain line ends, one by one.
class Records {
public:
    Records(QByteArrayView text, char separator) : m_text(text)
    {
        if (csv_init(&m_parser, CSV_STRICT | CSV_REPALL_NL) != 0)
            throw std::bad_alloc();
        csv_set_delim(&m_parser, static_cast<unsigned char>(separator));
        // Blanks belong to the text.
        csv_set_space_func(&m_parser, [](unsigned char) { return 0; });
        csv_set_blk_size(&m_parser, 65536);
    }
    ~Records() { csv_free(&m_parser); }
    Records(const Records&) = delete;
    Records& operator=(const Records&) = delete;

    std::optional<Record> next();

private:
    // Where the line after the one at `line` begins.
    qsizetype nextLine(qsizetype line) const { return m_text.indexOf('\n', line) + 1; }
    void addCell(QByteArrayView cell)
    {
        ++m_record.count;
        if (m_record.count <= mostColumns)
            m_record.cells.append(cell.toByteArray());
        else if (!cell.isEmpty())
            m_record.hasSurplus = true;
    }

    csv_parser m_parser{};
    QByteArrayView m_text;
    qsizetype m_at = 0;    // the line that the next record begins on
    Record m_record;
};

std::optional<Record> Records::next()
{
    if (m_at == m_text.size())
        return std::nullopt;
    const auto onCell = [](void* cell, std::size_t size, void* self) {
        const QByteArrayView bytes(static_cast<const char*>(cell), qsizetype(size));
        static_cast<Records*>(self)->addCell(bytes);
    };
    const auto onRecord = [](int, void* self) {
        static_cast<Records*>(self)->m_record.isWhole = true;
    };
    m_record = {};
    qsizetype cellLine = m_at;    // the line that the cell being read began on
    for (qsizetype line = m_at; line < m_text.size();) {
        const qsizetype end = nextLine(line);
        const qsizetype known = m_record.count;
        const auto size = std::size_t(end - line);
        const bool isRead =
            csv_parse(&m_parser, m_text.data() + line, size, onCell, onRecord, this) == size;
        if (csv_error(&m_parser) == CSV_ENOMEM)
            throw std::bad_alloc();
        if (m_record.count > known)
            cellLine = line;
        if (!isRead)
            break;
        line = end;
        if (m_record.isWhole) {
            m_at = end;
            return m_record;
        }
    }
    // A stray quote, or one that never closes and may have swallowed all that follows: the lines
    // after the one it stands on are read anew, so that it spoils one row only.
    csv_fini(&m_parser, nullptr, nullptr, nullptr);
    m_at = nextLine(cellLine);
    return m_record;
}

bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control && c != u'\t' && c != u'\n';
}

std::optional<QString> decoded(const QByteArray& cell)
{
    using Flag = QStringDecoder::Flag;
    // A mark inside the file is text.
    QStringDecoder decoder(QStringDecoder::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    const QString text = decoder(cell);
    return decoder.hasError() ? std::nullopt : std::optional(text);
}

// A spreadsheet would compute such a cell, or warn of it. With an apostrophe before it, it is text;
// apostrophes that were there already are told from that one by their number.
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
    QList<std::optional<SheetColumn>> columns;    // unknown ones are passed over
    QString error;
};

std::optional<SheetColumn> columnNamed(const QString& name)
{
    const QString folded = foldedForSearch(name.trimmed()).replace(u' ', u'_');
    return folded == u"tagline" ? SheetColumn::tagline : fromRawValue<SheetColumn>(folded);
}

Header headerOf(const Record& record)
{
    if (!record.isWhole)
        return {{}, u"la primera fila tiene comillas mal puestas"_s};
    if (record.count > mostColumns)
        return {{}, u"tiene más de %1 columnas"_s.arg(mostColumns)};
    Header header;
    for (const QByteArray& cell : record.cells) {
        const auto name = decoded(cell);
        if (!name || std::ranges::any_of(*name, isControl))
            return {{}, u"no es un archivo CSV en UTF-8"_s};
        const auto column = columnNamed(*name);
        if (column && header.columns.contains(column))
            return {{}, u"la columna «%1» está dos veces"_s.arg(rawValue(*column))};
        header.columns.append(column);
    }
    // Spreadsheets write empty cells up to the widest row.
    while (header.columns.size() > 1 && record.cells[header.columns.size() - 1].isEmpty())
        header.columns.removeLast();

    const auto file = std::optional(SheetColumn::file);
    const auto isText = [&](const auto& column) { return column && column != file; };
    if (!header.columns.contains(file))
        return {{}, u"falta la columna «%1»"_s.arg(rawValue(SheetColumn::file))};
    if (std::ranges::none_of(header.columns, isText))
        return {{}, u"no tiene ninguna columna de textos"_s};
    return header;
}

bool isEmpty(const Record& record)
{
    return record.isWhole && !record.hasSurplus &&
           std::ranges::all_of(record.cells, [](const QByteArray& cell) { return cell.isEmpty(); });
}

SheetRow rowOf(const Record& record, const Header& header)
{
    SheetRow row;
    const auto count = header.columns.size();
    const auto isFilled = [](const QByteArray& cell) { return !cell.isEmpty(); };
    if (!record.isWhole) {
        row.fault = badQuotes;
    } else if (record.count < count) {
        row.fault = tooFewCells;
    } else if (record.hasSurplus || std::ranges::any_of(record.cells.mid(count), isFilled)) {
        row.fault = tooManyCells;
    }
    const auto blame = [&row](bool isWrong, const QString& fault) {
        if (isWrong && row.fault.isEmpty())
            row.fault = fault;
    };
    for (qsizetype i = 0; i < std::min(count, record.cells.size()); ++i) {
        if (!header.columns[i])
            continue;
        const auto text = decoded(record.cells[i]);
        blame(!text, notUtf8);
        if (!text)
            continue;
        blame(std::ranges::any_of(*text, isControl), controlCharacter);
        QString& cell = row.cells[std::size_t(*header.columns[i])].emplace(withoutGuard(*text));
        blame(cell.size() > longestText, tooLong);
    }
    blame(row.file().isEmpty(), noFile);
    return row;
}

QString normalized(const QString& name)
{
    return name.normalized(QString::NormalizationForm_C);
}

}    // namespace

TextSheet readTextSheet(QByteArrayView bytes)
{
    if (bytes.startsWith(byteOrderMark))
        bytes = bytes.sliced(byteOrderMark.size());
    if (bytes.trimmed().isEmpty())
        return {{}, u"está vacío"_s};
    const QByteArray text = withPlainLineEnds(bytes);
    Records records(text, separatorOf(text));
    const Header header = headerOf(*records.next());
    if (!header.error.isEmpty())
        return {{}, header.error};
    TextSheet sheet;
    for (int number = 2; const auto record = records.next(); ++number) {
        if (isEmpty(*record))
            continue;
        if (sheet.rows.size() == mostRows)
            return {{}, u"tiene más de %1 filas"_s.arg(mostRows)};
        sheet.rows.append(rowOf(*record, header));
        sheet.rows.last().number = number;
    }
    return sheet;
}

qsizetype SheetMatch::filledImages() const
{
    return std::ranges::count_if(rowsOfImage, [](const auto& rows) { return !rows.isEmpty(); });
}

SheetMatch matchRows(const TextSheet& sheet, const QList<QUrl>& images)
{
    QHash<QString, QList<qsizetype>> withExtension, without;
    for (qsizetype i = 0; i < images.size(); ++i) {
        withExtension[normalized(images[i].fileName())].append(i);
        without[normalized(filenameOf(images[i]))].append(i);
    }
    // Rows that cannot be applied count as well: the next one is still for the next image.
    QHash<QString, qsizetype> rowCount, rowsSeen;
    for (const SheetRow& row : sheet.rows)
        ++rowCount[normalized(row.file())];

    SheetMatch match;
    match.rowsOfImage.resize(images.size());
    for (qsizetype i = 0; i < sheet.rows.size(); ++i) {
        const SheetRow& row = sheet.rows[i];
        const QString name = normalized(row.file());
        const qsizetype turn = rowsSeen[name]++;
        // A whole name first: "a.b" may also be what is left of "a.b.jpg".
        const auto named = withExtension.value(name, without.value(name));
        QString fault = row.fault;
        if (fault.isEmpty() && turn >= named.size())
            fault = named.isEmpty() ? unknownFile : repeated;
        if (!fault.isEmpty()) {
            match.problems.append({row.number, row.file(), fault});
            continue;
        }
        const bool isLast = turn + 1 == rowCount[name];
        for (const qsizetype image : named.mid(turn, isLast ? -1 : 1))
            match.rowsOfImage[image].append(i);
    }
    return match;
}

void fillTexts(PublicationItem& item, const SheetRow& row)
{
    for (const auto& column : Vocabulary<SheetColumn>::rows) {
        const auto& cell = row.cells[std::size_t(column.value)];
        if (!cell)
            continue;
        if (column.value == SheetColumn::caption)
            item.analysis.publicationCaption = *cell;
        else if (TextLayer* layer = column.slot ? item.layer(*column.slot) : nullptr)
            layer->text = *cell;
    }
}

SheetMatch applyTextSheet(PublicationItems& items, const TextSheet& sheet)
{
    QList<QUrl> images;
    for (const PublicationItem& item : items)
        images.append(item.url);
    SheetMatch match = matchRows(sheet, images);
    for (qsizetype i = 0; i < items.size(); ++i) {
        for (const qsizetype row : match.rowsOfImage[i])
            fillTexts(items.edit(i), sheet.rows[row]);
    }
    return match;
}

QByteArray textSheetOf(const PublicationItems& items)
{
    const QString lineEnd = u"\r\n"_s;
    QStringList names;
    for (const auto& column : Vocabulary<SheetColumn>::rows)
        names.append(column.rawValue.toString());
    QString sheet = names.join(u';') + lineEnd;
    for (const PublicationItem& item : items) {
        QStringList cells{written(item.url.fileName())};
        for (const CopySlot slot : allCases<CopySlot>()) {
            const auto layer = std::ranges::find(item.layers, slot, &TextLayer::slot);
            cells.append(layer == item.layers.end() ? QString() : written(layer->text));
        }
        cells.append(written(item.analysis.publicationCaption));
        sheet += cells.join(u';') + lineEnd;
    }
    return byteOrderMark.toByteArray() + sheet.toUtf8();
}
