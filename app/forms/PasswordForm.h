#pragma once
#include <QBoxLayout>
#include <QWidget>

class AccountForm;
class FormField;
class PushButton;

// The fields for changing the password, above the button that sends them.
class PasswordForm : public QWidget {
    Q_OBJECT
public:
    struct Labels {
        QString current, changed, repeated;
    };
    // `form` shows what is wrong with the passwords, and locks the fields and the button `change`
    // while an action runs.
    PasswordForm(QBoxLayout::Direction direction, const Labels& labels, PushButton* change,
                 AccountForm* form);
    void clear();

Q_SIGNALS:
    void changeRequested(const QString& current, const QString& password, const QString& repeated);

private:
    void send();

    FormField* m_current;
    FormField* m_changed;
    FormField* m_repeated;
    PushButton* m_change;
    AccountForm* m_form;
};
