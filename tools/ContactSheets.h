#pragma once

#include <QDir>

// One picture a design: the first six photos of a folder with texts of different lengths, each as
// the design makes it. False when a sheet could not be made.
bool makeContactSheets(const QDir& out, const QString& photoFolder,
                       const QString& definitionFolder);
