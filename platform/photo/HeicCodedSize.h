#pragma once

#include <QByteArray>

// Pixels of the largest picture that the decoder configurations (hvcC) of a HEIC file announce. The
// decoder allocates that many, even where the container gives a smaller size. Parameter sets among
// the compressed data are not read. The largest qint64 for more configurations than any photo has.
qint64 largestCodedPicture(const QByteArray& heic);
