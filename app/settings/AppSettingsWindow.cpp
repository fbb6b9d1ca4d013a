#include "app/settings/AppSettingsWindow.h"

#include "app/controls/Caption.h"
#include "app/settings/AppearanceDetailPanel.h"
#include "app/settings/LocalAIDetailPanel.h"
#include "app/settings/UpdatesDetailPanel.h"

#include <QVBoxLayout>

using namespace Qt::StringLiterals;

AppSettingsWindow::AppSettingsWindow(QWidget* window)
    : SettingsSheet(u"Ajustes de Moltiva"_s, QSize(860, 572), window),
      m_updates(new UpdatesDetailPanel), m_localAI(new LocalAIDetailPanel),
      m_appearance(new AppearanceDetailPanel)
{
    auto* heading = new QHBoxLayout;
    heading->setContentsMargins(10, 0, 0, 4);
    heading->addWidget(new Caption(Type::caption, &Theme::text2, u"Preferencias del programa"_s));
    column()->insertLayout(1, heading);
    const QList<SettingsPanel*> panels{m_updates, m_localAI, m_appearance};
    for (const AppSettingsRow& each : Vocabulary<AppSettingsDestination>::rows)
        addPage(each.icon, each.title.toString(), panels[int(each.value)]);
}
