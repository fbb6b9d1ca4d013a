#pragma once
#include <QColor>
#include <QList>

class QImage;

// Up to six typical colours of the picture, the most common first; a plain picture has fewer. Equal
// pictures give equal colours.
QList<QColor> colorsOf(const QImage& picture);
