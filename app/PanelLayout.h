#pragma once
#include <QVBoxLayout>

// The common measures of the side panel's pages. The scroll bar has its room beside them, so that
// it moves nothing when it comes.
class PanelLayout : public QVBoxLayout {
public:
    explicit PanelLayout(QWidget* page);
    // A heading's buttons reach a little over the edge, so that their icons end with the fields.
    void addHeading(QWidget* heading, int gapAbove);
    void addRow(QWidget* widget, int gapAbove);
    void addRow(const QList<QWidget*>& widgets, int gapAbove);
};
