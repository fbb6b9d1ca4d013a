#include "app/forms/AccountForm.h"

#include "account/AccountTexts.h"
#include "app/controls/Button.h"
#include "app/controls/Notice.h"
#include "app/controls/fields/FormField.h"

AccountForm::AccountForm(Notice* notice, QWidget* parent) : QObject(parent), m_notice(notice) {}

void AccountForm::add(const QList<PushButton*>& buttons)
{
    m_buttons += buttons;
    for (PushButton* button : buttons)
        button->setEnabled(!m_isWorking);
}

void AccountForm::add(CheckedField checked, FormField* field)
{
    m_fields.insert(checked, field);
    connect(field, &FormField::typed, this, [this] {
        m_problem.clear();
        tell();
    });
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

bool AccountForm::accepts(const CheckResult& failure)
{
    markProblem(failure);
    m_problem = failure ? failure->sentence : QString();
    if (FormField* field = failure ? m_fields.value(failure->field) : nullptr) {
        field->edit()->setFocus(Qt::TabFocusReason);
        attend(field);
    }
    tell();
    return !failure;
}

bool AccountForm::send(PushButton* button)
{
    if (m_isWorking)
        return false;
    m_pressed = button;
    attend(button);
    clearNotice();
    return true;
}

void AccountForm::show(const AccountShown& account)
{
    const QString message = shownText(account.message);
    if (std::exchange(m_message, message) != message && !m_pressed)
        attend(nullptr);
    m_isProblem = account.isProblem;
    if (account.isWorking != m_isWorking) {
        m_isWorking = account.isWorking;
        lock();
        if (!m_isWorking) {
            m_pressed = nullptr;
            m_forgotten.clear();    // an outcome equal to the last one must be shown too
        }
    }
    tell();
}

void AccountForm::lock()
{
    // Disabling the focused widget would move the focus to an arbitrary one, so it goes to the
    // pressed button first. Only the keyboard gives these widgets the focus, hence
    // Qt::TabFocusReason.
    const auto keepFocus = [this](const QWidget* from) {
        if (m_isWorking && m_pressed && from != m_pressed && from->hasFocus())
            m_pressed->setFocus(Qt::TabFocusReason);
    };
    for (FormField* field : std::as_const(m_fields))
        field->setLocked(m_isWorking);
    const auto isPressed = [this](const PushButton* button) {
        return m_pressed && button == m_pressed;
    };
    for (PushButton* button : std::as_const(m_buttons)) {
        button->setWorking(m_isWorking && isPressed(button));
        keepFocus(button);
    }
    for (PushButton* button : std::as_const(m_buttons))
        button->setEnabled(!m_isWorking || isPressed(button));
    for (QWidget* other : std::as_const(m_others)) {
        keepFocus(other);
        other->setEnabled(!m_isWorking);
    }
}

void AccountForm::tellProblem(const QString& sentence)
{
    m_problem = sentence;
    tell();
}

void AccountForm::clearNotice()
{
    m_problem.clear();
    m_forgotten = m_message;
    markProblem(std::nullopt);
    tell();
}

void AccountForm::markProblem(const CheckResult& failure)
{
    for (auto each = m_fields.cbegin(); each != m_fields.cend(); ++each)
        each.value()->setProblem(failure && each.key() == failure->field);
}

void AccountForm::tell()
{
    if (!m_problem.isEmpty()) {
        m_notice->tell(NoticeKind::problem, m_problem);
    } else {
        const bool isStale = m_message == m_forgotten;
        m_notice->tell(m_isProblem ? NoticeKind::problem : NoticeKind::info,
                       isStale ? QString() : m_message);
    }
    Q_EMIT told();
}
