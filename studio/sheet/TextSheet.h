#pragma once

#include "model/PublicationItem.h"

#include <QByteArray>

#include <array>
#include <optional>

// The texts of a batch as a spreadsheet: one row per image, one column per text.

enum class SheetColumn { file, title, subtitle, tagline, callToAction, caption };

struct SheetColumnRow {
    SheetColumn value;
    QStringView rawValue;    // name in the header row
    std::optional<CopySlot> slot = {};
};

template <>
struct Vocabulary<SheetColumn> {
    static constexpr std::array rows{
        SheetColumnRow{SheetColumn::file, u"archivo"},
        SheetColumnRow{SheetColumn::title, u"titulo", CopySlot::title},
        SheetColumnRow{SheetColumn::subtitle, u"subtitulo", CopySlot::subtitle},
        SheetColumnRow{SheetColumn::tagline, u"parrafo", CopySlot::tagline},
        SheetColumnRow{SheetColumn::callToAction, u"cta", CopySlot::callToAction},
        SheetColumnRow{SheetColumn::caption, u"texto_publicacion"},
    };
};
static_assert(rowsAreInOrder<SheetColumn>());

// Why a row is not applied.
enum class RowFault {
    badQuotes,
    tooFewCells,
    tooManyCells,
    notUtf8,
    controlCharacter,
    noFile,
    tooLong,
    unknownFile,
    repeated
};
struct RowFaultRow {
    RowFault fault;
    QStringView reason;    // for the user
};
inline constexpr std::array rowFaults{
    RowFaultRow{RowFault::badQuotes, u"comillas mal puestas"},
    RowFaultRow{RowFault::tooFewCells, u"faltan columnas"},
    RowFaultRow{RowFault::tooManyCells, u"sobran columnas"},
    RowFaultRow{RowFault::notUtf8, u"no está en UTF-8"},
    RowFaultRow{RowFault::controlCharacter, u"tiene caracteres de control"},
    RowFaultRow{RowFault::noFile, u"falta el nombre del archivo"},
    RowFaultRow{RowFault::tooLong, u"un texto pasa de 10000 caracteres"},
    RowFaultRow{RowFault::unknownFile, u"no hay ninguna imagen con ese nombre"},
    RowFaultRow{RowFault::repeated, u"repite una imagen"},
};
constexpr const RowFaultRow& row(RowFault fault)
{
    return rowFaults[std::size_t(fault)];
}
static_assert(std::ranges::all_of(rowFaults, [](const auto& r) { return &row(r.fault) == &r; }));
static_assert(longestText == 10'000, "what the row of tooLong says");

struct SheetRow {
    int number = 0;    // as in spreadsheet programs, where the first row of the file is 1
    // Indexed by SheetColumn; empty where the sheet has no such column.
    std::array<std::optional<QString>, Vocabulary<SheetColumn>::rows.size()> cells;
    QString name;    // sheetName() of file()
    // Despite `tooLong`, the row is applied to an image that already has the same long text.
    std::optional<RowFault> fault;

    const std::optional<QString>& cell(SheetColumn column) const
    {
        return cells[std::size_t(column)];
    }
    QString file() const { return cell(SheetColumn::file).value_or(QString()); }
};

struct TextSheet {
    QList<SheetRow> rows;    // without blank rows
    QString error;    // why the sheet cannot be read, as the end of a sentence; empty: it was read
};

// Reads a CSV file with a header row: in UTF-8, UTF-16 or Windows-1252 (from older spreadsheet
// programs), separated by commas, semicolons or what a row like "sep=;" says, with any line ends. A
// fault in one row does not affect other rows.
TextSheet readTextSheet(QByteArrayView bytes);

// Normalizes a file name for comparison: removes blanks around it and composes accents (NFC).
QString sheetName(const QString& fileName);

// The item's text for a column; empty if the item has no layer for it.
std::optional<QString> textOf(const PublicationItem& item, SheetColumn column);

// Writes the row's texts into the item's layers, visible or hidden, and into its caption.
void fillTexts(PublicationItem& item, const SheetRow& row);

// Makes a CSV file with the texts of these items. If it is read and applied to them again, nothing
// changes but line ends and control characters.
QByteArray textSheetOf(const PublicationItems& items);
// The parts of such a file: its beginning up to the first row, and one row.
QByteArray textSheetHead();
QByteArray textSheetRow(const PublicationItem& item);
