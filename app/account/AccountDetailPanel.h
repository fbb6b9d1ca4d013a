#pragma once
#include "app/forms/SettingsPanel.h"

class Caption;
class FormField;
class PasswordForm;
class PushButton;

class AccountDetailPanel : public SettingsPanel {
    Q_OBJECT
public:
    explicit AccountDetailPanel(QWidget* parent = nullptr);
    void setAccount(const AccountShown& account) override;
    void clearPasswords();
    void setNameSaved();

Q_SIGNALS:
    void profileEdited(const QString& fullName);
    void passwordChangeRequested(const QString& current, const QString& password,
                                 const QString& repeated);
    void logoutRequested();

private:
    void saveName();

    Caption* m_email;
    FormField* m_name;
    PushButton* m_save;
    PasswordForm* m_passwords;
    PushButton* m_logout;
};
