#pragma once

#include "studio/sheet/SheetMatch.h"

// A text sheet on the disk, and what the user is told of it.

// Both wait for the disk. What is larger than any batch could need is not read. Writing gives an
// empty string, or the system's reason.
TextSheet readTextSheetFile(const QString& path);
QString writeTextSheetFile(const QString& path, const PublicationItems& items);

// "Textos aplicados a 480 imagen(es). 2 fila(s) sin aplicar: 3, 17 (faltan columnas)."
QString sentenceOn(const SheetMatch& match);
