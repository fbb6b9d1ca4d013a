#pragma once

#include "model/PublicationItem.h"

#include <QByteArray>

#include <array>
#include <optional>

// The texts of a batch as a spreadsheet keeps them: a column a text, a row an image.

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
    // By column; without one where the sheet has no such column.
    std::array<std::optional<QString>, Vocabulary<SheetColumn>::rows.size()> cells;
    QString name;    // of the file, as sheetName() gives it
    // tooLong stands only for images that do not hold the very same text already.
    std::optional<RowFault> fault;

    const std::optional<QString>& cell(SheetColumn column) const
    {
        return cells[std::size_t(column)];
    }
    QString file() const { return cell(SheetColumn::file).value_or(QString()); }
};

struct TextSheet {
    QList<SheetRow> rows;    // without the empty ones
    QString error;           // why nothing of it can be read, as the end of a sentence
};

// What a file holds: UTF-8, UTF-16 or, as older spreadsheets write it, Windows-1252; a header row,
// commas or semicolons, any line ends. Whatever is wrong with a row spoils no other one.
TextSheet readTextSheet(QByteArrayView bytes);

// The name of a file as it is compared: without blanks around it, its accents in one form.
QString sheetName(const QString& fileName);

// What an item has for a column; nothing where it has no such layer.
std::optional<QString> textOf(const PublicationItem& item, SheetColumn column);

// Writes the texts into the layers of their slots, visible or not.
void fillTexts(PublicationItem& item, const SheetRow& row);

// The sheet of these items. Reading and applying it changes nothing but line ends and control
// characters.
QByteArray textSheetOf(const PublicationItems& items);
