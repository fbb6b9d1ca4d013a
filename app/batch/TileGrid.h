#pragma once
#include "app/batch/Tile.h"
#include "app/theme/WindowClass.h"

#include <QAbstractScrollArea>
#include <QHash>
#include <QImage>
#include <QList>
#include <QSet>
#include <QTimer>
#include <QUuid>

// Shows the batch as a grid of pictures. Paints only the visible tiles, and asks for pictures of no
// others.
class TileGrid : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit TileGrid(QWidget* parent = nullptr);

    // Repaints the tiles that differ, and scrolls to the current tile if it is another one than
    // before.
    void setTiles(const QList<Tile>& tiles);
    const QList<Tile>& tiles() const { return m_tiles; }
    void setRatio(double ratio);    // width / height of a tile's picture
    void setClass(WindowClass windowClass);
    // Shows `picture` scaled if its size is not picturePixels(). Drops pictures far outside the
    // view.
    void setPicture(QUuid id, const QImage& picture);
    // Goes on showing the outdated picture, and asks for a new one as soon as the tile is visible.
    void pictureOutdated(QUuid id);
    qsizetype keptPictures() const { return m_pictures.size(); }

    int columns() const;
    int currentIndex() const;
    QRect tileRect(int index) const;      // of the tile's picture, in viewport coordinates
    int tileAt(QPoint position) const;    // index at a point of the viewport; -1 beside the tiles
    QList<int> visibleTiles() const;      // indices of tiles whose picture is in view, ascending
    QSize picturePixels() const;          // size of a tile's picture in device pixels
    QString accessibleText(int index) const;
    QSize minimumSizeHint() const override { return {80, 80}; }

Q_SIGNALS:
    // `ids`: the visible tiles without an up-to-date picture. Replaces the previous request.
    void picturesWanted(const QList<QUuid>& ids, QSize pixels);
    void clicked(int index, Qt::KeyboardModifiers modifiers);
    void contextMenuRequested(int index, QPoint globalPosition);

protected:
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    struct Picture {
        QImage image;
        bool outdated = false;
    };
    QSize tileSize() const;
    int rowPitch() const;
    void fitScrollBar();
    void showCurrent();
    void wishLater();
    void wish();
    void forgetDistant();
    void setHovered(int index);
    void updateTile(int index);
    void spin();
    void paintTile(QPainter& painter, int index) const;
    void paintEmptyTiles(QPainter& painter) const;

    QList<Tile> m_tiles;
    double m_ratio = 0.8;
    int m_leftPadding;    // pixels beside the tiles
    QHash<QUuid, Picture> m_pictures;
    QTimer m_wishLater;
    QList<QUuid> m_wished;
    QSize m_wishedPixels;
    QTimer m_spin;
    double m_turn = 0;
    int m_hovered = -1;
    bool m_severalSelected = false;
    QWidget* m_ring;    // the focus ring; visible if the focus came by keyboard
};
