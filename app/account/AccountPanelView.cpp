#include "app/account/AccountPanelView.h"

#include "account/AccountTexts.h"
#include "account/CreditAmounts.h"
#include "app/account/DestinationIcons.h"
#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/CopyButton.h"
#include "app/controls/Grounds.h"
#include "app/controls/Notice.h"
#include "app/controls/PackageCard.h"
#include "app/controls/PanelLayout.h"
#include "app/controls/RowButton.h"
#include "app/controls/fields/FormField.h"
#include "app/controls/popovers/FocusRound.h"
#include "app/forms/AccountForm.h"
#include "app/forms/PasswordForm.h"

#include <QKeyEvent>
#include <QScrollArea>

using namespace Qt::StringLiterals;

namespace {

constexpr int panelWidth = 344, sheetAvatarSide = 40, sheetScrollBar = 12, sectionGap = 12;

// Makes a vertical layout without margins.
QVBoxLayout* rowsOf(QWidget* widget, int spacing)
{
    auto* rows = new QVBoxLayout(widget);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(spacing);
    return rows;
}

PushButton* stretched(Icon icon, const QString& text, ButtonKind kind)
{
    auto* button = new PushButton(icon, text, kind, ButtonSize::small);
    button->setStretched();
    return button;
}

}    // namespace

AccountPanelView::AccountPanelView(QWidget* owner)
    : Popover(owner), m_page(new QWidget), m_area(scrolled(m_page)), m_notice(new Notice(2)),
      m_form(new AccountForm(m_notice, this))
{
    setAccessibleName(u"Cuenta"_s);
    m_area->setParent(this);
    m_area->viewport()->setAutoFillBackground(false);
    m_page->setAutoFillBackground(false);
    auto* rows = rowsOf(m_page, sectionGap);
    rows->addWidget(header());
    m_details = new QWidget;
    auto* details = rowsOf(m_details, sectionGap);
    for (QWidget* section : {profile(), purchase(), password()}) {
        details->addWidget(new Divider);
        details->addWidget(section);
    }
    rows->addWidget(m_details);
    m_notice->standIn(rows);
    rows->addWidget(new Divider);
    rows->addWidget(destinations());
    rows->addStretch(1);
    m_form->add(CheckedField::name, m_fullName);
    m_form->add(QList{m_save, m_buy, m_confirm});
    m_form->add(QList<QWidget*>(m_packages.begin(), m_packages.end()));
    connect(m_form, &AccountForm::attended, this,
            [this](QWidget* control) { m_notice->standBelow(control ? control : m_details); });
    connect(m_form, &AccountForm::told, this, &AccountPanelView::showNotice);
    setDetails(Fold::open);
    setPassword(Fold::folded);
    setAccount({});
}

QWidget* AccountPanelView::header()
{
    auto* section = new QWidget;
    m_avatar = new Avatar(sheetAvatarSide);
    m_name = new Caption(Type::largeSemibold, &Theme::text);
    m_balance = new Caption(Type::small, &Theme::text2);
    m_fold = new IconButton(Icon::fold, u"Ocultar detalles"_s, 32);
    auto* refresh = stretched(Icon::refresh, u"Refrescar"_s, ButtonKind::neutral);
    auto* logout = stretched(Icon::signOut, u"Salir"_s, ButtonKind::neutral);
    auto* names = new QVBoxLayout;
    names->setSpacing(0);
    names->addWidget(m_name);
    names->addWidget(m_balance);
    auto* top = new QHBoxLayout;
    top->setSpacing(Space::medium);
    top->addWidget(m_avatar);
    top->addLayout(names, 1);
    top->addWidget(m_fold);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(Space::small);
    buttons->addWidget(refresh);
    buttons->addWidget(logout);
    auto* rows = rowsOf(section, sectionGap);
    rows->addLayout(top);
    rows->addLayout(buttons);
    m_form->add(QList{refresh, logout});
    connect(m_fold, &IconButton::clicked, this,
            [this] { setDetails(m_details->isHidden() ? Fold::open : Fold::folded); });
    connect(refresh, &PushButton::clicked, this, [this, refresh] {
        if (m_form->send(refresh))
            Q_EMIT refreshRequested();
    });
    connect(logout, &PushButton::clicked, this, [this, logout] {
        if (m_form->send(logout))
            Q_EMIT logoutRequested();
    });
    return section;
}

