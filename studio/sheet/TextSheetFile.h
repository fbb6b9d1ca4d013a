#pragma once

#include "studio/sheet/SheetMatch.h"

// Reads and writes text sheets as files, and describes the result of applying one.

// Both functions wait for the disk. readTextSheetFile() refuses files far larger than any batch
// needs. writeTextSheetFile() returns the system's error message; empty on success.
TextSheet readTextSheetFile(const QString& path);
QString writeTextSheetFile(const QString& path, const PublicationItems& items);

// A sentence such as "Textos aplicados a 480 imágenes. 2 filas sin aplicar: 3, 17 (faltan
// columnas)."
QString sentenceOn(const SheetMatch& match);
