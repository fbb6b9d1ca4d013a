#pragma once
#include <QPixmap>

// Painted landscapes that stand for posts where there are no photographs yet.
enum class SampleCard { mountain, valley, sunset };
QSizeF sampleCardSize(SampleCard card);
QPixmap sampleCard(SampleCard card, double ratio);
