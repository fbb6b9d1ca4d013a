#pragma once
#include "app/controls/Button.h"

#include <QImage>
#include <QUuid>

// A saved text style, as a tile shows it.
struct Preset {
    QUuid id;
    QString name;
    bool chosen = false;    // applying the preset now would change nothing
    bool operator==(const Preset&) const = default;
};

// A preset's picture with its name and a menu button below.
class PresetTile : public Control {
    Q_OBJECT
public:
    explicit PresetTile(QWidget* parent);

    static int heightFor(int width, double ratio);
    void setPreset(const Preset& preset);
    // `reason`: why the preset cannot be chosen now; empty if it can.
    void setRefusal(const QString& reason);
    const Preset& preset() const { return m_preset; }
    QSize picturePixels() const;
    void setPicture(const QImage& picture);
    void outdatePicture();    // emits pictureWanted() when the tile is painted next
    QRect captionRect() const;
    void showMenu();    // emits menuRequested

Q_SIGNALS:
    void pictureWanted();    // the tile was painted without an up-to-date picture
    void menuRequested(QPoint globalPosition);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    QRect pictureRect() const;
    void askForMenu(QPoint globalPosition);
    void showMore();
    bool hasTick() const;
    double captionRoom() const;
    void nameParts();

    Preset m_preset;
    QString m_refusal;
    QImage m_picture;
    bool m_isOutdated = true, m_isAwaited = false;
    IconButton* m_more;
};
