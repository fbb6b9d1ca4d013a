#include "app/settings/LocalAIDetailPanel.h"
#include "app/controls/Button.h"
#include "app/settings/InstallStages.h"
#include "tests/app/Events.h"

using namespace Qt::StringLiterals;

namespace {

struct EnginePage : LocalAIDetailPanel {
    EnginePage()
    {
        connect(this, &LocalAIDetailPanel::uninstallPressed, [this] { askUninstall(u"3,6 GB"_s); });
        connect(this, &LocalAIDetailPanel::uninstallConfirmed, [this] { ++uninstalled; });
        resize(600, 540);
        show();
        activateWindow();
        settle();
    }
    QStringList buttons()
    {
        QStringList names;
        for (const auto* button : findChildren<PushButton*>()) {
            if (button->isVisible())
                names.append(button->accessibleName());
        }
        return names;
    }
    void showPresence(LocalAIPresence presence)
    {
        setShown({.presence = presence,
                  .name = u"Gemma 4 E2B"_s,
                  .stages = {u"Preparando"_s, u"Descargando"_s, u"Finalizando"_s},
                  .stage = u"Descargando"_s});
    }
    int uninstalled = 0;
};

}    // namespace

TEST(LocalAIDetailPanel, uninstallingAsksOnceInPlace)
{
    EnginePage page;
    page.showPresence(LocalAIPresence::installed);
    auto* uninstall = named<PushButton>(&page, u"Desinstalar IA local"_s);
    uninstall->setFocus(Qt::TabFocusReason);
    uninstall->click();
    EXPECT_EQ(page.buttons(), (QStringList{u"Desinstalar"_s, u"Cancelar"_s}));
    named<QWidget>(&page, u"¿Desinstalar? Se liberarán 3,6 GB."_s);
    auto* keep = named<PushButton>(&page, u"Cancelar"_s);
    EXPECT_EQ(page.focusWidget(), keep) << "a second press of the key must not uninstall";
    keep->click();
    EXPECT_EQ(page.focusWidget(), uninstall);
    uninstall->click();
    page.hide();
    page.show();
    EXPECT_EQ(page.buttons(), QStringList{u"Desinstalar IA local"_s});
    uninstall->click();
    named<PushButton>(&page, u"Desinstalar"_s)->click();
    EXPECT_EQ(page.uninstalled, 1);
}

TEST(LocalAIDetailPanel, eachPresenceOffersWhatCanBeDone)
{
    EnginePage page;
    EXPECT_EQ(page.buttons(), QStringList{u"Abrir el panel de texto"_s});
    page.showPresence(LocalAIPresence::foreign);
    EXPECT_TRUE(page.buttons().isEmpty());
    page.showPresence(LocalAIPresence::installing);
    const auto* uninstall = named<PushButton>(&page, u"Desinstalar IA local"_s);
    EXPECT_FALSE(uninstall->isEnabled());
    EXPECT_EQ(uninstall->toolTip(), u"Espera a que termine la instalación."_s);
    EXPECT_EQ(page.findChild<InstallStages*>()->accessibleName(),
              u"Preparando: hecho, Descargando: en curso, Finalizando"_s);
}
