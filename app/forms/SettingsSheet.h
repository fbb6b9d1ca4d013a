#pragma once
#include "app/controls/popovers/Sheet.h"
#include "app/theme/Icons.h"

class QStackedWidget;
class RowButton;
class SettingsPanel;
struct AccountShown;

// A sheet of several pages. The rows in the column at its left choose the page.
class SettingsSheet : public Sheet {
    Q_OBJECT
public:
    SettingsSheet(const QString& title, QSize size, QWidget* window);
    void setPage(int index);    // emits nothing
    virtual void setAccount(const AccountShown& account);

Q_SIGNALS:
    void pageChosen(int index);    // by the user

protected:
    void addPage(Icon icon, const QString& title, SettingsPanel* panel);

private:
    QStackedWidget* m_pages;
    QWidget* m_group;    // parent of m_rows
    QList<RowButton*> m_rows;
    QList<SettingsPanel*> m_panels;
};
