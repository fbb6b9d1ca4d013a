#pragma once

#include "canvas/ExportCanvasRenderer.h"

#include <QList>
#include <QStringList>
#include <QUrl>

#include <atomic>
#include <functional>

// Seconds that one export spent.
struct ExportTimes {
    double decode = 0, draw = 0, encode = 0, write = 0;
};

struct ExportedFile {
    QString path;
    qint64 bytes = 0;
    QString error;    // a Spanish sentence; empty when the file was written
    ExportTimes times;

    bool isWritten() const { return error.isEmpty(); }
};

// One item to its file, on the calling thread.
ExportedFile
exportItem(const PublicationItem& item, SocialFormat format, const QString& path,
           const ExportCanvasRenderer::PhotoSource& source = ExportCanvasRenderer::decodedFromFile);

// A photo with its default texts straight to its file: it is decoded once, at the level the file
// needs.
ExportedFile exportPhoto(const QUrl& url, SocialFormat format, const QString& path);

// "<name>-publicacion.png", for the folder that it is to lie in: the name is shortened at a
// character where it would be too long there.
QString exportName(const QUrl& photo, const QString& folder);

// That name in `folder` for each photo. Where it would be the file of another photo of the batch,
// or its output, also by their case, the later one gets "-publicacion-2.png" and so on.
QStringList exportPaths(const QList<QUrl>& photos, const QString& folder);

// The photos without those that carry the name of an output of another one of them, so that a
// folder exported into itself can be exported again.
QList<QUrl> withoutOwnOutputs(const QList<QUrl>& photos);

// Runs `work(index)` for each index below `count` on `jobs` threads, and hands each
// result to `finished` on the calling thread, as they come. Once `stop` is set nothing new is
// begun. Returns when all that began has ended.
void runBatch(qsizetype count, int jobs, const std::atomic_bool& stop,
              const std::function<ExportedFile(qsizetype)>& work,
              const std::function<void(qsizetype, const ExportedFile&)>& finished);
