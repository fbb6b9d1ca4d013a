#pragma once

#include "model/SocialFormat.h"

#include <QString>
#include <QUrl>

#include <functional>

// Reference for the program's exports: decodes, draws, encodes and writes on plain threads, without
// account, staging folder or event loop.

// Seconds that one export spent.
struct ExportTimes {
    double decode = 0, draw = 0, encode = 0, write = 0;
};

struct PlainFile {
    qint64 bytes = 0;    // 0: it could not be made
    ExportTimes times;
};

// Exports a photo with its default texts straight to `path`. Decodes it once, at the level that the
// export needs.
PlainFile exportPlainly(const QUrl& photo, SocialFormat format, const QString& path);

// Runs `work` for each index below `count` on `jobs` threads. Returns when all have ended.
void runOnThreads(qsizetype count, int jobs, const std::function<void(qsizetype)>& work);
