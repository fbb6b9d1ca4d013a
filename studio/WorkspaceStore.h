#pragma once

#include "studio/batch/Batch.h"

#include <QCoroTask>

#include <functional>
#include <memory>
#include <optional>

class PhotoCache;
class PreferencesStore;
class WorkspaceEncoder;

// Stores the batch between runs of the program, as one JSON document in the preferences store.
namespace WorkspaceStore {

using RestoredWorkspace = Batch;

// Stores the batch, or removes the stored document if the batch has no items. Returns false if
// storing fails; the previous document is then unchanged.
bool save(PreferencesStore& preferences, WorkspaceEncoder& encoder, const Batch& batch);
bool clear(PreferencesStore& preferences);
std::optional<QByteArray> stored(const PreferencesStore& preferences);

// The random name of the window that stored the batch last. A window that finds a new name here
// stops storing, so as not to overwrite the batch of the other window.
std::optional<QByteArray> writer(const PreferencesStore& preferences);
bool setWriter(PreferencesStore& preferences, const QByteArray& writer);

// Saves a document that could not be restored completely, before another one replaces it: the
// missing photos may be on an unplugged drive. Only the latest nine documents are kept.
// storedAside() returns and clearAside() removes the last one.
bool setAside(PreferencesStore& preferences, const QByteArray& document);
bool hasAside(const PreferencesStore& preferences);
std::optional<QByteArray> storedAside(const PreferencesStore& preferences);
bool clearAside(PreferencesStore& preferences);

struct Restored {
    std::optional<RestoredWorkspace> workspace;    // empty when no item could be restored
    bool isComplete = true;                        // everything in the document was restored
    bool isDecoded = true;
};

// Restores the batch of a document, with the items whose photos can still be read. Calls `looked`,
// which may be empty, with the number of photos checked so far and the number of all photos.
QCoro::Task<Restored> restore(QByteArray document, std::shared_ptr<PhotoCache> photos,
                              std::function<void(qsizetype looked, qsizetype total)> looked);

}    // namespace WorkspaceStore
