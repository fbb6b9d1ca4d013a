#pragma once
#include "app/theme/Theme.h"

#include <QPainter>
#include <QRectF>

// Saves a painter's state in the constructor and restores it in the destructor.
class SavedPainter {
public:
    explicit SavedPainter(QPainter& painter) : m_painter(painter) { m_painter.save(); }
    ~SavedPainter() { m_painter.restore(); }
    Q_DISABLE_COPY_MOVE(SavedPainter)

private:
    QPainter& m_painter;
};

// Radii of the two corners on the left and of the two on the right.
struct Corners {
    double left = Radius::button, right = Radius::button;
};
void fillRounded(QPainter& painter, const QRectF& rect, Corners radii, const QColor& color);
void fillRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& color);
// The pixels whose centre lies inside the rounded `rect`; for the mask of a window.
QRegion roundedRegion(const QRect& rect, double radius);
// Paints an outline inside `rect`, `width` pixels wide.
void strokeRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& color,
                   double width = 1);

// `picture` with transparent corners, for painting it in a rounded box. `radius`: in its pixels.
QImage roundedPicture(const QImage& picture, double radius);

// Paints one line of text, vertically centred, elided when it is wider than `rect`.
void paintText(QPainter& painter, const QRectF& rect, Qt::Alignment alignment, Type type,
               const QColor& color, const QString& text, Qt::TextElideMode elide = Qt::ElideRight);
double textWidth(Type type, const QString& text);
// A tooltip that shows `text` literally, never as rich text. A very long text is cut off.
QString plainToolTip(const QString& text);
// The largest width of a number with `digits` digits: in Inter, the digits differ in width.
double digitsWidth(Type type, int digits);

// Paints a ring with an arc over a third of it. `turn`: how far the arc has turned, from 0 to 1 for
// a whole turn. `width`: of the lines.
void paintSpinner(QPainter& painter, const QRectF& box, const QColor& track, const QColor& arc,
                  double turn, double width);

// The blurred shadow of a rectangle with square corners, in logical pixels. `offset` is downwards.
struct Shadow {
    double offset = 18, blur = 50;
    QColor color;
};
void paintShadow(QPainter& painter, const QRectF& rect, const Shadow& shadow);
