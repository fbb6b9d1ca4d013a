#pragma once
#include <QString>
#include <QStringList>
#include <QUuid>

// `missing`: the photo can no longer be read.
enum class TileState { normal, generating, queued, generated, missing };

struct Tile {
    QUuid id = {};
    QString name = {};
    bool current = false, selected = false;
    TileState state = TileState::normal;
    bool paid = false;
    QStringList warnings = {};    // sentences about problems of the image's texts
    bool operator==(const Tile&) const = default;
};
