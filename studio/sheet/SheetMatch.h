#pragma once

#include "studio/sheet/TextSheet.h"

// A row that was not applied.
struct RowProblem {
    int row = 0;
    QString file;
    RowFault fault = RowFault::unknownFile;

    bool operator==(const RowProblem&) const = default;
};

// The row that each image gets, as an index, and the rows that reach none.
struct SheetMatch {
    QList<std::optional<qsizetype>> rowOfImage;
    QList<RowProblem> problems;

    qsizetype filledImages() const;
};

// A row fills every image of its name, with or without the extension, that no row before it has
// filled. Several good rows of one name are for as many images in order, the last for all the rest.
SheetMatch matchRows(const TextSheet& sheet, const PublicationItems& items);

// Fills the items; what that reached.
SheetMatch applyTextSheet(PublicationItems& items, const TextSheet& sheet);
