#include "app/settings/LocalAIDetailPanel.h"

#include "app/controls/Badge.h"
#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/Notice.h"
#include "app/controls/Paragraph.h"
#include "app/controls/ProgressBar.h"
#include "app/forms/InfoCard.h"
#include "app/settings/InstallStages.h"
#include "model/CopyGenerationMode.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int workBar = 8, engineTile = 44;

#if defined(Q_OS_MACOS)
const QString engineSentence = u"Gestiona el motor local instalado en este Mac."_s;
#else
const QString engineSentence = u"Gestiona el motor local instalado en este equipo."_s;
#endif

QString badgeOf(LocalAIPresence presence)
{
    switch (presence) {
    case LocalAIPresence::absent:
        return {};
    case LocalAIPresence::installing:
        return u"Instalando"_s;
    case LocalAIPresence::installed:
        return u"Instalado"_s;
    case LocalAIPresence::uninstalling:
        return u"Desinstalando"_s;
    case LocalAIPresence::foreign:
        return u"Configurado"_s;
    }
    Q_UNREACHABLE();
}

}    // namespace

LocalAIDetailPanel::LocalAIDetailPanel(QWidget* parent)
    : SettingsPanel(u"IA local"_s, engineSentence, parent),
      m_name(new Caption(Type::largeSemibold, &Theme::text)),
      m_badge(new Badge(BadgeKind::accent, Icon::none)),
      m_about(new Paragraph(Type::small, &Theme::text2)),
      m_message(new Caption(Type::bodyMedium, &Theme::text)),
      m_percent(new Caption(Type::bodyMedium, &Theme::text)), m_work(new QWidget),
      m_bar(new ProgressBar), m_stages(new InstallStages),
      m_state(new InfoCard(Icon::info, {}, {})), m_failure(new Paragraph(Type::small, &Theme::err)),
      m_open(new PushButton(Icon::slotTitle, u"Abrir el panel de texto"_s, ButtonKind::link,
                            ButtonSize::small)),
      m_note(new Paragraph(Type::small, &Theme::text2)),
      m_uninstall(new PushButton(Icon::discard, u"Desinstalar IA local"_s)),
      m_confirm(new PushButton(Icon::discard, u"Desinstalar"_s)),
      m_keep(new PushButton(Icon::none, u"Cancelar"_s))
{
    rows()->addWidget(engineCard());
    rows()->addWidget(m_stages);
    rows()->addWidget(m_state);
    rows()->addWidget(m_failure);
    m_open->setFlush();
    rows()->addWidget(m_open, 0, Qt::AlignLeft);
    rows()->addStretch(1);
    buildFoot();
    connect(m_open, &PushButton::clicked, this, &LocalAIDetailPanel::textPanelRequested);
    connect(m_uninstall, &PushButton::clicked, this, &LocalAIDetailPanel::uninstallPressed);
    connect(m_keep, &PushButton::clicked, this, [this] { showQuestion(false); });
    connect(m_confirm, &PushButton::clicked, this, [this] {
        showQuestion(false);
        Q_EMIT uninstallConfirmed();
    });
    m_shown.presence = LocalAIPresence::foreign;    // differs from the state shown next
    setShown({.name = row(LocalAIEngine::gemma4E2B).title.toString()});
}

QWidget* LocalAIDetailPanel::engineCard()
{
    auto* card = new CardGround;
    auto* parts = new QVBoxLayout(card);
    parts->setContentsMargins(16, 16, 16, 16);
    parts->setSpacing(Space::column);
    auto* head = new QHBoxLayout;
    head->setSpacing(14);
    head->addWidget(new IconTile(Icon::localEngine, engineTile), 0, Qt::AlignTop);
    auto* lines = new QVBoxLayout;
    lines->setSpacing(2);
    auto* title = new QHBoxLayout;
    title->setSpacing(Space::small);
    title->addWidget(m_name);
    title->addWidget(m_badge);
    title->addStretch(1);
    lines->addLayout(title);
    lines->addWidget(m_about);
    head->addLayout(lines, 1);
    parts->addLayout(head);
    auto* work = new QVBoxLayout(m_work);
    work->setContentsMargins(0, 0, 0, 0);
    work->setSpacing(Space::small);
    auto* words = new QHBoxLayout;
    words->addWidget(m_message, 1);
    words->addWidget(m_percent);
    work->addLayout(words);
    m_bar->setFixedHeight(workBar);
    m_bar->setAccessibleName(u"Instalación"_s);
    work->addWidget(m_bar);
    parts->addWidget(m_work);
    return card;
}

