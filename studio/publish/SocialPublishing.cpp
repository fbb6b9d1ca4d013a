#include "studio/publish/SocialPublishing.h"

#include "model/SocialPublishNetwork.h"

QList<PublicationItem> SocialPublishing::selectedItems(const PublicationItems& items,
                                                       const QSet<QUuid>& selectedItemIDs,
                                                       int selectedIndex, std::optional<int> limit)
{
    QList<PublicationItem> chosen;
    for (const PublicationItem& item : items) {
        if (selectedItemIDs.contains(item.id))
            chosen.append(item);
    }
    if (chosen.isEmpty() && selectedIndex >= 0 && selectedIndex < items.size())
        chosen.append(items[selectedIndex]);
    return limit ? chosen.first(std::clamp<qsizetype>(*limit, 0, chosen.size())) : chosen;
}

int SocialPublishing::maxImageCount(const QString& network)
{
    constexpr int ofAnyOther = 25;
    const auto known = fromRawValue<SocialPublishNetwork>(network.toLower());
    return known ? row(*known).mostImages : ofAnyOther;
}
