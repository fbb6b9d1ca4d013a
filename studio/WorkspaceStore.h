#pragma once

#include "studio/batch/Batch.h"

#include <QCoroTask>

#include <functional>
#include <memory>
#include <optional>

class PhotoCache;
class PreferencesStore;
class WorkspaceEncoder;

// Keeps the batch across restarts: one document under one key of the preferences store.
namespace WorkspaceStore {

// The batch that restore() hands to the session.
using RestoredWorkspace = Batch;

// Stores the batch; one without items removes the stored document. False when it could not be
// stored: the former document is then still whole.
bool save(PreferencesStore& preferences, WorkspaceEncoder& encoder, const Batch& batch);
bool clear(PreferencesStore& preferences);
std::optional<QByteArray> stored(const PreferencesStore& preferences);

// The name of the session that stored the batch last, made up by that session. Of two windows that
// know nothing of each other, the one that finds another name does not overwrite the document.
std::optional<QByteArray> writer(const PreferencesStore& preferences);
bool setWriter(PreferencesStore& preferences, const QByteArray& writer);

// Sets aside a document that could not be read, or only in part, before another one replaces it: a
// drive may only be unplugged. The latest nine are kept; storedAside() and clearAside() take the
// last one.
bool setAside(PreferencesStore& preferences, const QByteArray& document);
bool hasAside(const PreferencesStore& preferences);
std::optional<QByteArray> storedAside(const PreferencesStore& preferences);
bool clearAside(PreferencesStore& preferences);

struct Restored {
    std::optional<RestoredWorkspace> workspace;    // none when no item could be restored
    bool isComplete = true;                        // every item of the document is in it
    bool isDecoded = true;
};

// The batch of a document, with the items whose photos can still be reached. `looked` is called
// with the number of photos looked at so far and of all photos.
QCoro::Task<Restored> restore(QByteArray document, std::shared_ptr<PhotoCache> photos,
                              std::function<void(qsizetype looked, qsizetype total)> looked);

}    // namespace WorkspaceStore
