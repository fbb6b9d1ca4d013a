#pragma once

#include "model/SocialFormat.h"

#include <QString>
#include <QUrl>

#include <functional>

// A reference to compare the program's exports with: decodes, draws, encodes and writes on plain
// threads, without account, staging folder or event loop.

// Time that one export spent in each stage, in seconds.
struct ExportTimes {
    double decode = 0, draw = 0, encode = 0, write = 0;
};

struct PlainFile {
    qint64 bytes = 0;    // 0 if the file could not be made
    ExportTimes times;
};

// Exports a photo with its default texts directly to `path`. Decodes the photo once, at the level
// that the export needs.
PlainFile exportPlainly(const QUrl& photo, SocialFormat format, const QString& path);

// Calls `work` for each index below `count` on `jobs` threads. Returns when all calls have ended.
void runOnThreads(qsizetype count, int jobs, const std::function<void(qsizetype)>& work);
