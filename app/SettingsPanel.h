#pragma once
#include "app/AccountShown.h"

#include <QWidget>

class AccountForm;
class Notice;
class QHBoxLayout;
class QVBoxLayout;

// A page of a settings sheet: what it is about, its rows, and at its foot what came of the last
// action and the buttons.
class SettingsPanel : public QWidget {
    Q_OBJECT
public:
    SettingsPanel(const QString& title, const QString& sentence, QWidget* parent = nullptr);
    virtual void setAccount(const AccountShown& account);

protected:
    QVBoxLayout* rows() const { return m_rows; }
    QHBoxLayout* foot() const { return m_foot; }    // the notice is its first part
    AccountForm* form() const { return m_form; }
    Notice* notice() const { return m_notice; }

private:
    QVBoxLayout* m_rows;
    QHBoxLayout* m_foot;
    Notice* m_notice;
    AccountForm* m_form;
};
