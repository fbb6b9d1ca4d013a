#pragma once

#include "platform/PhotoDecoder.h"

#include <atomic>
#include <limits>

// Thumbnails on disk, one small picture a photo with the facts of the photo inside it. A damaged
// file counts as absent and is written again. Safe from any thread.
class ThumbnailStore {
public:
    explicit ThumbnailStore(QString folder, qint64 budget = 200'000'000);

    // The file for a photo as it lies on disk now: another size, time or inode is another name.
    // Empty when the photo is gone.
    QString fileFor(const QString& photo) const;
    std::optional<AcceptedPhoto> load(const QString& file) const;
    // The same without the picture, for a fraction of the time.
    std::optional<AcceptedPhoto> loadFacts(const QString& file) const;
    void save(const QString& file, const AcceptedPhoto& photo);

private:
    QString m_folder;
    qint64 m_budget;    // bytes
    // Full at the start: the first write of a run prunes what earlier runs left.
    std::atomic<qint64> m_writtenSincePruning = std::numeric_limits<qint64>::max() / 2;
};

// Removes the oldest thumbnails until the folder holds at most `budget` bytes.
void pruneThumbnails(const QString& folder, qint64 budget);
