#pragma once
#include "account/AccountRecords.h"
#include "app/forms/SettingsPanel.h"

class EmptyNote;
class ProgressBar;
class PushButton;
class QScrollArea;

class PurchasesDetailPanel : public SettingsPanel {
    Q_OBJECT
public:
    explicit PurchasesDetailPanel(QWidget* parent = nullptr);
    void setPurchases(const QList<PurchaseHistoryItem>& purchases);
    enum class Loading { done, failed };
    void setLoaded(Loading outcome);    // call it when the requested loading has ended

Q_SIGNALS:
    void historyRequested();
    void documentRequested(const QString& purchaseId);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void load();
    void makeReachable();
    QWidget* rowOf(const PurchaseHistoryItem& purchase);
    void showContent();

    QList<PurchaseHistoryItem> m_purchases;
    bool m_isLoading = false;
    bool m_isKnown = false;    // loaded once: an empty list now means no purchases
    ProgressBar* m_progress;
    QScrollArea* m_area;
    EmptyNote* m_empty;
    QWidget* m_list = nullptr;
    QList<PushButton*> m_documents;    // the buttons of the rows with a document
    PushButton* m_refresh;
};
