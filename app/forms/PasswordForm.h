#pragma once
#include <QBoxLayout>
#include <QWidget>

class AccountForm;
class FormField;
class PushButton;

// The fields for another password, above the button that asks for it.
class PasswordForm : public QWidget {
    Q_OBJECT
public:
    struct Labels {
        QString current, changed, repeated;
    };
    // Belongs to `form`, which has what is typed checked.
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
