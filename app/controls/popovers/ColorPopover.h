#pragma once
#include "app/controls/popovers/Popover.h"
#include "model/Pace.h"

#include <QColor>
#include <QList>

class ColorPlane;
class LineField;

// The colours that ColorPopover offers below its planes.
struct ColorOffers {
    QList<QColor> photo;     // colours of the photo
    QList<QColor> recent;    // colours used last, the newest first
    bool operator==(const ColorOffers&) const = default;
};

class ColorPopover : public Popover {
    Q_OBJECT
public:
    ColorPopover(QWidget* owner, const QColor& color, const ColorOffers& offers);
    void open(Qt::FocusReason reason);
    void setColor(const QColor& color);    // emits nothing

Q_SIGNALS:
    void colorChanged(const QColor& color, Pace pace);
    void colorUsed(const QColor& color);    // the last chosen colour, when the popover closes

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QColor color() const;
    void showColor();
    void choose(const QColor& color);
    void addOffers(const QString& title, const QList<QColor>& colors);
    void tell(Pace pace);

    double m_hue = 0, m_saturation = 0, m_value = 0;    // 0 to 1; m_hue is not reset by a grey
    bool m_changed = false;
    int m_height = 0;
    ColorPlane* m_shade;
    ColorPlane* m_hueBar;
    LineField* m_hex;
    struct Heading {
        QString text;
        int top;
    };
    QList<Heading> m_headings;
};
