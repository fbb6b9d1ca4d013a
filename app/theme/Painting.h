#pragma once
#include "app/theme/Theme.h"

#include <QPainter>
#include <QRectF>

// Saves a painter's state, and restores it in the destructor.
class SavedPainter {
public:
    explicit SavedPainter(QPainter& painter) : m_painter(painter) { m_painter.save(); }
    ~SavedPainter() { m_painter.restore(); }
    Q_DISABLE_COPY_MOVE(SavedPainter)

private:
    QPainter& m_painter;
};

struct Corners {
    double left = Radius::button, right = Radius::button;    // radii
};
void fillRounded(QPainter& painter, const QRectF& rect, Corners radii, const QColor& color);
void fillRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& color);
// The pixels whose centre lies inside the rounded `rect`; for the mask of a window.
QRegion roundedRegion(const QRect& rect, double radius);
// Paints an outline inside `rect`, `width` pixels wide.
void strokeRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& color,
                   double width = 1);

// Paints one line of text, vertically centred, elided when it is wider than `rect`.
void paintText(QPainter& painter, const QRectF& rect, Qt::Alignment alignment, Type type,
               const QColor& color, const QString& text, Qt::TextElideMode elide = Qt::ElideRight);
double textWidth(Type type, const QString& text);
// A tooltip that shows `text` as it stands, never as markup, cut off when it is very long.
QString plainToolTip(const QString& text);
// The room that a number of so many digits may take: in Inter the digits differ in width.
double digitsWidth(Type type, int digits);

// Paints a ring with an arc over a third of it; `turn`, from 0 to 1, turns the arc.
void paintSpinner(QPainter& painter, const QRectF& box, const QColor& track, const QColor& arc,
                  double turn, double width);

// The blurred shadow of a rectangle with square corners, in logical pixels.
struct Shadow {
    double offset = 18, blur = 50;
    QColor color;
};
void paintShadow(QPainter& painter, const QRectF& rect, const Shadow& shadow);
