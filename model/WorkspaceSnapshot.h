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

// A batch as it is stored. Photos are only addresses; nothing is checked against the files yet.

struct PublicationItemSnapshot {
    QUuid id;
    QUrl url;
    std::optional<QByteArray> bookmarkData;    // see ImageAccess
    GeneratedCopy analysis;
    QList<TextLayer> layers;    // any number of layers of any slot
    QList<ShapeLayer> shapeLayers;
    ImagePlacement placement;
    QSet<QString> paidRenderFingerprints;
    qsizetype unreadableLayers = 0;    // not counting layers whose slot is unknown here

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
    qsizetype unreadableParts = 0;    // dropped items, plus the unreadableLayers of the others

    bool operator==(const WorkspaceSnapshot&) const = default;
};
