#pragma once
#include <QPixmap>
#include <QWidget>

class KeyHints;
class PushButton;

// The stage before the first import: all of it invites a drop.
class EmptyState : public QWidget {
    Q_OBJECT
public:
    explicit EmptyState(QWidget* parent = nullptr);
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void importImagesRequested();
    void importFolderRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    int blockTop() const;
    void paintCards(QPainter& painter, const QPointF& middle);

    PushButton* m_images;
    PushButton* m_folder;
    KeyHints* m_hints;
};
