#pragma once
#include <QList>
#include <QString>
#include <QUuid>

// A design, as the gallery shows it. The gallery asks for its picture, and whether it is applied,
// only while its tile is visible.
struct GalleryTile {
    QUuid id = {};
    QString name = {};
    bool isFavourite = false;
    bool canRename = false;      // in place
    bool canRemove = false;      // with the key Delete
    QString missingFont = {};    // a family that is not installed; empty if none is missing
    bool operator==(const GalleryTile&) const = default;
};

// `recent` shows small tiles in one row, without names.
enum class GalleryLook { usual, recent };

// Designs under a heading that folds them.
struct GallerySection {
    QString key = {};    // identifies the section
    QString title = {};
    GalleryLook look = GalleryLook::usual;
    bool isFolded = false;
    QList<GalleryTile> tiles = {};
    QString note = {};        // shown instead of tiles if there are none
    QString badge = {};       // a word at the right of the heading
    QString state = {};       // small text at the right of the heading
    QString stateTip = {};    // the whole story behind `state`; may be empty
    bool canRefresh = false;
    bool hasMenu = false;
    bool offersRandom = false;    // a link that tries another design
    bool operator==(const GallerySection&) const = default;
};
