#pragma once
#include <QWidget>

// What a drop would import.
struct DropOffer {
    int images = 0;           // 0: not known before the drop
    bool folder = false;      // a folder is dragged; its images are not counted yet
    bool replaces = false;    // the images would replace an existing batch
    bool texts = false;       // a single CSV file with texts is dragged
    QString refusal = {};     // why a drop would import nothing
    bool operator==(const DropOffer&) const = default;
};

// Covers the window while files are dragged, and says what a drop would do. Drag events pass
// through to the window.
class DropVeil : public QWidget {
    Q_OBJECT
public:
    explicit DropVeil(QWidget* parent);    // covers its parent
    void offer(const DropOffer& offer);    // shows the veil with this offer
    QString sentence() const;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    DropOffer m_offer;
};
