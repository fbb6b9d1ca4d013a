#pragma once
#include <QPixmap>

// Painted landscapes that EmptyState shows as examples of posts while the batch is empty. `ratio`:
// device pixels per logical pixel.
enum class SampleCard { mountain, valley, sunset };
QSizeF sampleCardSize(SampleCard card);
QPixmap sampleCard(SampleCard card, double ratio);
