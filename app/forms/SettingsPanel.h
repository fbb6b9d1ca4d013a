#pragma once
#include "app/forms/AccountShown.h"

#include <QWidget>

class AccountForm;
class Notice;
class QHBoxLayout;
class QVBoxLayout;

// A page of a settings sheet: a title with a sentence, rows, and a foot with buttons. The notice
// about an action is shown below the control that started the action, or in the foot.
class SettingsPanel : public QWidget {
    Q_OBJECT
public:
    SettingsPanel(const QString& title, const QString& sentence, QWidget* parent = nullptr);
    virtual void setAccount(const AccountShown& account);

protected:
    QVBoxLayout* rows() const { return m_rows; }
    QHBoxLayout* foot() const { return m_foot; }
    QVBoxLayout* footNotice() const { return m_footNotice; }    // where the foot shows the notice
    void bringNoticeHome();                                     // moves the notice to the foot
    AccountForm* form() const { return m_form; }
    Notice* notice() const { return m_notice; }

private:
    void standAt(QWidget* control);

    QVBoxLayout* m_rows;
    QHBoxLayout* m_foot;
    QVBoxLayout* m_footNotice;
    Notice* m_notice;
    AccountForm* m_form;
};
