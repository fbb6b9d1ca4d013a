#pragma once

#include "model/GeneratedCopy.h"
#include "model/ImagePlacement.h"
#include "model/ShapeLayer.h"
#include "model/SocialFormat.h"
#include "model/TextLayer.h"

#include <QList>
#include <QSet>
#include <QUrl>

#include <optional>

// A batch as it is stored. Photos are only URLs; whether their files still exist has not been
// checked.

struct PublicationItemSnapshot {
    QUuid id;
    QUrl url;
    std::optional<QByteArray> bookmarkData;    // see ImageAccess
    GeneratedCopy analysis;
    bool isCaptionOwn = false;
    QList<TextLayer> layers;    // a slot may occur several times or not at all
    QList<ShapeLayer> shapeLayers;
    ImagePlacement placement;
    QSet<QString> paidRenderFingerprints;
    qsizetype unreadableLayers = 0;    // does not count layers of an unknown slot

    bool operator==(const PublicationItemSnapshot&) const = default;
};

struct WorkspaceSnapshot {
    SocialFormat format = SocialFormat::storyReel;    // also for an unknown word in the file
    QString objective;
    int selectedIndex = 0;
    int selectionAnchorIndex = 0;
    QSet<QUuid> selectedItemIDs;
    std::optional<QUuid> selectedLayerID;
    QList<PublicationItemSnapshot> items;
    qsizetype unreadableParts = 0;    // unreadable items, plus unreadableLayers of the others

    bool operator==(const WorkspaceSnapshot&) const = default;
};
