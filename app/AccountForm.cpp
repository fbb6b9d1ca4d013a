#include "app/AccountForm.h"

#include "app/AccountTexts.h"
#include "app/controls/Button.h"
#include "app/controls/FormField.h"
#include "app/controls/Notice.h"

AccountForm::AccountForm(Notice* notice, QWidget* parent) : QObject(parent), m_notice(notice) {}

void AccountForm::add(const QList<PushButton*>& buttons)
{
    m_buttons += buttons;
    for (PushButton* button : buttons)
        button->setEnabled(!m_isWorking);
}

void AccountForm::add(const QList<FormField*>& fields)
{
    m_fields += fields;
    for (FormField* field : fields) {
        connect(field, &FormField::typed, this, [this] {
            m_missing.clear();
            tell();
        });
    }
}

void AccountForm::add(const QList<QWidget*>& others)
{
    m_others += others;
}

void AccountForm::remove(const QList<PushButton*>& buttons)
{
    m_buttons.removeIf([&](PushButton* button) { return buttons.contains(button); });
    if (buttons.contains(m_pressed))
        m_pressed = nullptr;
}

bool AccountForm::accepts(const CheckResult& failure, FormField* field)
{
    for (FormField* each : std::as_const(m_fields))
        each->setProblem(failure && each == field);
    m_missing = failure ? failure->sentence : QString();
    if (failure && field)
        field->edit()->setFocus(Qt::TabFocusReason);
    tell();
    return !failure;
}

void AccountForm::send(PushButton* button)
{
    m_pressed = button;
    m_missing.clear();
    m_forgotten.clear();
}

void AccountForm::show(const AccountShown& account)
{
    m_message = shownText(account.message);
    m_isProblem = account.isProblem;
    if (account.isWorking != m_isWorking) {
        m_isWorking = account.isWorking;
        for (FormField* field : std::as_const(m_fields))
            field->setLocked(m_isWorking);
        for (PushButton* button : std::as_const(m_buttons)) {
            const bool isPressed = m_pressed && button == m_pressed;
            button->setWorking(m_isWorking && isPressed);
            // What is disabled would hand the focus on to anything.
            if (m_isWorking && !isPressed && button->hasFocus() && m_pressed)
                m_pressed->setFocus(Qt::OtherFocusReason);
        }
        for (PushButton* button : std::as_const(m_buttons))
            button->setEnabled(!m_isWorking || (m_pressed && button == m_pressed));
        for (QWidget* other : std::as_const(m_others)) {
            if (m_isWorking && other->hasFocus() && m_pressed)
                m_pressed->setFocus(Qt::OtherFocusReason);
            other->setEnabled(!m_isWorking);
        }
        if (m_isWorking)
            m_forgotten.clear();
        else
            m_pressed = nullptr;
    }
    tell();
}

void AccountForm::forget()
{
    m_missing.clear();
    m_forgotten = m_message;
    for (FormField* field : std::as_const(m_fields))
        field->setProblem(false);
    tell();
}

void AccountForm::tell()
{
    if (!m_missing.isEmpty())
        return m_notice->tell(NoticeKind::problem, m_missing);
    const bool isStale = m_message == m_forgotten;
    m_notice->tell(m_isProblem ? NoticeKind::problem : NoticeKind::info,
                   isStale ? QString() : m_message);
}
