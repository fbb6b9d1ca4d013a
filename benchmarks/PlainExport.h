#pragma once

#include "model/SocialFormat.h"

#include <QString>
#include <QUrl>

#include <functional>

// The reference that the product's exports are compared with: decode, draw, encode and write on
// plain threads, without an account, a staging folder or an event loop.

// Seconds that one export spent.
struct ExportTimes {
    double decode = 0, draw = 0, encode = 0, write = 0;
};

struct PlainFile {
    qint64 bytes = 0;    // 0: it could not be made
    ExportTimes times;
};

// A photo with its default texts straight to its file: it is decoded once, at the level the file
// needs.
PlainFile exportPlainly(const QUrl& photo, SocialFormat format, const QString& path);

// Runs `work` for each index below `count` on `jobs` threads. Returns when all have ended.
void runOnThreads(qsizetype count, int jobs, const std::function<void(qsizetype)>& work);
