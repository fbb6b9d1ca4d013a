#pragma once

#include "model/PublicationItem.h"

#include <QByteArray>

#include <array>
#include <optional>

// The texts of a batch as a spreadsheet: one row per image, one column per text.

enum class SheetColumn { file, title, subtitle, tagline, callToAction, caption };

struct SheetColumnRow {
    SheetColumn value;
    QStringView rawValue;    // in the header
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
    int number = 0;    // as spreadsheet programs count: the header is 1 when it is the first row
    // By SheetColumn; empty where the sheet has no such column.
    std::array<std::optional<QString>, Vocabulary<SheetColumn>::rows.size()> cells;
    QString name;    // of the file, as sheetName() gives it
    // tooLong does not keep the row from an image that already holds that very text.
    std::optional<RowFault> fault;

    const std::optional<QString>& cell(SheetColumn column) const
    {
        return cells[std::size_t(column)];
    }
    QString file() const { return cell(SheetColumn::file).value_or(QString()); }
};

struct TextSheet {
    QList<SheetRow> rows;    // without the empty ones
    QString error;           // why the sheet cannot be read at all, as the end of a sentence
};

// Reads a CSV file: UTF-8, UTF-16 or, as older spreadsheets write it, Windows-1252; a header row,
// commas or semicolons, any line ends. A fault in one row spoils no other row.
TextSheet readTextSheet(QByteArrayView bytes);

// A file name as names are compared: without blanks around it, its accents composed (NFC).
QString sheetName(const QString& fileName);

// The item's text for a column; none where the item has no layer for it.
std::optional<QString> textOf(const PublicationItem& item, SheetColumn column);

// Writes the row's texts into the layers of their slots, visible or not, and the caption.
void fillTexts(PublicationItem& item, const SheetRow& row);

// The CSV file with the texts of these items. Reading and applying it again changes nothing but
// line ends and control characters.
QByteArray textSheetOf(const PublicationItems& items);
