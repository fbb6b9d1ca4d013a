#pragma once

#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

// A batch of publications and the selection in it: everything that undo restores and that is stored
// between runs.
//
// Invariant: without items, `selectedIndex` is 0 and nothing is selected. Otherwise `selectedIndex`
// is the index of an item, `selectedItemIDs` holds only ids of items, and `selectedLayerID`, unless
// null, is a layer of the current item.
struct Batch {
    SocialFormat format = SocialFormat::carouselPortrait;
    QString objective;    // of the campaign, as the user typed it
    PublicationItems items;
    int selectedIndex = 0;    // index of the current item, which the canvas shows
    int selectionAnchorIndex = 0;
    QSet<QUuid> selectedItemIDs;
    QUuid selectedLayerID;    // null: no layer

    const PublicationItem* currentItem() const
    {
        return selectedIndex < items.size() ? &items[selectedIndex] : nullptr;
    }

    bool operator==(const Batch&) const = default;
};
