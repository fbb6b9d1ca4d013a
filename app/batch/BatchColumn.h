#pragma once
#include "app/batch/TileGrid.h"
#include "app/theme/WindowClass.h"

class Badge;
class IconButton;

// The batch at the left of the window: the number of images, their tiles, and buttons to select all
// and to discard.
class BatchColumn : public QWidget {
    Q_OBJECT
public:
    explicit BatchColumn(QWidget* parent = nullptr);

    void setTiles(const QList<Tile>& tiles);
    void setRatio(double ratio);    // width / height of a tile's picture
    void setPicture(QUuid id, const QImage& picture);
    void pictureOutdated(QUuid id);
    void setClass(WindowClass windowClass);
    TileGrid* grid() const { return m_grid; }
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void picturesWanted(const QList<QUuid>& ids, QSize pixels);    // see TileGrid::picturesWanted()
    void clicked(int index, Qt::KeyboardModifiers modifiers);
    void contextMenuRequested(int index, QPoint globalPosition);
    void selectAllRequested();
    void discardRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    bool narrow() const;
    void place();

    TileGrid* m_grid;
    Badge* m_count;
    Badge* m_selectedCount;    // instead of the words in the footer
    IconButton* m_selectAll;
    IconButton* m_discard;
    WindowClass m_class = WindowClass::roomy;
    qsizetype m_selected = -1;    // number of selected tiles; -1 before the first setTiles
};
