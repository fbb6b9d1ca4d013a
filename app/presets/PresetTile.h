#pragma once
#include "app/controls/Button.h"

#include <QImage>
#include <QUuid>

// Something by name that can be laid over images.
struct Preset {
    QUuid id;
    QString name;
    bool chosen = false;    // the current image is as it would make it
    bool operator==(const Preset&) const = default;
};

enum class PresetOwner { user, program };

// A picture with its name below. Those of the user have a menu of their own.
class PresetTile : public Control {
    Q_OBJECT
public:
    PresetTile(PresetOwner owner, QWidget* parent);

    static int heightFor(int width, double ratio);
    void setPreset(const Preset& preset);
    // Why it cannot be chosen now; empty when it can.
    void setRefusal(const QString& reason);
    const Preset& preset() const { return m_preset; }
    QSize picturePixels() const;
    void setPicture(const QImage& picture);
    void outdatePicture();                // another one is wanted, when it is seen
    void setPreviewed(bool previewed);    // the canvas shows it, though it is not applied
    QRect captionRect() const;
    void showMenu();    // asks for it

Q_SIGNALS:
    void pictureWanted();    // it is seen without the right one
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
    IconButton* m_more = nullptr;    // of the user's own
};
