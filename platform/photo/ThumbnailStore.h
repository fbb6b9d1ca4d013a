#pragma once

#include "platform/photo/PhotoDecoder.h"

#include <atomic>
#include <limits>

// Stores thumbnails on disk: one file per photo, which also contains the photo's PhotoInfo and
// digest. A damaged file counts as missing. Safe from any thread.
class ThumbnailStore {
public:
    explicit ThumbnailStore(QString folder, qint64 budget = 200'000'000);

    // The path of the thumbnail for the photo file `photo`. It depends on the size, time and inode
    // of that file, so a changed photo has another thumbnail. Empty if the photo does not exist.
    QString fileFor(const QString& photo) const;
    std::optional<AcceptedPhoto> load(const QString& file) const;
    // Reads only the PhotoInfo and the digest, which takes a fraction of the time.
    std::optional<AcceptedPhoto> loadFacts(const QString& file) const;
    // Without a thumbnail, only the facts are written: load() then finds nothing.
    void save(const QString& file, const AcceptedPhoto& photo);

private:
    void write(const QString& file, QByteArray bytes);

    QString m_folder;
    qint64 m_budget;    // bytes
    // Starts high, so that the first save() of a run starts a pruning.
    std::atomic<qint64> m_writtenSincePruning = std::numeric_limits<qint64>::max() / 2;
};

// Removes the oldest thumbnails until those in the folder take at most `budget` bytes.
void pruneThumbnails(const QString& folder, qint64 budget);
