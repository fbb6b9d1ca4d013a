#include "app/settings/LocalAIDetailPanel.h"

#include "app/controls/Button.h"
#include "app/forms/InfoCard.h"
#include "app/theme/Icons.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

LocalAIDetailPanel::LocalAIDetailPanel(QWidget* parent)
    : SettingsPanel(u"IA local"_s, u"Gestiona el motor local instalado en este equipo."_s, parent),
      m_open(new PushButton(Icon::slotTitle, u"Abrir el panel de texto"_s, ButtonKind::link,
                            ButtonSize::small))
{
    rows()->addWidget(
        new InfoCard(Icon::localEngine, u"Gemma 4 E2B"_s,
                     u"Modelo visual local. Requiere instalación inicial y varios GB libres."_s));
    rows()->addWidget(new InfoCard(
        Icon::info, u"IA local no instalada"_s,
        u"La instalación inicial se hace desde el apartado Local del panel de texto."_s));
    rows()->addWidget(m_open, 0, Qt::AlignLeft);
    rows()->addStretch(1);
    connect(m_open, &PushButton::clicked, this, &LocalAIDetailPanel::textPanelRequested);
}
