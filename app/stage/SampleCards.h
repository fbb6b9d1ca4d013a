#pragma once
#include <QPixmap>

// Painted landscapes that stand for posts while there are no photographs. `ratio`: device pixels
// per logical pixel.
enum class SampleCard { mountain, valley, sunset };
QSizeF sampleCardSize(SampleCard card);
QPixmap sampleCard(SampleCard card, double ratio);
