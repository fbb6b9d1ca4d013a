#include "platform/photo/PhotoLevel.h"

QSize sizeAtLevel(QSize photo, PhotoLevel level)
{
    const int step = int(level);
    return {(photo.width() + step - 1) / step, (photo.height() + step - 1) / step};
}

PhotoLevel coveringLevel(QSize photo, QSize needed)
{
    for (const PhotoLevel level : {PhotoLevel::eighth, PhotoLevel::quarter, PhotoLevel::half}) {
        const QSize picture = sizeAtLevel(photo, level);
        if (picture.width() >= needed.width() && picture.height() >= needed.height())
            return level;
    }
    return PhotoLevel::full;
}
