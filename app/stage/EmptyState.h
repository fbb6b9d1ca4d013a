#pragma once
#include <QPixmap>
#include <QWidget>

#include <optional>

class KeyHints;
class PushButton;
class Spinner;

struct ImportShown {
    int looked = 0, total = 0;    // files; total is 0 while folders are searched
    bool operator==(const ImportShown&) const = default;
};

// The stage without images: invites to drop or import some, or shows how far an import is.
class EmptyState : public QWidget {
    Q_OBJECT
public:
    explicit EmptyState(QWidget* parent = nullptr);
    QList<QWidget*> focusOrder() const;
    void setImport(const std::optional<ImportShown>& import);
    void takeFocus(Qt::FocusReason reason);    // focuses the first button

Q_SIGNALS:
    void importImagesRequested();
    void importFolderRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int blockTop() const;
    void nameState();
    void paintInvitation(QPainter& painter);
    void paintCards(QPainter& painter, const QPointF& middle);

    PushButton* m_images;
    PushButton* m_folder;
    KeyHints* m_hints;
    Spinner* m_spinner;
    std::optional<ImportShown> m_import;    // empty while no import runs
};
