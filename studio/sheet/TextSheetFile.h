#pragma once

#include "studio/sheet/SheetMatch.h"

// Text sheets on disk, and what the user is told after one was applied.

// Both functions wait for the disk. A file larger than any batch could need is not read. Writing
// gives an empty string, or the system's reason why it failed.
TextSheet readTextSheetFile(const QString& path);
QString writeTextSheetFile(const QString& path, const PublicationItems& items);

// "Textos aplicados a 480 imagen(es). 2 fila(s) sin aplicar: 3, 17 (faltan columnas)."
QString sentenceOn(const SheetMatch& match);
