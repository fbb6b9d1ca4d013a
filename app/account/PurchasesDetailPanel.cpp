#include "app/account/PurchasesDetailPanel.h"

#include "account/AccountTexts.h"
#include "account/PurchaseTexts.h"
#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/EmptyNote.h"
#include "app/controls/Grounds.h"
#include "app/controls/PanelLayout.h"
#include "app/controls/ProgressBar.h"
#include "app/forms/AccountForm.h"
#include "app/theme/KeyboardFocus.h"

#include <QApplication>
#include <QFocusEvent>
#include <QScrollArea>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace {
constexpr int purchasesMostRows = 200, amountWidth = 120, documentWidth = 112;
}

PurchasesDetailPanel::PurchasesDetailPanel(QWidget* parent)
    : SettingsPanel(u"Historial de compras"_s, u"Facturas y compras de créditos."_s, parent),
      m_progress(new ProgressBar), m_area(scrolled(new QWidget)),
      m_empty(new EmptyNote(
          Icon::purchases, u"Sin compras recientes"_s,
          u"Cuando compres créditos en cualquiera de nuestras apps, aparecerán aquí."_s)),
      m_refresh(new PushButton(Icon::refresh, u"Actualizar historial"_s))
{
    m_progress->setFixedHeight(3);
    m_progress->setAccessibleName(u"Cargando el historial"_s);
    QSizePolicy policy = m_progress->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    policy.setHorizontalPolicy(QSizePolicy::Expanding);
    m_progress->setSizePolicy(policy);
    rows()->setSpacing(Space::small);
    rows()->addWidget(m_progress);
    rows()->addWidget(m_area, 1);
    rows()->addWidget(m_empty, 1);
    foot()->addWidget(m_refresh, 0, Qt::AlignVCenter);
    form()->add(QList{m_refresh});
    connect(m_refresh, &PushButton::clicked, this, [this] {
        if (form()->send(m_refresh))
            load();
    });
    makeReachable();
    showContent();
}

// Lets the scroll area take the focus while it can scroll: with the keyboard, rows without a button
// can be seen only by scrolling.
void PurchasesDetailPanel::makeReachable()
{
    m_area->setAccessibleName(u"Compras"_s);
    m_area->setProperty("focusRadius", Radius::field);
    m_area->installEventFilter(this);
    connect(m_area->verticalScrollBar(), &QScrollBar::rangeChanged, this, [this](int, int last) {
        m_area->setFocusPolicy(last > 0 ? Qt::TabFocus : Qt::NoFocus);
    });
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        if (m_list && now && m_list->isAncestorOf(now))
            showIn(m_area, now);
    });
}

bool PurchasesDetailPanel::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::FocusIn && object == m_area)
        KeyboardFocus::entered(m_area, static_cast<QFocusEvent*>(event));
    else if (event->type() == QEvent::FocusOut && object == m_area)
        KeyboardFocus::left(m_area);
    return SettingsPanel::eventFilter(object, event);
}

void PurchasesDetailPanel::load()
{
    m_isLoading = true;
    showContent();
    Q_EMIT historyRequested();
}

void PurchasesDetailPanel::setLoaded(Loading outcome)
{
    m_isLoading = false;
    m_isKnown |= outcome == Loading::done;
    if (outcome == Loading::done)
        form()->clearNotice();    // a successful loading has no message: the one shown is older
    showContent();
}

void PurchasesDetailPanel::setPurchases(const QList<PurchaseHistoryItem>& purchases)
{
    if (purchases == m_purchases && m_list)
        return;
    m_purchases = purchases;
    form()->remove(m_documents);
    m_documents.clear();
    bringNoticeHome();    // the notice may be in a row that setWidget() deletes
    m_list = new QWidget;
    auto* rows = new QVBoxLayout(m_list);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    for (const PurchaseHistoryItem& purchase :
         purchases.first(std::min<qsizetype>(purchases.size(), purchasesMostRows))) {
        if (rows->count() > 0)
            rows->addWidget(new Divider);
        rows->addWidget(rowOf(purchase));
    }
    if (purchases.size() > purchasesMostRows) {
        rows->addWidget(new Divider);
        rows->addWidget(
            new Caption(Type::small, &Theme::text2,
                        u"Se muestran %1 de %2."_s.arg(purchasesMostRows).arg(purchases.size())));
    }
    rows->addStretch(1);
    form()->add(m_documents);
    m_area->setWidget(m_list);    // deletes the previous list
    showContent();
}

QWidget* PurchasesDetailPanel::rowOf(const PurchaseHistoryItem& purchase)
{
    auto* row = new QWidget;
    auto* columns = new QHBoxLayout(row);
    columns->setContentsMargins(0, 10, 0, 10);
    columns->setSpacing(Space::column);
    const auto lines = [columns](Caption* upper, Caption* lower, int stretch) {
        auto* both = new QVBoxLayout;
        both->setSpacing(0);
        both->addWidget(upper);
        both->addWidget(lower);
        columns->addLayout(both, stretch);
    };
    const QString kind = purchaseKind(purchase);
    const QString detail = shownLine(purchase.detail);
    const QString amount = purchaseAmount(purchase);
    const QString date = shownLine(purchaseDate(purchase));
    row->setAccessibleName(QStringList{kind, detail, amount, date}.join(u", "_s));
    lines(new Caption(Type::heading, &Theme::text, kind),
          new Caption(Type::small, &Theme::text2, detail), 1);
    auto* price = new Caption(Type::heading, &Theme::text, amount);
    auto* day = new Caption(Type::small, &Theme::text2, date);
    for (Caption* caption : {price, day}) {
        caption->setAlignment(Qt::AlignRight);
        caption->setFixedWidth(amountWidth);
    }
    lines(price, day, 0);
    auto* place = new QWidget;
    place->setFixedWidth(documentWidth);
    auto* placed = new QHBoxLayout(place);
    placed->setContentsMargins(0, 0, 0, 0);
    if (purchase.hasDocument()) {
        auto* document =
            new PushButton(Icon::none, u"Ver factura"_s, ButtonKind::neutral, ButtonSize::small);
        document->setAccessibleName(u"%1: %2"_s.arg(document->text(), row->accessibleName()));
        placed->addWidget(document, 0, Qt::AlignRight);
        m_documents.append(document);
        connect(document, &PushButton::clicked, this, [this, document, id = purchase.id] {
            if (form()->send(document))
                Q_EMIT documentRequested(id);
        });
    }
    columns->addWidget(place);
    return row;
}

void PurchasesDetailPanel::showContent()
{
    m_progress->setVisible(m_isLoading);
    m_empty->setVisible(m_purchases.isEmpty() && m_isKnown && !m_isLoading);
    m_area->setVisible(m_empty->isHidden());
}

void PurchasesDetailPanel::showEvent(QShowEvent* event)
{
    SettingsPanel::showEvent(event);
    if (event->spontaneous())
        return;
    form()->clearNotice();
    load();
}
