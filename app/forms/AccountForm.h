#pragma once
#include "account/AccountChecks.h"
#include "app/forms/AccountShown.h"

#include <QHash>
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
    void add(CheckedField checked, FormField* field);
    void add(const QList<QWidget*>& others);
    void remove(const QList<PushButton*>& buttons);

    // Whether the form can be sent; if not, says why, and the field takes the focus.
    bool accepts(const CheckResult& failure);
    // Its action is to be asked for, and the button spins as long as that goes on. False where one
    // goes on already.
    [[nodiscard]] bool send(PushButton* button);
    void show(const AccountShown& account);
    // A problem of something else than an action, until something is typed or sent.
    void tellProblem(const QString& sentence);
    // What was told so far belongs to something else.
    void forget();
    // What is told from now on is about this control.
    void attend(QWidget* control) { Q_EMIT attended(control); }

Q_SIGNALS:
    // Pressed, or a field that something is wrong with; null when what is told came from elsewhere.
    void attended(QWidget* control);
    void told();    // the notice may have changed

private:
    void tell();
    void lock();
    void markProblem(const CheckResult& failure);

    Notice* m_notice;
    QList<PushButton*> m_buttons;
    QHash<CheckedField, FormField*> m_fields;
    QList<QWidget*> m_others;
    PushButton* m_pressed = nullptr;
    bool m_isWorking = false;
    QString m_missing;    // of the form itself, before anything is sent
    QString m_message, m_forgotten;
    bool m_isProblem = false;
};
