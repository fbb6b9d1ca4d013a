#pragma once

#include <QByteArray>

// Number of pixels of the largest picture that the decoder configurations (hvcC) of a HEIC file
// announce. The decoder allocates that many, even if the container announces a smaller size. Does
// not read parameter sets among the compressed data. Returns the largest qint64 if there are more
// configurations than any photo has.
qint64 largestCodedPicture(const QByteArray& heic);
