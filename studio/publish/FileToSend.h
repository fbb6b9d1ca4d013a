#pragma once

#include <QString>

// The file to send for a picture in `file`. If that has more than `mostBytes` bytes, it is a new
// file beside it, with the same pixels in fewer bytes if possible. Takes up to some seconds: call
// it on a worker thread.
QString fileToSend(const QString& file, qint64 mostBytes);
