#pragma once
#include "app/batch/Tile.h"

#include <QAbstractScrollArea>
#include <QHash>
#include <QImage>
#include <QList>
#include <QSet>
#include <QTimer>
#include <QUuid>

// The batch as a list of pictures, of which only the visible ones are drawn and asked for.
class TileGrid : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit TileGrid(QWidget* parent = nullptr);

    // Repaints what differs, and scrolls to the current tile when it is another.
    void setTiles(const QList<Tile>& tiles);
    const QList<Tile>& tiles() const { return m_tiles; }
    void setRatio(double ratio);    // width by height
    // A picture of another size than was wanted is shown scaled. Far from the view none is kept.
    void setPicture(QUuid id, const QImage& picture);
    // Goes on to be shown, and is wanted anew as soon as it is visible.
    void pictureOutdated(QUuid id);
    qsizetype keptPictures() const { return m_pictures.size(); }

    int columns() const;
    int currentIndex() const;
    QRect tileRect(int index) const;      // of the picture, in the viewport
    int tileAt(QPoint position) const;    // in the viewport; -1 beside the tiles
    QList<int> visibleTiles() const;      // by their pictures, in order
    QSize picturePixels() const;          // of each picture that is wanted
    QString accessibleText(int index) const;
    QSize minimumSizeHint() const override { return {80, 80}; }

Q_SIGNALS:
    // The visible tiles without an up-to-date picture. Takes the place of the last such wish.
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
    QHash<QUuid, Picture> m_pictures;
    QTimer m_wishLater;
    QList<QUuid> m_wished;
    QSize m_wishedPixels;
    QTimer m_spin;
    double m_turn = 0;
    int m_hovered = -1;
    bool m_severalSelected = false;
    QWidget* m_ring;    // shown when the keyboard brought the focus
};
