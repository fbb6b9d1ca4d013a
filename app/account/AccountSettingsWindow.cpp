#include "app/account/AccountSettingsWindow.h"

#include "account/AccountTexts.h"
#include "app/account/AccountDetailPanel.h"
#include "app/account/CreditsDetailPanel.h"
#include "app/account/DestinationIcons.h"
#include "app/account/PurchasesDetailPanel.h"
#include "app/controls/Caption.h"
#include "app/controls/Grounds.h"
#include "app/settings/StorageDetailPanel.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

AccountSettingsWindow::AccountSettingsWindow(QWidget* window)
    : SettingsSheet(u"Ajustes"_s, QSize(940, 596), window), m_account(new AccountDetailPanel),
      m_credits(new CreditsDetailPanel), m_purchases(new PurchasesDetailPanel),
      m_avatar(new Avatar(28)), m_name(new Caption(Type::heading, &Theme::text)),
      m_email(new Caption(Type::caption, &Theme::text2))
{
    const QList<SettingsPanel*> panels{m_account, m_credits, new StorageDetailPanel, m_purchases};
    for (const AccountPanelRow& each : Vocabulary<AccountPanelDestination>::rows)
        addPage(destinationIcon(each.value), each.title.toString(), panels[int(each.value)]);
    auto* names = new QVBoxLayout;
    names->setSpacing(0);
    for (Caption* caption : {m_name, m_email}) {
        caption->setFixedHeight(16);
        names->addWidget(caption);
    }
    auto* who = new QHBoxLayout;
    who->setContentsMargins(10, 0, 10, 4);
    who->setSpacing(10);
    who->addWidget(m_avatar);
    who->addLayout(names, 1);
    column()->addLayout(who);
}

void AccountSettingsWindow::setAccount(const AccountShown& account)
{
    SettingsSheet::setAccount(account);
    m_avatar->setInitials(initialsOf(account.name));
    m_name->setText(shownLine(account.name));
    m_email->setText(shownLine(account.email));
}
