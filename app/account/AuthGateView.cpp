#include "app/account/AuthGateView.h"

#include "app/account/LoginView.h"
#include "app/controls/AccessibleRole.h"
#include "app/controls/Caption.h"
#include "app/controls/Mark.h"
#include "app/controls/PanelLayout.h"
#include "app/controls/Spinner.h"
#include "app/controls/popovers/FocusRound.h"
#include "app/theme/Painting.h"
#include "app/theme/PointerEvents.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int gateMarkSide = 56, gateSpinnerSide = 24;

QWidget* checkingPage()
{
    auto* page = new QWidget;
    auto* rows = new QVBoxLayout(page);
    rows->setSpacing(0);
    rows->addStretch(1);
    rows->addWidget(new Mark(gateMarkSide), 0, Qt::AlignHCenter);
    rows->addSpacing(28);
    rows->addWidget(new Spinner(gateSpinnerSide), 0, Qt::AlignHCenter);
    rows->addSpacing(16);
    rows->addWidget(new Caption(Type::body, &Theme::text2, u"Comprobando sesión..."_s), 0,
                    Qt::AlignHCenter);
    rows->addStretch(1);
    return page;
}

}    // namespace

AuthGateView::AuthGateView(QWidget* window)
    : QWidget(window), m_pages(new QStackedWidget(this)), m_login(new LoginView)
{
    setAccessibleRole(this, QAccessible::Pane);
    setAccessibleName(u"Acceso a Moltiva"_s);
    setFocusPolicy(Qt::ClickFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_pages->addWidget(checkingPage());
    // A small window has no room for all fields of a new account.
    QScrollArea* area = scrolled(m_login);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_pages->addWidget(area);
    connect(qApp, &QApplication::focusChanged, area, [area](QWidget*, QWidget* now) {
        if (now && area->isAncestorOf(now))
            showIn(area, now);
    });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_pages);
}

void AuthGateView::setState(Gate state)
{
    if (state == m_state)
        return;
    m_state = state;
    setVisible(state != Gate::open);
    if (state == Gate::open)
        return;
    raise();
    m_pages->setCurrentIndex(state == Gate::checking ? 0 : 1);
    if (state == Gate::signedOut)
        m_login->focusFirst();
    else
        setFocus(Qt::OtherFocusReason);
}

bool AuthGateView::event(QEvent* event)
{
    if (!isPointerEvent(event))
        return QWidget::event(event);
    event->accept();
    return true;
}

bool AuthGateView::focusNextPrevChild(bool next)
{
    // Qt also calls this while it hides the gate: then no widget in the gate can take the focus.
    if (!isVisible())
        return QWidget::focusNextPrevChild(next);
    moveFocusRound(this, next);
    return true;
}

void AuthGateView::keyPressEvent(QKeyEvent* event)
{
    event->accept();    // keeps the key from the window
    pressFocused(event, this);
}

void AuthGateView::paintEvent(QPaintEvent*)
{
    QPainter(this).fillRect(rect(), themeOf(this).panel);
}

void AuthGateView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    Q_EMIT appeared();
}
