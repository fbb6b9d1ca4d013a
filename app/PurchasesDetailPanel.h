#pragma once
#include "account/AccountRecords.h"
#include "app/SettingsPanel.h"

class EmptyNote;
class ProgressBar;
class PushButton;
class QScrollArea;

class PurchasesDetailPanel : public SettingsPanel {
    Q_OBJECT
public:
    explicit PurchasesDetailPanel(QWidget* parent = nullptr);
    void setAccount(const AccountShown& account) override;
    void setPurchases(const QList<PurchaseHistoryItem>& purchases);

Q_SIGNALS:
    void historyRequested();
    void documentRequested(const QString& purchaseId);

protected:
    void showEvent(QShowEvent* event) override;

private:
    QWidget* rowOf(const PurchaseHistoryItem& purchase);
    void showContent();

    QList<PurchaseHistoryItem> m_purchases;
    bool m_isWorking = false;
    ProgressBar* m_progress;
    QScrollArea* m_area;
    EmptyNote* m_empty;
    QWidget* m_list = nullptr;
    QList<PushButton*> m_documents;    // of the rows that have one
    PushButton* m_refresh;
};
