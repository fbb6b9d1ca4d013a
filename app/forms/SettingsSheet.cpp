#include "app/forms/SettingsSheet.h"

#include "app/controls/RowButton.h"
#include "app/forms/SettingsPanel.h"
#include "app/theme/Theme.h"

#include <QApplication>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {
constexpr int pageRing = 4;
}

SettingsSheet::SettingsSheet(const QString& title, QSize size, QWidget* window)
    : Sheet(title, size, window), m_pages(new QStackedWidget), m_group(new QWidget)
{
    auto* rows = new QVBoxLayout(m_group);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(2);
    column()->addWidget(m_group);
    column()->addStretch(1);
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setWidgetResizable(true);
    area->setWidget(m_pages);
    area->viewport()->setAutoFillBackground(false);
    m_pages->setAutoFillBackground(false);
    // Room for focus rings, which the scroll area would clip.
    const QMargins ring(pageRing, pageRing, pageRing, pageRing);
    m_pages->setContentsMargins(ring);
    content()->setContentsMargins(content()->contentsMargins() - ring);
    content()->addWidget(area);
    connect(qApp, &QApplication::focusChanged, area, [area](QWidget*, QWidget* now) {
        if (now && area->isAncestorOf(now))
            area->ensureWidgetVisible(now, 0, Space::small);
    });
}

void SettingsSheet::addPage(Icon icon, const QString& title, SettingsPanel* panel)
{
    const int index = int(m_rows.size());
    auto* row = new RowButton(icon, title);
    row->setCheckable(true);
    row->setAutoExclusive(true);
    row->setChecked(index == 0);
    m_group->layout()->addWidget(row);
    m_rows.append(row);
    m_panels.append(panel);
    m_pages->addWidget(panel);
    if (index == 0)
        setFirstFocus(row);
    connect(row, &RowButton::clicked, this, [this, index] {
        m_pages->setCurrentIndex(index);
        setFirstFocus(m_rows[index]);
        Q_EMIT pageChosen(index);
    });
}

void SettingsSheet::setPage(int index)
{
    if (index < 0 || index >= m_rows.size())
        return;
    m_rows[index]->setChecked(true);
    m_pages->setCurrentIndex(index);
    setFirstFocus(m_rows[index]);
}

void SettingsSheet::setAccount(const AccountShown& account)
{
    for (SettingsPanel* panel : std::as_const(m_panels))
        panel->setAccount(account);
}