void LocalAIDetailPanel::buildFoot()
{
    notice()->hide();
    footNotice()->addWidget(m_note, 0, Qt::AlignVCenter);
    for (PushButton* button : {m_uninstall, m_confirm, m_keep})
        foot()->addWidget(button, 0, Qt::AlignBottom);
}

void LocalAIDetailPanel::setShown(const LocalAIShown& shown)
{
    if (shown == m_shown)
        return;
    const LocalAIPresence before = m_shown.presence;
    m_shown = shown;
    const LocalAIPresence presence = shown.presence;
    const bool isInstalling = presence == LocalAIPresence::installing;
    const bool isAbsent = presence == LocalAIPresence::absent;
    m_name->setText(shown.name);
    m_badge->setText(badgeOf(presence));
    m_about->setText(shown.about);
    m_about->setVisible(!shown.about.isEmpty());
    m_work->setVisible(isInstalling);
    m_message->setText(shown.message);
    m_percent->setText(shown.progress ? u"%1 %"_s.arg(qRound(*shown.progress * 100)) : QString());
    m_bar->setValue(shown.progress);
    m_stages->setVisible(isInstalling);
    m_stages->setStages(shown.stages, shown.stage, shown.amount);
    m_state->setVisible(!isInstalling);
    if (isAbsent)
        m_state->setTexts(
            u"IA local no instalada"_s,
            u"La instalación inicial se hace desde el apartado Local del panel de texto."_s);
    else
        m_state->setTexts(u"Estado"_s, shown.status);
    m_failure->setText(shown.failure);
    m_failure->setVisible(isAbsent && !shown.failure.isEmpty());
    m_open->setVisible(isAbsent);
    if (presence != before)
        m_isAsked = false;
    showFoot();
}

void LocalAIDetailPanel::askUninstall(const QString& freed)
{
    m_note->setText(u"¿Desinstalar? Se liberarán %1."_s.arg(freed));
    showQuestion(true);
}

void LocalAIDetailPanel::showQuestion(bool isAsked)
{
    m_isAsked = isAsked;
    const QWidget* focused = window()->focusWidget();
    const bool hadFocus = focused == m_uninstall || focused == m_confirm || focused == m_keep;
    showFoot();
    if (hadFocus)
        (isAsked ? m_keep : m_uninstall)->setFocus(Qt::OtherFocusReason);
}

void LocalAIDetailPanel::showFoot()
{
    const LocalAIPresence presence = m_shown.presence;
    const bool isInstalling = presence == LocalAIPresence::installing;
    if (!m_isAsked)
        m_note->setText(isInstalling
                            ? u"Puedes seguir editando mientras se instala. Si cierras Moltiva, la "
                              "descarga continuará donde estaba al volver a instalar."_s
                            : QString());
    const bool canBeAsked = isInstalling || presence == LocalAIPresence::installed ||
                            presence == LocalAIPresence::uninstalling;
    m_uninstall->setVisible(canBeAsked && !m_isAsked);
    m_uninstall->setEnabled(!isInstalling);
    m_uninstall->setWorking(presence == LocalAIPresence::uninstalling);
    m_uninstall->setToolTip(isInstalling ? u"Espera a que termine la instalación."_s : QString());
    m_confirm->setVisible(m_isAsked);
    m_keep->setVisible(m_isAsked);
}

// The question does not wait behind a closed sheet.
void LocalAIDetailPanel::hideEvent(QHideEvent* event)
{
    SettingsPanel::hideEvent(event);
    showQuestion(false);
}
