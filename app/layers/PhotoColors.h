#pragma once
#include <QColor>
#include <QList>

class QImage;

// Up to six colours that stand for the picture, the most common first; the same for the same
// picture. A plain one has fewer.
QList<QColor> colorsOf(const QImage& picture);
