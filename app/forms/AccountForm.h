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

// Common behaviour of the account's forms. While an action runs, all widgets are locked but the
// pressed button, which spins. The notice tells the outcome of the action, or what is missing
// before the form can be sent.
class AccountForm : public QObject {
    Q_OBJECT
public:
    // `notice` must outlive the form; an added widget, too, unless it is removed first.
    AccountForm(Notice* notice, QWidget* parent);
    void add(const QList<PushButton*>& buttons);
    void add(CheckedField checked, FormField* field);
    void add(const QList<QWidget*>& others);
    void remove(const QList<PushButton*>& buttons);

    // Returns whether the form can be sent, which is when no check has failed. Otherwise tells the
    // failure's sentence, marks its field and gives it the focus.
    bool accepts(const CheckResult& failure);
    // Call it before asking for the button's action; the button spins while the action runs.
    // Returns false when an action is running already.
    [[nodiscard]] bool send(PushButton* button);
    void show(const AccountShown& account);
    // Tells a problem that is not the outcome of an action; it stays until something is typed or
    // sent.
    void tellProblem(const QString& sentence);
    // Empties the notice and unmarks all fields, before something else is told.
    void forget();
    // Makes the following notices be about this control.
    void attend(QWidget* control) { Q_EMIT attended(control); }

Q_SIGNALS:
    // The control that the following notices are about: the pressed button, or the field with a
    // problem; null when an outcome comes and no button was pressed.
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
    QString m_missing;    // why the form cannot be sent
    QString m_message, m_forgotten;
    bool m_isProblem = false;
};
