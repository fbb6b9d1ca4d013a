#pragma once
#include "account/AccountPanelDestination.h"
#include "app/controls/popovers/Popover.h"
#include "app/forms/AccountShown.h"

class AccountForm;
class Avatar;
class Caption;
class CopyButton;
class FormField;
class IconButton;
class Notice;
class PackageCard;
class PasswordForm;
class PushButton;
class QScrollArea;
class RowButton;

// The popover below the account button: the most frequent actions, and rows that open the screens
// of the account.
class AccountPanelView : public Popover {
    Q_OBJECT
public:
    explicit AccountPanelView(QWidget* owner);
    void present();
    void setAccount(const AccountShown& account);
    void clearPasswords();
    void setNameSaved();
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
    bool eventFilter(QObject* object, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QWidget* header();
    QWidget* profile();
    QWidget* purchase();
    QWidget* password();
    QWidget* destinations();
    void saveProfile();
    void showNotice();
    int chosenCredits() const;
    void fit();

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
    CopyButton* m_copy;
    RowButton* m_passwordFold;
    PasswordForm* m_passwords;
    Notice* m_notice;
    AccountForm* m_form;
};
