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

// A focus ring, a tick or a state of a control that is hard to see.
struct FaintMark {
    QString what;    // the kind of mark and the name of the control
    QRect at;
    double ratio = 0;    // 3 is needed
};

// Draws each control of `window` that can be used with the focus and without it, and in each of its
// states, and compares the pixels. The focus and the states are the same afterwards.
QList<FaintMark> faintMarks(QWidget& window);

// Where `window` shows photographs, colours to choose from, scroll bars, and controls that cannot
// be used.
QRegion exceptedFromContrast(const QWidget& window);
