#pragma once
#include "app/forms/SettingsPanel.h"

#include <optional>

class Caption;
class CopyButton;
class CardGround;
class CustomAmount;
class PackageCard;
class Paragraph;
class PushButton;

class CreditsDetailPanel : public SettingsPanel {
    Q_OBJECT
public:
    explicit CreditsDetailPanel(QWidget* parent = nullptr);
    void setAccount(const AccountShown& account) override;
    CustomAmount* customAmount() const { return m_custom; }
    QString total() const;

Q_SIGNALS:
    void purchaseRequested(int credits);
    void checkoutConfirmed();

private:
    void buildBalance();
    void buildChoices();
    void buildPending();
    void buildFoot();
    void connectForm();
    void buy();
    void showTotal();
    void showHint();
    std::optional<int> credits() const;    // empty while the custom field contains no valid amount

    Caption* m_balance;
    QList<PackageCard*> m_packages;
    CustomAmount* m_custom;
    CardGround* m_pending;
    Paragraph* m_pendingText;
    CopyButton* m_copy;
    PushButton* m_confirm;
    Caption* m_hint;
    Caption* m_total;
    PushButton* m_buy;
};
