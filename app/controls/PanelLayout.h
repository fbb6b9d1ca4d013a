#pragma once
#include <QVBoxLayout>

class QScrollArea;
class QString;

// The layout of a page of the side panel, with its margins and gaps. The right margin is smaller by
// the width of the scroll bar, which scrolled() always reserves.
class PanelLayout : public QVBoxLayout {
public:
    explicit PanelLayout(QWidget* page);
    void addRow(QWidget* widget, int gapAbove);
    void addRow(const QList<QWidget*>& widgets, int gapAbove);
};

// Makes the title of a group of rows.
QWidget* sectionTitle(const QString& text, QWidget* parent);

// Makes a scroll area around `page`. The width of its scroll bar is always reserved, even while
// there is nothing to scroll.
QScrollArea* scrolled(QWidget* page);
// Scrolls `area` until `widget` is visible.
void showIn(QScrollArea* area, QWidget* widget);
