#pragma once
#include <QWidget>

// What a drop would bring.
struct DropOffer {
    int images = 0;
    bool folder = false;      // a folder is dragged; its images are not counted yet
    bool replaces = false;    // there is a batch already
    bool texts = false;       // a spreadsheet of them, and no images
    QString refusal = {};     // why a drop would bring nothing
    bool operator==(const DropOffer&) const = default;
};

// Lies over the window while files are dragged; it lets the drag through to what is below.
class DropVeil : public QWidget {
    Q_OBJECT
public:
    explicit DropVeil(QWidget* parent);    // covers its parent
    void offer(const DropOffer& offer);    // shows it
    QString sentence() const;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    DropOffer m_offer;
};
