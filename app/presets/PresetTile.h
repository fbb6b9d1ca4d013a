#pragma once
#include "app/controls/Button.h"

#include <QImage>
#include <QUuid>

// A template or a text style, as a tile shows it.
struct Preset {
    QUuid id;
    QString name;
    bool chosen = false;    // applying the preset now would change nothing
    bool operator==(const Preset&) const = default;
};

enum class PresetOwner { user, program };

// A preset's picture with its name below. The user's own presets have a menu button.
class PresetTile : public Control {
    Q_OBJECT
public:
    PresetTile(PresetOwner owner, QWidget* parent);

    static int heightFor(int width, double ratio);
    void setPreset(const Preset& preset);
    // `reason`: why the preset cannot be chosen now; empty if it can.
    void setRefusal(const QString& reason);
    const Preset& preset() const { return m_preset; }
    QSize picturePixels() const;
    void setPicture(const QImage& picture);
    void outdatePicture();                // emits pictureWanted() when the tile is painted next
    void setPreviewed(bool previewed);    // whether the canvas shows the preset without applying it
    QRect captionRect() const;
    void showMenu();    // emits menuRequested

Q_SIGNALS:
    void pictureWanted();    // the tile was painted without an up-to-date picture
    void menuRequested(QPoint globalPosition);
    void pointedAt();
    void pointerLeft();

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
    PresetOwner m_owner;
    QImage m_picture;
    bool m_isOutdated = true, m_isAwaited = false;
    bool m_isPreviewed = false;
    IconButton* m_more = nullptr;    // null for the program's presets
};
