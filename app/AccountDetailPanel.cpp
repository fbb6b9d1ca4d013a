#include "app/AccountDetailPanel.h"

#include "app/AccountForm.h"
#include "app/AccountTexts.h"
#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/FormField.h"
#include "app/controls/Grounds.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

AccountDetailPanel::AccountDetailPanel(QWidget* parent)
    : SettingsPanel(u"Cuenta"_s, u"Gestiona tus datos de acceso."_s, parent),
      m_email(new Caption(Type::heading, &Theme::text)),
      m_name(new FormField(u"Nombre"_s, FieldKind::text)),
      m_save(
          new PushButton(Icon::none, u"Guardar nombre"_s, ButtonKind::neutral, ButtonSize::small)),
      m_current(new FormField(u"Contraseña actual"_s, FieldKind::password)),
      m_new(new FormField(u"Nueva contraseña"_s, FieldKind::password)),
      m_repeated(new FormField(u"Repetir nueva contraseña"_s, FieldKind::password)),
      m_change(new PushButton(Icon::lock, u"Actualizar contraseña"_s, ButtonKind::neutral,
                              ButtonSize::small)),
      m_logout(new PushButton(Icon::signOut, u"Cerrar sesión"_s, ButtonKind::neutral,
                              ButtonSize::regular))
{
    auto* card = new CardGround;
    auto* who = new QHBoxLayout(card);
    who->setContentsMargins(16, 12, 16, 12);
    who->setSpacing(14);
    who->addWidget(new IconTile(Icon::account, 40));
    auto* lines = new QVBoxLayout;
    lines->setSpacing(0);
    lines->addWidget(new Caption(Type::small, &Theme::text2, u"Sesión actual"_s));
    lines->addWidget(m_email);
    who->addLayout(lines, 1);
    rows()->addWidget(card);

    auto* name = new QHBoxLayout;
    name->setSpacing(Space::small);
    name->addWidget(m_name, 1);
    name->addWidget(m_save, 0, Qt::AlignBottom);
    rows()->addSpacing(Space::hair);
    rows()->addLayout(name);
    rows()->addSpacing(Space::hair);
    rows()->addWidget(new Divider);
    rows()->addWidget(new Caption(Type::heading, &Theme::text, u"Cambiar contraseña"_s));
    auto* passwords = new QHBoxLayout;
    passwords->setSpacing(Space::medium);
    for (FormField* field : {m_current, m_new, m_repeated}) {
        passwords->addWidget(field, 1);
        connect(field, &FormField::submitted, this, &AccountDetailPanel::changePassword);
    }
    rows()->addLayout(passwords);
    rows()->addWidget(m_change, 0, Qt::AlignLeft);
    rows()->addStretch(1);
    foot()->addWidget(m_logout, 0, Qt::AlignBottom);

    form()->add(QList{m_save, m_change, m_logout});
    form()->add(QList{m_name, m_current, m_new, m_repeated});
    connect(m_name, &FormField::submitted, this, &AccountDetailPanel::saveName);
    connect(m_save, &PushButton::clicked, this, &AccountDetailPanel::saveName);
    connect(m_change, &PushButton::clicked, this, &AccountDetailPanel::changePassword);
    connect(m_logout, &PushButton::clicked, this, [this] {
        form()->send(m_logout);
        Q_EMIT logoutRequested();
    });
}

void AccountDetailPanel::setAccount(const AccountShown& account)
{
    SettingsPanel::setAccount(account);
    m_email->setText(shownLine(account.email));
    m_name->setShown(shownLine(account.fullName));
}

void AccountDetailPanel::clearPasswords()
{
    for (FormField* field : {m_current, m_new, m_repeated})
        field->clear();
}

void AccountDetailPanel::saveName()
{
    form()->send(m_save);
    Q_EMIT profileEdited(m_name->text().simplified());
}

void AccountDetailPanel::changePassword()
{
    const CheckResult failure =
        checkPasswordChange(m_current->text(), m_new->text(), m_repeated->text());
    FormField* field = m_current;
    if (failure && failure->field == CheckedField::password)
        field = m_new;
    else if (failure && failure->field == CheckedField::repeatedPassword)
        field = m_repeated;
    if (!form()->accepts(failure, field))
        return;
    form()->send(m_change);
    Q_EMIT passwordChangeRequested(m_current->text(), m_new->text(), m_repeated->text());
}
