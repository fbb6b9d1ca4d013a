#pragma once
#include "app/presets/PresetTile.h"

#include <QPointer>
#include <QTimer>

class LineField;

enum class RenameEnd { kept, abandoned };

// Presets in rows. One stop of the keyboard: arrows go from one to the next, Enter chooses, the
// menu key opens the menu.
class PresetGrid : public QWidget {
    Q_OBJECT
public:
    PresetGrid(const QString& name, PresetOwner owner, QWidget* parent = nullptr);

    // `ratio`: of a picture, width to height.
    void setShape(int columns, double ratio);
    void setPresets(const QList<Preset>& presets);
    const QList<Preset>& presets() const { return m_presets; }
    // The one that is laid over the image to be looked at; null none.
    void setPreviewed(QUuid id);
    // Why none can be chosen now; empty when they can.
    void setRefusal(const QString& reason);
    // In pixels of the screen.
    QSize picturePixels() const;
    void setPicture(QUuid id, const QImage& picture);
    // Each is wanted anew once it is seen.
    void outdatePicture(QUuid id);
    void outdatePictures();
    // Its name is typed in place.
    void rename(QUuid id);
    PresetOwner owner() const { return m_owner; }
    PresetTile* tile(QUuid id) const;

Q_SIGNALS:
    void chosen(QUuid id);
    void previewWanted(QUuid id);    // the pointer or the keyboard rests on it
    void previewEnded();
    void pictureWanted(QUuid id);
    void menuRequested(QUuid id, QPoint globalPosition);
    void renamed(QUuid id, const QString& name);
    void renameEnded(QUuid id, RenameEnd end);
    void removeRequested(QUuid id);
    void visibleAreaWanted(QWidget* tile);    // the keyboard is on it, or its name is typed

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    PresetTile* newTile();
    void place();
    void rest(QUuid id);
    void leave();
    void placeName();
    void endRename(RenameEnd end);
    void mark(int index);
    void unmark();
    void bringIntoView(QUuid id);
    void tellMarked();

    QString m_title;
    PresetOwner m_owner;
    int m_columns = 2;
    double m_ratio = 1;
    QList<Preset> m_presets;
    QList<PresetTile*> m_tiles;    // in the order of the presets
    int m_marked = 0;              // where the keyboard is
    QString m_refusal;
    LineField* m_name = nullptr;    // while one is renamed
    QUuid m_renamed;
    QPointer<QWidget> m_focusBefore;    // a name took it
    QTimer m_resting;
    QUuid m_restedOn, m_previewed;
};