QWidget* AccountPanelView::profile()
{
    auto* section = new QWidget;
    m_fullName = new FormField(u"Nombre"_s, FieldKind::text);
    m_save =
        new PushButton(Icon::none, u"Guardar perfil"_s, ButtonKind::neutral, ButtonSize::small);
    auto* row = new QHBoxLayout(section);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Space::small);
    row->addWidget(m_fullName, 1);
    row->addWidget(m_save, 0, Qt::AlignBottom);
    connect(m_fullName, &FormField::submitted, this, &AccountPanelView::saveProfile);
    connect(m_save, &PushButton::clicked, this, &AccountPanelView::saveProfile);
    return section;
}

QWidget* AccountPanelView::purchase()
{
    auto* section = new QWidget;
    auto* heading = new QHBoxLayout;
    heading->addWidget(new Caption(Type::heading, &Theme::text, u"Comprar créditos"_s), 1);
    heading->addWidget(new Caption(Type::small, &Theme::text2, u"1000 créditos = 1 EUR"_s));
    auto* group = new QWidget;    // parent of the packages, which are auto-exclusive among siblings
    auto* packages = new QHBoxLayout(group);
    packages->setContentsMargins(0, 0, 0, 0);
    packages->setSpacing(6);
    for (const int credits : creditPackages) {
        auto* package =
            new PackageCard(PackageSize::chip, {.amount = groupedThousands(credits),
                                                .unit = {},
                                                .price = u"%1 EUR"_s.arg(eurosOf(credits)),
                                                .use = {}});
        packages->addWidget(package);
        m_packages.append(package);
    }
    m_packages.first()->setChecked(true);
    m_buy = stretched(Icon::openOutside, u"Abrir Stripe"_s, ButtonKind::primary);
    m_confirm = stretched(Icon::check, u"Confirmar compra"_s, ButtonKind::soft);
    m_copy = new CopyButton(u"Copiar dirección de pago"_s);
    auto* rows = rowsOf(section, Space::small);
    rows->addLayout(heading);
    rows->addWidget(group);
    rows->addWidget(m_buy);
    rows->addWidget(m_confirm);
    rows->addWidget(m_copy, 0, Qt::AlignHCenter);
    connect(m_buy, &PushButton::clicked, this, [this] {
        if (m_form->send(m_buy))
            Q_EMIT purchaseRequested(chosenCredits());
    });
    connect(m_confirm, &PushButton::clicked, this, [this] {
        if (m_form->send(m_confirm))
            Q_EMIT checkoutConfirmed();
    });
    return section;
}

QWidget* AccountPanelView::password()
{
    auto* section = new QWidget;
    m_passwordFold = new RowButton(Icon::lock, u"Contraseña"_s);
    m_passwords = new PasswordForm(
        QBoxLayout::TopToBottom,
        {.current = u"Actual"_s, .changed = u"Nueva"_s, .repeated = u"Repetir nueva"_s},
        stretched(Icon::none, u"Cambiar contraseña"_s, ButtonKind::neutral), m_form);
    auto* rows = rowsOf(section, Space::hair);
    rows->addWidget(m_passwordFold);
    rows->addWidget(m_passwords);
    connect(m_passwordFold, &RowButton::clicked, this,
            [this] { setPassword(m_passwords->isHidden() ? Fold::open : Fold::folded); });
    connect(m_passwords, &PasswordForm::changeRequested, this,
            &AccountPanelView::passwordChangeRequested);
    return section;
}

