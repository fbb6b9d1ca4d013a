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

struct SheetRow {
    int number = 0;    // as spreadsheet programs count: the header is 1
    // By column; without one where the sheet has no such column.
    std::array<std::optional<QString>, Vocabulary<SheetColumn>::rows.size()> cells;
    QString fault;    // why it cannot be applied; empty when it can

    QString file() const { return cells[std::size_t(SheetColumn::file)].value_or(QString()); }
};

struct TextSheet {
    QList<SheetRow> rows;    // without the empty ones
    QString error;           // why nothing of it can be read, as the end of a sentence
};

// What a file holds: UTF-8, a header row, commas or semicolons, any line ends. Whatever is wrong
// with a row spoils no other one.
TextSheet readTextSheet(QByteArrayView bytes);

// A row that was not applied.
struct RowProblem {
    int row = 0;
    QString file;
    QString reason;

    bool operator==(const RowProblem&) const = default;
};

// The rows that each image gets, in their order, as indices, and the rows that reach none.
struct SheetMatch {
    QList<QList<qsizetype>> rowsOfImage;
    QList<RowProblem> problems;

    qsizetype filledImages() const;
};

// A row fills every image of its name, with or without the extension. Several rows of one name are
// for as many images of that name, in order, and the last one for all the rest.
SheetMatch matchRows(const TextSheet& sheet, const QList<QUrl>& images);

// Writes the texts into the layers of their slots, visible or not.
void fillTexts(PublicationItem& item, const SheetRow& row);

// Fills all the items; what that reached.
SheetMatch applyTextSheet(PublicationItems& items, const TextSheet& sheet);

// The sheet of these items. Reading and applying it changes nothing.
QByteArray textSheetOf(const PublicationItems& items);
