#pragma once

#include "account/CreditJournal.h"
#include "model/CopyGenerationMode.h"
#include "model/GeneratedCopy.h"
#include "model/SocialFormat.h"

class PreferencesStore;

// Copies that commands have had written, by what they are for, so that a command that is started
// again neither pays for them nor waits for them once more. They are kept for thirty days.

struct CopyRequest {
    CopyGenerationMode mode = CopyGenerationMode::local;
    QByteArray photo;    // digest of its content
    QString objective;
    SocialFormat format = SocialFormat::storyReel;
};

std::optional<GeneratedCopy> storedCopy(const PreferencesStore& preferences,
                                        const CopyRequest& request);

// Stores the copy and calls `strike`, if any, in one transaction. Returns whether it was stored.
bool storeCopy(PreferencesStore& preferences, const CopyRequest& request, const GeneratedCopy& copy,
               const Strike& strike = {});

// What the rows of a sheet are for. The photo in `request` is left empty.
struct SheetOrder {
    QString file;    // exists
    CopyRequest request;
};

// Whether the sheet was last written for this order. Another order's rows must not stay in it.
bool isLastOrder(const PreferencesStore& preferences, const SheetOrder& order);
// Forgets which order the sheet was written for. Returns whether that succeeded.
bool forgetLastOrder(PreferencesStore& preferences, const SheetOrder& order);
// Without success, the next command writes the sheet anew.
void keepLastOrder(PreferencesStore& preferences, const SheetOrder& order);

// Removes what was stored more than thirty days ago.
void removeOldCopies(PreferencesStore& preferences);
