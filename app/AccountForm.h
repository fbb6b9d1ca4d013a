#pragma once
#include "app/AccountChecks.h"
#include "app/AccountShown.h"

#include <QList>
#include <QObject>
#include <QString>

class FormField;
class Notice;
class PushButton;
class QWidget;

// What the forms of the account have in common. While an action runs, everything is locked but the
// pressed button, which spins; what came of it, or what is missing before it, is told below.
class AccountForm : public QObject {
    Q_OBJECT
public:
    // The notice and everything added outlive it, or are taken away before they go.
    AccountForm(Notice* notice, QWidget* parent);
    void add(const QList<PushButton*>& buttons);
    void add(const QList<FormField*>& fields);
    void add(const QList<QWidget*>& others);
    void remove(const QList<PushButton*>& buttons);

    // Whether the form can be sent; if not, says why, and `field` takes the focus.
    bool accepts(const CheckResult& failure, FormField* field);
    // Its action is asked for: the button spins as long as that goes on.
    void send(PushButton* button);
    void show(const AccountShown& account);
    // What was told so far belongs to something else.
    void forget();

private:
    void tell();

    Notice* m_notice;
    QList<PushButton*> m_buttons;
    QList<FormField*> m_fields;
    QList<QWidget*> m_others;
    PushButton* m_pressed = nullptr;
    bool m_isWorking = false;
    QString m_missing;    // of the form itself, before anything is sent
    QString m_message, m_forgotten;
    bool m_isProblem = false;
};
