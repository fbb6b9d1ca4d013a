#pragma once
#include "app/batch/TileGrid.h"

class Badge;
class IconButton;

// The batch: how many, which, and what can be done with the selection as a whole.
class BatchColumn : public QWidget {
    Q_OBJECT
public:
    explicit BatchColumn(QWidget* parent = nullptr);

    void setTiles(const QList<Tile>& tiles);
    void setRatio(double ratio);    // width by height
    void setPicture(QUuid id, const QImage& picture);
    void pictureOutdated(QUuid id);
    TileGrid* grid() const { return m_grid; }
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void picturesWanted(const QList<QUuid>& ids, QSize pixels);    // see TileGrid
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
    IconButton* m_selectAll;
    IconButton* m_discard;
    qsizetype m_selected = -1;    // none shown yet
};
