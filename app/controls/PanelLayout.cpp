#include "app/controls/PanelLayout.h"

#include "app/controls/Caption.h"

#include <QScrollArea>

namespace {
constexpr int panelSide = 16, compactPanelSide = 12, top = 10, panelBottom = 16,
              panelScrollBar = 12, fieldGap = 8;
}

PanelLayout::PanelLayout(QWidget* page, Beside beside) : QVBoxLayout(page), m_beside(beside)
{
    setContentsMargins(0, top, 0, panelBottom);
    setSpacing(0);
    setClass(WindowClass::roomy);
}

void PanelLayout::setClass(WindowClass windowClass)
{
    const int side = windowClass == WindowClass::compact ? compactPanelSide : panelSide;
    QMargins margins = contentsMargins();
    margins.setLeft(side);
    margins.setRight(m_beside == Beside::scrollBar ? side - panelScrollBar : side);
    setContentsMargins(margins);
}

QHBoxLayout* PanelLayout::addRow(QWidget* widget, int gapAbove)
{
    return addRow(QList<QWidget*>{widget}, gapAbove);
}

QHBoxLayout* PanelLayout::addRow(const QList<QWidget*>& widgets, int gapAbove)
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
    return row;
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
