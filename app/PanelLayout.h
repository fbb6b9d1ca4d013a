#pragma once
#include <QVBoxLayout>

// The common measures of the side panel's pages. The scroll bar has its room beside them, so that
// it moves nothing when it comes.
class PanelLayout : public QVBoxLayout {
public:
    explicit PanelLayout(QWidget* page);
    void addRow(QWidget* widget, int gapAbove);
    void addRow(const QList<QWidget*>& widgets, int gapAbove);
};
