#pragma once

#include <QSize>

// File pixels per decoded pixel, each way.
enum class PhotoLevel { full = 1, half = 2, quarter = 4, eighth = 8 };

// The size of a photo decoded at `level`; fractions of pixels are rounded up.
QSize sizeAtLevel(QSize photo, PhotoLevel level);

// The coarsest level whose picture still covers `needed` pixels both ways; full when none does.
PhotoLevel coveringLevel(QSize photo, QSize needed);
