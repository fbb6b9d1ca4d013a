#include "app/controls/PanelLayout.h"

#include "app/controls/Caption.h"

#include <QScrollArea>

namespace {
constexpr int panelSide = 16, top = 10, panelBottom = 16, panelScrollBar = 12, fieldGap = 8;
}

PanelLayout::PanelLayout(QWidget* page) : QVBoxLayout(page)
{
    setContentsMargins(panelSide, top, panelSide - panelScrollBar, panelBottom);
    setSpacing(0);
}

void PanelLayout::addRow(QWidget* widget, int gapAbove)
{
    addRow(QList<QWidget*>{widget}, gapAbove);
}

void PanelLayout::addRow(const QList<QWidget*>& widgets, int gapAbove)
{
    addSpacing(gapAbove);
    auto* row = new QHBoxLayout;
    row->setSpacing(fieldGap);
    for (QWidget* widget : widgets) {
        row->addWidget(widget,
                       widget->sizePolicy().horizontalPolicy() == QSizePolicy::Fixed ? 0 : 1);
        if (widget->parentWidget())
            widget->raise();    // screen readers go through widgets in the order of their stack
    }
    addLayout(row);
}

QScrollArea* scrolled(QWidget* page)
{
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    area->setWidget(page);
    return area;
}

void showIn(QScrollArea* area, QWidget* widget)
{
    constexpr int margin = 8;
    area->ensureWidgetVisible(widget, 0, margin);
}

QWidget* sectionTitle(const QString& text, QWidget* parent)
{
    return new Caption(Type::small, &Theme::text2, text, parent);
}
