#pragma once

#include "studio/sheet/TextSheet.h"

// A row that was not applied.
struct RowProblem {
    int row = 0;    // SheetRow::number
    QString file;
    RowFault fault = RowFault::unknownFile;

    bool operator==(const RowProblem&) const = default;
};

// For each image the index of the row that fills it with texts, and the rows that fill none.
struct SheetMatch {
    QList<std::optional<qsizetype>> rowOfImage;
    QList<RowProblem> problems;

    qsizetype filledImages() const;
};

// Assigns rows to images with the same name, with or without the extension. If several rows without
// a fault have that name, each fills the next image, and the last one all that remain. No image is
// filled twice.
SheetMatch matchRows(const TextSheet& sheet, const PublicationItems& items);

// Writes the texts of the matching rows into the items.
SheetMatch applyTextSheet(PublicationItems& items, const TextSheet& sheet);
