#pragma once
#include "app/theme/WindowClass.h"

#include <QVBoxLayout>

class QHBoxLayout;
class QScrollArea;
class QString;

// The layout of a page of the side panel, with its margins and gaps. Beside the scroll bar, which
// scrolled() always reserves, the right margin is smaller by its width.
class PanelLayout : public QVBoxLayout {
    Q_OBJECT
public:
    enum class Beside { scrollBar, nothing };
    explicit PanelLayout(QWidget* page, Beside beside = Beside::scrollBar);
    QHBoxLayout* addRow(QWidget* widget, int gapAbove);
    QHBoxLayout* addRow(const QList<QWidget*>& widgets, int gapAbove);
    void setClass(WindowClass windowClass);

private:
    Beside m_beside;
};

// Makes the title of a group of rows.
QWidget* sectionTitle(const QString& text, QWidget* parent);

// Makes a scroll area around `page`. The width of its scroll bar is always reserved, even while
// there is nothing to scroll.
QScrollArea* scrolled(QWidget* page);
// Scrolls `area` until `widget` is visible.
void showIn(QScrollArea* area, QWidget* widget);
