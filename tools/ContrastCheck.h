#pragma once
#include <QImage>
#include <QRegion>
#include <QStringList>

class QWidget;

// A text or icon of a picture that is hard to see.
struct FaintInk {
    QRect at;
    double ratio = 0, needed = 0;    // as WCAG 2 counts contrast
};

// Finds texts and icons in `picture` and compares the strongest colour of each with the flat ground
// around it: 4.5 is needed for texts, 3 for large ones and for icons. Does not look at `excepted`.
QList<FaintInk> faintInks(const QImage& picture, const QRegion& excepted);

// Where `window` shows photographs, colours to choose from, and controls that cannot be used.
QRegion exceptedFromContrast(const QWidget& window);
