#include "app/account/CreditsDetailPanel.h"

#include "account/AccountTexts.h"
#include "account/CreditAmounts.h"
#include "app/account/CustomAmount.h"
#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/CopyButton.h"
#include "app/controls/Grounds.h"
#include "app/controls/Notice.h"
#include "app/controls/PackageCard.h"
#include "app/controls/Paragraph.h"
#include "app/controls/fields/FormField.h"
#include "app/forms/AccountForm.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

CreditsDetailPanel::CreditsDetailPanel(QWidget* parent)
    : SettingsPanel(
          u"Créditos"_s,
          u"Compra créditos para generar textos con IA en la nube cuando esté disponible."_s,
          parent),
      m_balance(new Caption(Type::panelTitle, &Theme::text)), m_custom(new CustomAmount),
      m_pending(new CardGround(CardGround::Look::accent)),
      m_pendingText(new Paragraph(Type::body, &Theme::text)),
      m_copy(new CopyButton(u"Copiar dirección de pago"_s)),
      m_confirm(new PushButton(Icon::check, u"Confirmar compra"_s, ButtonKind::raised,
                               ButtonSize::small)),
      m_hint(new Caption(Type::small, &Theme::text2, u"El pago se completa en tu navegador."_s)),
      m_total(new Caption(Type::heading, &Theme::text)),
      m_buy(new PushButton(Icon::openOutside, u"Comprar con Stripe"_s, ButtonKind::primary))
{
    buildBalance();
    buildChoices();
    buildPending();
    buildFoot();
    connectForm();
    showTotal();
}

void CreditsDetailPanel::buildBalance()
{
    auto* card = new CardGround;
    auto* balance = new QHBoxLayout(card);
    balance->setContentsMargins(16, 11, 16, 11);
    balance->setSpacing(14);
    balance->addWidget(new IconTile(Icon::coin, 40));
    auto* lines = new QVBoxLayout;
    lines->setSpacing(0);
    lines->addWidget(new Caption(Type::small, &Theme::text2, u"Saldo actual"_s));
    lines->addWidget(m_balance);
    balance->addLayout(lines, 1);
    rows()->addWidget(card);
}

void CreditsDetailPanel::buildChoices()
{
    auto* heading = new QHBoxLayout;
    heading->addWidget(new Caption(Type::heading, &Theme::text, u"Comprar créditos"_s), 1);
    heading->addWidget(new Caption(Type::small, &Theme::text2, u"1000 créditos = 1 EUR"_s));
    rows()->addLayout(heading);
    auto* group = new QWidget;    // parent of all choices, which are auto-exclusive among siblings
    auto* choices = new QVBoxLayout(group);
    choices->setContentsMargins(0, 0, 0, 0);
    choices->setSpacing(10);
    auto* packages = new QHBoxLayout;
    packages->setSpacing(10);
    for (const int credits : creditPackages) {
        auto* package = new PackageCard(
            PackageSize::card,
            {.amount = groupedThousands(credits),
             .unit = u"créditos"_s,
             .price = u"%1 EUR"_s.arg(eurosOf(credits)),
             .use = u"%1 exportaciones"_s.arg(groupedThousands(credits / creditsOfAnExport))});
        packages->addWidget(package);
        m_packages.append(package);
        connect(package, &PackageCard::toggled, this, &CreditsDetailPanel::showTotal);
    }
    choices->addLayout(packages);
    choices->addWidget(m_custom->choice());
    choices->addWidget(m_custom);
    rows()->addWidget(group);
    rows()->addStretch(1);
    m_packages.first()->setChecked(true);
    connect(m_custom, &CustomAmount::changed, this, &CreditsDetailPanel::showTotal);
    connect(m_custom, &CustomAmount::submitted, this, &CreditsDetailPanel::buy);
}

void CreditsDetailPanel::buildPending()
{
    auto* pending = new QHBoxLayout(m_pending);
    pending->setContentsMargins(16, 10, 12, 10);
    pending->setSpacing(Space::medium);
    pending->addWidget(new IconView(Icon::info, &Theme::accentText));
    pending->addWidget(m_pendingText, 1, Qt::AlignVCenter);
    pending->addWidget(m_copy);
    pending->addWidget(m_confirm);
    m_pendingText->setMostRows(2);
    rows()->addWidget(m_pending);
}

void CreditsDetailPanel::buildFoot()
{
    footNotice()->addWidget(m_hint);
    auto* total = new Caption(Type::body, &Theme::text2, u"Total"_s);
    foot()->addWidget(total);
    foot()->setSpacing(Space::small);
    foot()->addWidget(m_total);
    foot()->addSpacing(Space::small);
    foot()->addWidget(m_buy);
}

void CreditsDetailPanel::connectForm()
{
    form()->add(QList{m_buy, m_confirm});
    form()->add(CheckedField::amount, m_custom->field());
    form()->add(QList<QWidget*>(m_packages.begin(), m_packages.end()) +
                QList<QWidget*>{m_custom->choice()});
    connect(form(), &AccountForm::told, this, &CreditsDetailPanel::showHint);
    connect(m_buy, &PushButton::clicked, this, &CreditsDetailPanel::buy);
    connect(m_confirm, &PushButton::clicked, this, [this] {
        if (form()->send(m_confirm))
            Q_EMIT checkoutConfirmed();
    });
}

// Shows the message of the account in the banner of a pending purchase, unless the message is a
// problem: the notice shows problems.
void CreditsDetailPanel::setAccount(const AccountShown& account)
{
    m_balance->setText(creditsText(account.balance));
    const QString message = account.isProblem ? QString() : shownText(account.message);
    m_pendingText->setText(message.isEmpty() ? u"Cuando pagues, pulsa Confirmar compra."_s
                                             : message);
    m_copy->setAddress(account.checkoutAddress);
    m_copy->setVisible(!account.checkoutAddress.isEmpty());
    m_pending->setVisible(account.hasPendingCheckout);
    SettingsPanel::setAccount(account);
}

// Hides the notice if it is empty or repeats the banner, and shows the hint in its place.
void CreditsDetailPanel::showHint()
{
    const QString told = notice()->text();
    const bool inBanner = !m_pending->isHidden() && told == m_pendingText->text();
    notice()->setVisible(!told.isEmpty() && !inBanner);
    m_hint->setVisible(notice()->isHidden());
}

std::optional<int> CreditsDetailPanel::credits() const
{
    if (m_custom->isChosen())
        return effectiveCredits(m_custom->field()->text());
    const auto chosen = std::ranges::find_if(m_packages, &PackageCard::isChecked);
    if (chosen == m_packages.end())
        return std::nullopt;
    return creditPackages[std::size_t(chosen - m_packages.begin())];
}

QString CreditsDetailPanel::total() const
{
    return m_total->text();
}

void CreditsDetailPanel::showTotal()
{
    const std::optional<int> amount = credits();
    if (!amount)
        return m_total->setText(u"—"_s);
    const QString euros = u"%1 EUR"_s.arg(eurosOf(*amount));
    m_total->setText(
        m_custom->isChosen() ? u"%1 créditos · %2"_s.arg(groupedThousands(*amount), euros) : euros);
}

void CreditsDetailPanel::buy()
{
    const CheckResult failure =
        m_custom->isChosen() ? checkAmount(m_custom->field()->text()) : std::nullopt;
    if (form()->accepts(failure) && form()->send(m_buy))
        Q_EMIT purchaseRequested(*credits());
}
