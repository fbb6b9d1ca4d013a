#pragma once

#include "platform/photo/PhotoDecoder.h"

#include <atomic>
#include <limits>

// Thumbnails on disk: one small picture per photo, with the photo's facts inside its file. A
// damaged file counts as absent and is written again. Safe from any thread.
class ThumbnailStore {
public:
    explicit ThumbnailStore(QString folder, qint64 budget = 200'000'000);

    // The thumbnail's file for a photo as it lies on disk now: its name changes with the photo's
    // size, time and inode. Empty when the photo is gone.
    QString fileFor(const QString& photo) const;
    std::optional<AcceptedPhoto> load(const QString& file) const;
    // Reads the file without decoding its picture, in a fraction of the time.
    std::optional<AcceptedPhoto> loadFacts(const QString& file) const;
    // Without a thumbnail, only the facts are written: load() then finds nothing.
    void save(const QString& file, const AcceptedPhoto& photo);

private:
    void write(const QString& file, QByteArray bytes);

    QString m_folder;
    qint64 m_budget;    // bytes
    // Starts high, so that the first write of a run prunes what earlier runs left.
    std::atomic<qint64> m_writtenSincePruning = std::numeric_limits<qint64>::max() / 2;
};

// Removes the oldest thumbnails until the folder holds at most `budget` bytes.
void pruneThumbnails(const QString& folder, qint64 budget);
