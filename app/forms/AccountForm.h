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

// Common behaviour of the account's forms. While an action runs, all added widgets are locked,
// except that the pressed button shows a spinner. The notice shows the outcome of the action, or
// what is missing before the form can be sent.
class AccountForm : public QObject {
    Q_OBJECT
public:
    // `notice` must outlive the form, and so must an added widget unless it is removed first.
    AccountForm(Notice* notice, QWidget* parent);
    void add(const QList<PushButton*>& buttons);
    void add(CheckedField checked, FormField* field);
    void add(const QList<QWidget*>& others);
    void remove(const QList<PushButton*>& buttons);

    // Returns whether the form can be sent, that is, whether `failure` is empty. If not, the notice
    // shows the sentence of the failure, and its field is marked and gets the focus.
    bool accepts(const CheckResult& failure);
    // Marks `button` as pressed: it shows a spinner while its action runs. Call it before starting
    // the action. Returns false if an action is running already.
    [[nodiscard]] bool send(PushButton* button);
    void show(const AccountShown& account);
    // Shows a problem that is not the outcome of an action, until the user types or sends
    // something.
    void tellProblem(const QString& sentence);
    // Empties the notice and unmarks all fields. An outcome that was shown does not come back.
    void clearNotice();
    // Emits attended(): the next notices are about `control`.
    void attend(QWidget* control) { Q_EMIT attended(control); }

Q_SIGNALS:
    // `control` is what the next notices are about: the pressed button, or the field with a
    // problem. Null if an outcome arrives and no button of this form was pressed.
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
    QString m_problem;    // why the form cannot be sent
    QString m_message, m_forgotten;
    bool m_isProblem = false;
};
