#pragma once
#include "app/controls/Button.h"

#include <QImage>
#include <QUuid>

class LineField;

// Something by name that can be laid over images.
struct Preset {
    QUuid id;
    QString name;
    bool chosen = false;    // the current image is as it would make it
    bool operator==(const Preset&) const = default;
};

enum class PresetOwner { user, program };

// A picture with its name below. Those of the user have a menu of their own and are renamed in
// place.
class PresetTile : public Control {
    Q_OBJECT
public:
    PresetTile(PresetOwner owner, QWidget* parent);

    static int heightFor(int width, double ratio);
    void setPreset(const Preset& preset);
    const Preset& preset() const { return m_preset; }
    void setRatio(double ratio);    // of the picture, width to height
    QSize picturePixels() const;
    void setPicture(const QImage& picture);
    void outdatePicture();    // another one is wanted, when it is seen
    void rename();
    void showMenu();    // asks for it

Q_SIGNALS:
    void pictureWanted();    // it is seen without the right one
    void menuRequested(QPoint globalPosition);
    void renamed(const QString& name);
    void pointedAt();
    void pointerLeft();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    QRect pictureRect() const;
    void endRename();

    Preset m_preset;
    PresetOwner m_owner;
    double m_ratio = 1;
    QImage m_picture;
    bool m_isOutdated = true, m_isAwaited = false;
    IconButton* m_more = nullptr;
    LineField* m_name = nullptr;    // while it is renamed
};
