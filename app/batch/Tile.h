#pragma once
#include <QString>
#include <QStringList>
#include <QUuid>

// What a run of generation does with the image, or `missing`: the photo can no longer be read.
// `waiting`: texts have been generated and are not applied yet.
enum class TileState { normal, generating, queued, generated, waiting, unanswered, missing };

struct Tile {
    QUuid id = {};
    QString name = {};
    bool current = false, selected = false;
    TileState state = TileState::normal;
    bool paid = false;
    QString answer = {};          // of an unanswered tile: a sentence that says why
    QStringList warnings = {};    // sentences about problems of the image's texts
    bool operator==(const Tile&) const = default;
};
