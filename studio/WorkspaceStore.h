#pragma once

#include "studio/batch/Batch.h"

#include <QCoroTask>

#include <functional>
#include <memory>
#include <optional>

class PhotoCache;
class PreferencesStore;
class WorkspaceEncoder;

// The batch across restarts: one document under one key of the preferences store.
namespace WorkspaceStore {

// What a restore hands to the session.
using RestoredWorkspace = Batch;

// A batch without items leaves nothing behind. False when it could not be stored; the last one
// stored is then still whole.
bool save(PreferencesStore& preferences, WorkspaceEncoder& encoder, const Batch& batch);
bool clear(PreferencesStore& preferences);
std::optional<QByteArray> stored(const PreferencesStore& preferences);

// Who stored the batch last, as a name that it gave itself: of two windows that know nothing of
// each other, the one that finds another's name leaves what is stored alone.
std::optional<QByteArray> writer(const PreferencesStore& preferences);
bool setWriter(PreferencesStore& preferences, const QByteArray& writer);

// Another place for a document that could not be read, or only in part, before another takes its
// place: a drive may only be unplugged. What lies there already stays, the latest nine of it; the
// last one is asked for first.
bool setAside(PreferencesStore& preferences, const QByteArray& document);
bool hasAside(const PreferencesStore& preferences);
std::optional<QByteArray> storedAside(const PreferencesStore& preferences);
bool clearAside(PreferencesStore& preferences);

struct Restored {
    std::optional<RestoredWorkspace> workspace;    // none when no item is left
    bool isComplete = true;                        // every item of the document is in it
    bool isDecoded = true;
};

// The batch of a document, with the photos that can still be reached. `looked` hears how many of
// how many photos were looked at.
QCoro::Task<Restored> restore(QByteArray document, std::shared_ptr<PhotoCache> photos,
                              std::function<void(qsizetype looked, qsizetype total)> looked);

}    // namespace WorkspaceStore
