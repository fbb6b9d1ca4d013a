#pragma once

#include "account/CreditJournal.h"
#include "studio/batch/Batch.h"
#include "studio/copy/CopyMerge.h"

#include <QHash>

class PreferencesStore;

// Copies that were paid for and wait to be applied, by item, in the preferences. What a crash
// leaves, step by step:
// - until the copy is here: an open entry of the journal. The next run refunds it; no texts.
// - from the transaction that strikes the entry: a waiting copy. The next run applies it when it
//   restores the batch; it is never paid again.
// - from the save of the batch that has its texts, whose transaction removes the waiting copy: the
//   texts in the workspace.
// If that first transaction fails, on a full disk for instance, the next save that succeeds stores
// the copy and strikes the entry; a crash before is one of the first kind.

struct PaidCopy {
    GeneratedCopy copy;
    CopyTexts asked;    // the item's texts when it was asked for
    std::optional<CopySlot> only;
};

class PaidCopies {
public:
    // What is known of the items that are not in a batch.
    enum class Others { areGone, mayReturn };

    // `preferences` outlive it.
    explicit PaidCopies(PreferencesStore& preferences) : m_preferences(preferences) {}

    // Makes the function that stores the copy in place of an earlier one of the item and calls
    // `strike`, in the caller's transaction. A failed save calls such functions late: those made
    // before the latest keeping() of an item, by removal() too, no longer change its stored copy.
    Strike keeping(QUuid item, const PaidCopy& copy, const Strike& strike);
    // Makes the function that removes the waiting copies of the items.
    Strike removal(const QList<QUuid>& items) const;
    // Calls `work` in a transaction of its own.
    bool store(const Strike& work) const;

    // Applies the copies that wait for items of `batch`, and returns those items.
    QList<QUuid> applyTo(Batch& batch) const;
    QList<QUuid> items() const;
    bool isStored(QUuid item) const;
    // Removes the copies of items that are not in `batch`. Those of items that may return are kept
    // for thirty days.
    void removeOthers(const Batch& batch, Others others);

private:
    PreferencesStore& m_preferences;
    QHash<QUuid, int> m_kept;    // how often keeping() was called, by item
};
