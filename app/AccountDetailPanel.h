#pragma once
#include "app/SettingsPanel.h"

class Caption;
class FormField;
class PushButton;

class AccountDetailPanel : public SettingsPanel {
    Q_OBJECT
public:
    explicit AccountDetailPanel(QWidget* parent = nullptr);
    void setAccount(const AccountShown& account) override;
    void clearPasswords();

Q_SIGNALS:
    void profileEdited(const QString& fullName);
    void passwordChangeRequested(const QString& current, const QString& password,
                                 const QString& repeated);
    void logoutRequested();

private:
    void saveName();
    void changePassword();

    Caption* m_email;
    FormField* m_name;
    PushButton* m_save;
    FormField* m_current;
    FormField* m_new;
    FormField* m_repeated;
    PushButton* m_change;
    PushButton* m_logout;
};
