#pragma once
#include "app/forms/AccountShown.h"

#include <QWidget>

class AccountForm;
class Caption;
class FormField;
class Notice;
class Paragraph;
class PushButton;
class SegmentedControl;

enum class LoginMode { signIn, createAccount, recover };

// The forms to sign in, register and recover a password, beside a picture of finished posts.
class LoginView : public QWidget {
    Q_OBJECT
public:
    explicit LoginView(QWidget* parent = nullptr);
    void setAccount(const AccountShown& account);
    // Shows how many files are waiting to be opened after the sign-in.
    void setWaitingFiles(int count);
    void setMode(LoginMode mode);
    void clearPasswords();
    void focusFirst();
    void tellProblem(const QString& sentence);    // a problem not caused by signing in
    FormField* email() const { return m_email; }
    FormField* password() const { return m_password; }
    FormField* repeated() const { return m_repeated; }
    PushButton* primary(LoginMode mode) const;

Q_SIGNALS:
    void loginRequested(const QString& email, const QString& password);
    void registrationRequested(const QString& email, const QString& password);
    void passwordResetRequested(const QString& email);
    void googleRequested();
    void retryRequested();
    void testMailRequested();

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void buildColumn();
    void addFieldsToForm();
    void connectActions();
    void orderFocus();
    void showWaysOut();
    void send();
    void place();

    LoginMode m_mode = LoginMode::signIn;
    QWidget* m_wall;
    QWidget* m_column;
    SegmentedControl* m_segments;
    Paragraph* m_explanation;
    FormField* m_email;
    FormField* m_password;
    FormField* m_repeated;
    PushButton* m_recover;
    QList<PushButton*> m_primaries;    // the buttons that send the form, by LoginMode
    PushButton* m_google;
    Notice* m_notice;
    PushButton* m_retry;
    PushButton* m_testMail;
    bool m_mayRetry = false, m_hasTestMail = false, m_wasWorking = false;
    Caption* m_waiting;
    AccountForm* m_form;
};
