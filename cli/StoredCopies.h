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

void removeOldCopies(PreferencesStore& preferences);
