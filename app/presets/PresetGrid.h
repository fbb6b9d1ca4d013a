#pragma once
#include "app/presets/PresetTile.h"

#include <QPointer>

class LineField;

enum class RenameEnd { kept, abandoned };

// A grid of preset tiles. Tab stops at the grid once; arrow keys go from tile to tile, Enter
// chooses a preset, the menu key opens its menu.
class PresetGrid : public QWidget {
    Q_OBJECT
public:
    explicit PresetGrid(const QString& name, QWidget* parent = nullptr);

    // `ratio`: width / height of the tiles' pictures.
    void setShape(int columns, double ratio);
    void setPresets(const QList<Preset>& presets);
    const QList<Preset>& presets() const { return m_presets; }
    // `reason`: why no preset can be chosen now; empty if presets can be chosen.
    void setRefusal(const QString& reason);
    // Size of a tile's picture in device pixels.
    QSize picturePixels() const;
    void setPicture(QUuid id, const QImage& picture);
    // Marks pictures as outdated. A tile shows its outdated picture until setPicture(); when the
    // tile is painted next, pictureWanted() is emitted.
    void outdatePicture(QUuid id);
    void outdatePictures();
    // Opens a field over the preset's caption, in which the user types a name.
    void rename(QUuid id);
    PresetTile* tile(QUuid id) const;

Q_SIGNALS:
    void chosen(QUuid id);
    void pictureWanted(QUuid id);
    void menuRequested(QUuid id, QPoint globalPosition);
    void renamed(QUuid id, const QString& name);
    void renameEnded(QUuid id, RenameEnd end);
    void removeRequested(QUuid id);
    void scrollToRequested(QWidget* tile);    // scrolling should make `tile` visible

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    PresetTile* newTile();
    void place();
    void placeName();
    void endRename(RenameEnd end);
    void mark(int index);
    void unmark();
    void bringIntoView(QUuid id);
    void tellMarked();

    QString m_title;
    int m_columns = 2;
    double m_ratio = 1;
    QList<Preset> m_presets;
    QList<PresetTile*> m_tiles;    // in the order of the presets
    int m_marked = 0;              // index of the tile that the keyboard is on
    QString m_refusal;
    LineField* m_name = nullptr;    // null unless a preset is being renamed
    QUuid m_renamed;
    QPointer<QWidget> m_focusBefore;    // had the focus before m_name took it
};
