#include "app/forms/PasswordForm.h"

#include "app/controls/Button.h"
#include "app/controls/fields/FormField.h"
#include "app/forms/AccountForm.h"

PasswordForm::PasswordForm(QBoxLayout::Direction direction, const Labels& labels,
                           PushButton* change, AccountForm* form)
    : m_current(new FormField(labels.current, FieldKind::password)),
      m_changed(new FormField(labels.changed, FieldKind::password)),
      m_repeated(new FormField(labels.repeated, FieldKind::password)), m_change(change),
      m_form(form)
{
    const int spacing = direction == QBoxLayout::TopToBottom ? Space::small : Space::medium;
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(spacing);
    auto* fields = new QBoxLayout(direction);
    fields->setSpacing(spacing);
    for (FormField* field : {m_current, m_changed, m_repeated}) {
        fields->addWidget(field, 1);
        connect(field, &FormField::submitted, this, &PasswordForm::send);
    }
    rows->addLayout(fields);
    rows->addWidget(m_change, 0,
                    direction == QBoxLayout::TopToBottom ? Qt::Alignment() : Qt::AlignLeft);
    QWidget* before = m_current->edit();
    for (QWidget* stop :
         QList<QWidget*>{m_changed->edit(), m_repeated->edit(), m_change, m_current->edit()->eye(),
                         m_changed->edit()->eye(), m_repeated->edit()->eye()}) {
        setTabOrder(before, stop);    // the fields, then the button, then the eye buttons
        before = stop;
    }
    connect(m_change, &PushButton::clicked, this, &PasswordForm::send);
    m_form->add(CheckedField::currentPassword, m_current);
    m_form->add(CheckedField::password, m_changed);
    m_form->add(CheckedField::repeatedPassword, m_repeated);
    m_form->add(QList{m_change});
}

void PasswordForm::clear()
{
    for (FormField* field : {m_current, m_changed, m_repeated})
        field->clear();
}

void PasswordForm::send()
{
    const QString current = m_current->text(), password = m_changed->text(),
                  repeated = m_repeated->text();
    if (m_form->accepts(checkPasswordChange(current, password, repeated)) && m_form->send(m_change))
        Q_EMIT changeRequested(current, password, repeated);
}
