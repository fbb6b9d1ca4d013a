#pragma once
#include "app/presets/GalleryPainting.h"
#include "app/theme/WindowClass.h"

#include <QAbstractScrollArea>
#include <QCache>
#include <QHash>
#include <QImage>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <optional>

class LineField;

enum class RenameEnd;

// Shows designs in sections that fold. Paints only the visible tiles, and asks for pictures of no
// others. A single Tab stop: the arrow keys go from part to part, Enter applies a design or folds a
// section, Space shows a large preview, the menu key opens the menu of the part.
class TemplateGallery : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit TemplateGallery(QWidget* parent = nullptr);

    // The part under the pointer, or else the one that the keyboard is on, stays where it is.
    void setSections(const QList<GallerySection>& sections);
    const QList<GallerySection>& sections() const { return m_sections; }
    void setRatio(double ratio);    // width / height of the pictures
    void setClass(WindowClass windowClass);
    // `isApplied` tells whether applying a design would change nothing. It is asked once for each
    // visible design, and again after forgetApplied().
    void setAppliedTest(const std::function<bool(QUuid)>& isApplied);
    void forgetApplied();
    // Marks the design that the canvas previews; null: none.
    void setPreviewed(QUuid id);

    // Size of a picture in device pixels.
    QSize picturePixels() const;
    // A null picture could not be drawn: the tile keeps the old one.
    void setPicture(QUuid id, const QImage& picture);
    QImage picture(QUuid id) const;
    // The outdated pictures are shown until setPicture().
    void outdatePicture(QUuid id);
    void outdatePictures();
    qsizetype keptPictures() const { return m_pictures.size(); }

    // Opens a field over the name of a design, in which the user types another one.
    void rename(QUuid id);
    void scrollToTop();

    const GalleryLayout& layoutOfParts() const { return m_layout; }
    int partOf(QUuid id) const;           // index of its tile, not among the recent ones; -1: none
    int partAt(QPoint position) const;    // at a point of the viewport; -1 beside the parts
    QRect partRect(int part) const;       // with the caption, in viewport coordinates
    QList<int> visibleTiles() const;      // indices of parts
    int marked() const { return m_marked; }
    const GalleryTile* tile(int part) const;    // null for a part that is no tile
    const GalleryTile* markedTile() const { return tile(m_marked); }
    bool isApplied(QUuid id) const;
    QString accessibleText(int part) const;
    void activate(int part);    // as a press does
    void showMenu(int part);
    QSize minimumSizeHint() const override { return {80, 80}; }

Q_SIGNALS:
    // `ids`: the visible designs without an up-to-date picture. Replaces the previous request.
    void picturesWanted(const QList<QUuid>& ids);
    void chosen(QUuid id);
    void previewWanted(QUuid id);         // the pointer or the keyboard has stayed on its tile
    void largePreviewWanted(QUuid id);    // the pointer has stayed longer
    void previewEnded();
    void largePreviewToggled(QUuid id);    // by Space
    // `at`: global; the tile, or a point without a size where the pointer was pressed.
    void menuRequested(QUuid id, const QRect& at);
    void sectionMenuRequested(const QString& key, QPoint globalPosition);
    void favouriteToggled(QUuid id);
    void foldRequested(const QString& key, bool folded);
    void refreshRequested(const QString& key);
    void randomRequested();
    void renamed(QUuid id, const QString& name);
    void renameEnded(QUuid id, RenameEnd end);
    void removeRequested(QUuid id);

protected:
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    struct Picture {
        QImage image;          // null: could not be drawn
        int generation = 0;    // less than m_generation: outdated
    };
    // Identifies a part across setSections().
    struct PartName {
        QString section;
        GalleryPart::Kind kind = GalleryPart::Kind::heading;
        QUuid tile;
        bool operator==(const PartName&) const = default;
    };
    struct Pointed {
        int part = -1;
        GallerySpot spot = GallerySpot::none;
        bool operator==(const Pointed&) const = default;
    };
    PartName nameOf(int part) const;
    int partNamed(const PartName& name) const;
    void lay();
    void wishLater();
    void wish();
    GalleryPartLook lookOf(int part) const;
    Pointed pointedAt(QPoint position) const;
    void point(const Pointed& pointed);
    void lookForPointer();
    void updatePart(int part);
    void press(const Pointed& pointed);
    int startOfKeys() const;
    void mark(int part);
    void tellMarked();
    void bringIntoView(int part);
    void rest(QUuid id, bool isPointer);
    void leave();
    void placeName();
    void endRename(RenameEnd end);

    QList<GallerySection> m_sections;
    GalleryLayout m_layout;
    double m_ratio = 0.8;
    int m_left;    // margin in pixels
    std::function<bool(QUuid)> m_appliedTest;
    mutable QHash<QUuid, bool> m_applied;         // what m_appliedTest has answered
    mutable QCache<QUuid, Picture> m_pictures;    // by bytes
    int m_generation = 0;
    QTimer m_wishLater;
    QList<QUuid> m_wished;
    QSize m_wishedPixels;
    Pointed m_pointed, m_pressed;
    int m_marked = -1;
    bool m_showsMark = false;
    LineField* m_name = nullptr;    // null unless a design is being renamed
    QUuid m_renamed;
    QPointer<QWidget> m_focusBefore;    // had the focus before m_name took it
    QTimer m_resting, m_restingLonger;
    QUuid m_restedOn, m_previewed;
};
