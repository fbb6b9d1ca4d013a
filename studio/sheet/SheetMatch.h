#pragma once

#include "studio/sheet/TextSheet.h"

// A row that was not applied.
struct RowProblem {
    int row = 0;    // SheetRow::number
    QString file;
    RowFault fault = RowFault::unknownFile;

    bool operator==(const RowProblem&) const = default;
};

// For each image the index of the row that fills it, and the rows that fill no image.
struct SheetMatch {
    QList<std::optional<qsizetype>> rowOfImage;
    QList<RowProblem> problems;

    qsizetype filledImages() const;
};

// A row fills the images of its name, with or without the extension, that no earlier row has
// filled. Of several good rows of one name each fills the next image, and the last all that remain.
SheetMatch matchRows(const TextSheet& sheet, const PublicationItems& items);

// Writes the texts of the matching rows into the items.
SheetMatch applyTextSheet(PublicationItems& items, const TextSheet& sheet);
