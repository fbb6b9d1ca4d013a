#pragma once

#include <QDir>

// Saves one picture in `out` for each design in `definitionFolder`: the first six photos of
// `photoFolder`, with texts of different lengths, in that design. Returns false if a picture could
// not be made.
bool makeContactSheets(const QDir& out, const QString& photoFolder,
                       const QString& definitionFolder);
