#pragma once
#include "app/theme/Theme.h"

#include <QPainter>
#include <QRectF>

// A painter's state lives as long as this.
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
// For the mask of a window; a pixel belongs to it where its centre lies inside.
QRegion roundedRegion(const QRect& rect, double radius);
// The line lies inside `rect`.
void strokeRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& color,
                   double width = 1);

// One line, elided at its right end, vertically centred.
void paintText(QPainter& painter, const QRectF& rect, Qt::Alignment alignment, Type type,
               const QColor& color, const QString& text, Qt::TextElideMode elide = Qt::ElideRight);
double textWidth(Type type, const QString& text);
// For a tooltip: a text from elsewhere as it stands, never read as markup, and not endless.
QString plainToolTip(const QString& text);
// The room that a number of so many digits may take: Inter's digits differ in width here.
double digitsWidth(Type type, int digits);

// An arc of a third of a circle; `turn` from 0 to 1.
void paintSpinner(QPainter& painter, const QRectF& box, const QColor& track, const QColor& arc,
                  double turn, double width);

// The blurred shadow of a rectangle with square corners, without the rectangle itself.
struct Shadow {
    double offset = 18, blur = 50;
    QColor color;
};
void paintShadow(QPainter& painter, const QRectF& rect, const Shadow& shadow);
