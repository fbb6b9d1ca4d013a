#pragma once

#include <QDir>

// Makes one picture for each design: the first six photos of a folder, with texts of different
// lengths, in that design. False when one could not be made.
bool makeContactSheets(const QDir& out, const QString& photoFolder,
                       const QString& definitionFolder);
