#pragma once

#include "model/PublicationItem.h"

#include <QSet>

#include <optional>

namespace SocialPublishing {

// The items to publish, in their order in the batch: the selected ones, or the one at
// `selectedIndex` when none is selected; at most `limit` of them.
QList<PublicationItem> selectedItems(const PublicationItems& items,
                                     const QSet<QUuid>& selectedItemIDs, int selectedIndex,
                                     std::optional<int> limit = {});

// The most images that one post may have on the network of this name, in any case.
int maxImageCount(const QString& network);

}    // namespace SocialPublishing
