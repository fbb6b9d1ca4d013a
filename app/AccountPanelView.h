#pragma once
#include "account/AccountPanelDestination.h"
#include "app/AccountShown.h"
#include "app/controls/Popover.h"

class AccountForm;
class Avatar;
class Caption;
class FormField;
class IconButton;
class Notice;
class PackageCard;
class PushButton;
class QScrollArea;
class RowButton;

// The account in short, below its button: what is most often done with it, and the ways to the
// rest.
class AccountPanelView : public Popover {
    Q_OBJECT
public:
    explicit AccountPanelView(QWidget* owner);
    void present();
    void setAccount(const AccountShown& account);
    void clearPasswords();
    enum class Fold { folded, open };
    void setDetails(Fold fold);
    void setPassword(Fold fold);

Q_SIGNALS:
    void refreshRequested();
    void logoutRequested();
    void profileEdited(const QString& fullName);
    void purchaseRequested(int credits);
    void checkoutConfirmed();
    void passwordChangeRequested(const QString& current, const QString& password,
                                 const QString& repeated);
    void destinationChosen(AccountPanelDestination destination);
    void settingsRequested();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QWidget* header();
    QWidget* profile();
    QWidget* purchase();
    QWidget* password();
    QWidget* destinations();
    void saveProfile();
    void changePassword();
    int chosenCredits() const;
    void fit();

    AccountShown m_account;
    bool m_acted = false;    // a message from before says nothing here
    QWidget* m_page;
    QScrollArea* m_area;
    Avatar* m_avatar;
    Caption* m_name;
    Caption* m_balance;
    IconButton* m_fold;
    QWidget* m_details;
    FormField* m_fullName;
    PushButton* m_save;
    QList<PackageCard*> m_packages;
    PushButton* m_buy;
    PushButton* m_confirm;
    RowButton* m_passwordFold;
    QWidget* m_passwordFields;
    FormField* m_current;
    FormField* m_new;
    FormField* m_repeated;
    PushButton* m_change;
    Notice* m_notice;
    AccountForm* m_form;
};
