#pragma once
#include "account/AccountPanelDestination.h"
#include "app/forms/SettingsSheet.h"

class AccountDetailPanel;
class Avatar;
class Caption;
class CreditsDetailPanel;
class PurchasesDetailPanel;

// The sheet "Ajustes", with the four screens of the account.
class AccountSettingsWindow : public SettingsSheet {
    Q_OBJECT
public:
    explicit AccountSettingsWindow(QWidget* window);
    void setAccount(const AccountShown& account) override;
    AccountDetailPanel* accountPanel() const { return m_account; }
    CreditsDetailPanel* creditsPanel() const { return m_credits; }
    PurchasesDetailPanel* purchasesPanel() const { return m_purchases; }

private:
    AccountDetailPanel* m_account;
    CreditsDetailPanel* m_credits;
    PurchasesDetailPanel* m_purchases;
    Avatar* m_avatar;
    Caption* m_name;
    Caption* m_email;
};
