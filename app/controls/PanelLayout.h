#pragma once
#include <QVBoxLayout>

class QScrollArea;
class QString;

// The common measures of the side panel's pages. The scroll bar has its room beside them, so that
// it moves nothing when it comes.
class PanelLayout : public QVBoxLayout {
public:
    explicit PanelLayout(QWidget* page);
    void addRow(QWidget* widget, int gapAbove);
    void addRow(const QList<QWidget*>& widgets, int gapAbove);
};

// The title of a group of rows.
QWidget* sectionTitle(const QString& text, QWidget* parent);

// What is too high scrolls. The bar's room is always kept; without need of it, it paints nothing.
QScrollArea* scrolled(QWidget* page);
// Moves it so that the widget is seen.
void showIn(QScrollArea* area, QWidget* widget);
