#include "app/account/AccountDetailPanel.h"

#include "account/AccountTexts.h"
#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/Grounds.h"
#include "app/controls/fields/FormField.h"
#include "app/forms/AccountForm.h"
#include "app/forms/PasswordForm.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

AccountDetailPanel::AccountDetailPanel(QWidget* parent)
    : SettingsPanel(u"Cuenta"_s, u"Gestiona tus datos de acceso."_s, parent),
      m_email(new Caption(Type::heading, &Theme::text)),
      m_name(new FormField(u"Nombre"_s, FieldKind::text)),
      m_save(
          new PushButton(Icon::none, u"Guardar nombre"_s, ButtonKind::neutral, ButtonSize::small)),
      m_passwords(new PasswordForm(QBoxLayout::LeftToRight,
                                   {.current = u"Contraseña actual"_s,
                                    .changed = u"Nueva contraseña"_s,
                                    .repeated = u"Repetir nueva contraseña"_s},
                                   new PushButton(Icon::lock, u"Actualizar contraseña"_s,
                                                  ButtonKind::neutral, ButtonSize::small),
                                   form())),
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
    rows()->addWidget(m_passwords);
    rows()->addStretch(1);
    foot()->addWidget(m_logout, 0, Qt::AlignVCenter);

    form()->add(QList{m_save, m_logout});
    form()->add(CheckedField::name, m_name);
    connect(m_name, &FormField::submitted, this, &AccountDetailPanel::saveName);
    connect(m_save, &PushButton::clicked, this, &AccountDetailPanel::saveName);
    connect(m_passwords, &PasswordForm::changeRequested, this,
            &AccountDetailPanel::passwordChangeRequested);
    connect(m_logout, &PushButton::clicked, this, [this] {
        if (form()->send(m_logout))
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
    m_passwords->clear();
}

void AccountDetailPanel::setNameSaved()
{
    m_name->setSaved();
}

void AccountDetailPanel::saveName()
{
    const QString name = m_name->text().simplified();
    if (form()->accepts(checkName(name)) && form()->send(m_save))
        Q_EMIT profileEdited(name);
}
