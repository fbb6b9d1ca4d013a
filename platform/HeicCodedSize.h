#pragma once

#include <QByteArray>

// Pixels of the largest picture that the decoder configurations of a HEIC file announce; the
// container may say less, and the decoder allocates what these say. Parameters repeated among the
// compressed data are not seen. Endless for more configurations than any photo has.
qint64 largestCodedPicture(const QByteArray& heic);
