#pragma once
#include "app/controls/fields/Choices.h"
#include "app/theme/Icons.h"
#include "app/theme/WindowClass.h"

#include <QWidget>

struct PanelTab {
    Icon icon;
    QString text;
};

// A row of tabs, of which the chosen one is underlined. The strip is a single Tab stop; inside it
// the arrow keys choose.
class TabStrip : public QWidget, public Choices {
    Q_OBJECT
public:
    explicit TabStrip(const QList<PanelTab>& tabs, QWidget* parent = nullptr);
    void setCurrent(int index);    // emits nothing
    // Labels without icons, in a lower strip.
    void setClass(WindowClass windowClass);
    int current() const override { return m_current; }
    QRect tabRect(int index) const;
    QSize sizeHint() const override { return {327, 48}; }

    QAccessible::Role choiceRole() const override { return QAccessible::PageTab; }
    int choiceCount() const override { return int(m_tabs.size()); }
    QRect choiceRect(int index) const override { return tabRect(index); }
    QString choiceName(int index) const override { return m_tabs[index].text; }
    void choose(int index) override;

Q_SIGNALS:
    void chosen(int index);    // by the user; never emitted for the current tab

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    int tabAt(QPoint position) const;

    QList<PanelTab> m_tabs;
    int m_current = 0;
    int m_hovered = -1;
    WindowClass m_class = WindowClass::roomy;
};