QWidget* AccountPanelView::destinations()
{
    auto* section = new QWidget;
    auto* rows = rowsOf(section, 0);
    for (const AccountPanelRow& each : Vocabulary<AccountPanelDestination>::rows) {
        auto* button = new RowButton(destinationIcon(each.value), each.title.toString());
        rows->addWidget(button);
        connect(button, &RowButton::clicked, this, [this, destination = each.value] {
            close();
            Q_EMIT destinationChosen(destination);
        });
    }
    auto* settings = new RowButton(Icon::preferences, u"Ajustes de Moltiva"_s);
    rows->addWidget(settings);
    connect(settings, &RowButton::clicked, this, [this] {
        close();
        Q_EMIT settingsRequested();
    });
    return section;
}

void AccountPanelView::present()
{
    const bool byKeyboard = owner()->hasFocus();
    m_form->clearNotice();
    open(QSize(panelWidth - 2 * padding, m_page->sizeHint().height()));
    fit();
    // After a click, leaves the focus to the widget that has it, so that the arrow keys still act
    // on that widget.
    if (byKeyboard)
        takeFocus(m_fold, Qt::TabFocusReason);
}

// Shows the notice. Scrolls to it only after the layout has placed it: it may be outside the
// visible part.
void AccountPanelView::showNotice()
{
    const bool isTold = !m_notice->text().isEmpty();
    m_notice->setVisible(isTold);
    if (isTold)
        QMetaObject::invokeMethod(
            this, [this] { showIn(m_area, m_notice); }, Qt::QueuedConnection);
}

void AccountPanelView::setAccount(const AccountShown& account)
{
    m_avatar->setInitials(initialsOf(account.name));
    m_name->setText(shownLine(account.name));
    m_balance->setText(creditsText(account.balance));
    m_fullName->setShown(shownLine(account.fullName));
    m_confirm->setVisible(account.hasPendingCheckout);
    m_copy->setAddress(account.checkoutAddress);
    m_copy->setVisible(!account.checkoutAddress.isEmpty());
    m_form->show(account);
}

void AccountPanelView::clearPasswords()
{
    m_passwords->clear();
}

void AccountPanelView::setNameSaved()
{
    m_fullName->setSaved();
}

void AccountPanelView::setDetails(Fold fold)
{
    const bool isOpen = fold == Fold::open;
    m_details->setVisible(isOpen);
    m_fold->setMeaning(isOpen ? Icon::fold : Icon::unfold,
                       isOpen ? u"Ocultar detalles"_s : u"Mostrar detalles"_s);
}

void AccountPanelView::setPassword(Fold fold)
{
    m_passwords->setVisible(fold == Fold::open);
    m_passwordFold->setMark(fold == Fold::open ? Icon::fold : Icon::unfold);
    m_passwordFold->setAccessibleDescription(fold == Fold::open ? u"Desplegado"_s : u"Plegado"_s);
}

void AccountPanelView::saveProfile()
{
    const QString name = m_fullName->text().simplified();
    if (m_form->accepts(checkName(name)) && m_form->send(m_save))
        Q_EMIT profileEdited(name);
}

int AccountPanelView::chosenCredits() const
{
    const auto chosen = std::ranges::find_if(m_packages, &PackageCard::isChecked);
    return creditPackages[std::size_t(std::max<qsizetype>(0, chosen - m_packages.begin()))];
}

// Fits the popover to the height of m_page when its layout changes, such as when a section folds.
bool AccountPanelView::eventFilter(QObject* object, QEvent* event)
{
    if (object == m_page && event->type() == QEvent::LayoutRequest)
        fit();
    return Popover::eventFilter(object, event);
}

void AccountPanelView::fit()
{
    resizeContent(QSize(panelWidth - 2 * padding,
                        std::min(m_page->sizeHint().height(), largestContent().height())));
}

void AccountPanelView::resizeEvent(QResizeEvent*)
{
    // Extends the area into the right padding of the popover, where the scroll bar lies.
    m_area->setGeometry(content().adjusted(0, 0, sheetScrollBar, 0));
}

void AccountPanelView::keyPressEvent(QKeyEvent* event)
{
    event->accept();
    pressFocused(event, this);
}
