#pragma once

#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

// The batch and what is selected in it: all that undo and the saved workspace keep.
//
// Invariant of every operation: with no items the index is 0 and nothing is selected; otherwise
// `selectedIndex` is that of an item, `selectedItemIDs` holds only ids of items, and
// `selectedLayerID`, unless null, is a layer of the current item.
struct Batch {
    SocialFormat format = SocialFormat::carouselPortrait;
    QString objective;    // of the campaign, as the user typed it
    PublicationItems items;
    int selectedIndex = 0;    // the current item, the one on the canvas
    int selectionAnchorIndex = 0;
    QSet<QUuid> selectedItemIDs;
    QUuid selectedLayerID;    // null: none

    const PublicationItem* currentItem() const
    {
        return selectedIndex < items.size() ? &items[selectedIndex] : nullptr;
    }

    bool operator==(const Batch&) const = default;
};
