#pragma once
#include <QVBoxLayout>

class QScrollArea;
class QString;

// The margins and gaps of the side panel's pages. The right margin is smaller by the scroll bar,
// whose room scrolled() always keeps.
class PanelLayout : public QVBoxLayout {
public:
    explicit PanelLayout(QWidget* page);
    void addRow(QWidget* widget, int gapAbove);
    void addRow(const QList<QWidget*>& widgets, int gapAbove);
};

// The title of a group of rows.
QWidget* sectionTitle(const QString& text, QWidget* parent);

// A scroll area around `page`. The bar's room is always kept, and stays empty while there is
// nothing to scroll.
QScrollArea* scrolled(QWidget* page);
// Scrolls until the widget is visible.
void showIn(QScrollArea* area, QWidget* widget);
