#pragma once
#include "app/controls/Announcer.h"
#include "app/desktop/RecentPlaces.h"

#include <QPixmap>
#include <QWidget>

#include <optional>

class KeyHints;
class PlaceChips;
class PushButton;
class Spinner;

struct ImportShown {
    // Numbers of files: looked at so far, and in total (0 while folders are searched).
    int looked = 0, total = 0;
    bool operator==(const ImportShown&) const = default;
};

// Takes the place of the canvas while the batch is empty: invites the user to drop or import
// images, or shows the progress of an import.
class EmptyState : public QWidget {
    Q_OBJECT
public:
    explicit EmptyState(QWidget* parent = nullptr);
    QList<QWidget*> focusOrder() const;
    void setImport(const std::optional<ImportShown>& import);
    void setPlaces(const QList<RecentPlace>& places);
    // Focuses the first button, or this widget during an import.
    void takeFocus(Qt::FocusReason reason);

Q_SIGNALS:
    void importImagesRequested();
    void importFolderRequested();
    void placeRequested(const QString& path);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    bool showsCards() const;
    bool showsPlaces() const;
    int blockTop() const;
    void place();
    void nameState();
    void paintInvitation(QPainter& painter);
    void paintCards(QPainter& painter, const QPointF& middle);

    PushButton* m_images;
    PushButton* m_folder;
    KeyHints* m_hints;
    PlaceChips* m_places;
    Spinner* m_spinner;
    Announcer m_announcer{[this] { nameState(); }, this};
    std::optional<ImportShown> m_import;    // empty while no import runs
};
