#include "app/copy/EngineRow.h"
#include "app/controls/Button.h"
#include "app/controls/ProgressBar.h"
#include "tests/app/Events.h"

#include <QAccessible>

using namespace Qt::StringLiterals;

namespace {

struct Row : EngineRow {
    Row()
    {
        connect(this, &EngineRow::installRequested, [this] { asked.append(u"install"_s); });
        connect(this, &EngineRow::cancelRequested, [this] { asked.append(u"cancel"_s); });
        connect(this, &EngineRow::licenceRequested, [this] { asked.append(u"licence"_s); });
        connect(this, &EngineRow::settingsRequested, [this] { asked.append(u"settings"_s); });
        resize(311, 44);
        show();
        activateWindow();
        settle();
    }
    void pressAll()
    {
        for (QWidget* stop : focusOrder()) {
            if (stop->isVisible())
                press(*stop, stop->rect().center());
        }
    }
    QStringList asked;
};

EngineShown look(EngineLook look, const QString& sentence)
{
    return {.look = look, .name = u"Gemma 4 E2B"_s, .sentence = sentence};
}

}    // namespace

TEST(EngineRow, eachStateHasItsHeightAndItsButtons)
{
    const QString failure = u"No hay espacio suficiente: hacen falta 4,5 GB libres para instalar "
                            "Gemma 4 E2B."_s;
    EngineShown absent = look(EngineLook::absent, u"No instalado. Descarga: 3,40 GB."_s);
    absent.hasLicence = true;
    EngineShown begun = absent;
    begun.sentence = u"Modelo incompleto: 2,04 GB descargados. Pulsa Instalar para continuar."_s;
    EngineShown installing = look(EngineLook::installing, u"Descargando Gemma..."_s);
    EngineShown mine = installing;
    mine.canCancel = true;
    struct Case {
        EngineShown shown;
        int height;
        QStringList buttons;
    };
    for (const Case& c :
         {Case{look(EngineLook::idle, {}), 44, {}}, Case{absent, 116, {u"licence"_s, u"install"_s}},
          Case{begun, 120, {u"licence"_s, u"install"_s}},
          Case{look(EngineLook::ready, u"Instalado."_s), 44, {u"settings"_s}},
          Case{mine, 44, {u"cancel"_s}}, Case{installing, 44, {}},
          Case{look(EngineLook::failed, failure), 79, {u"install"_s}},
          Case{look(EngineLook::failed, (failure + u'\n').repeated(40)), 121, {u"install"_s}},
          Case{look(EngineLook::cloud, u"10 créditos por imagen."_s), 44, {}}}) {
        Row row;
        row.setShown(c.shown);
        settle();
        EXPECT_EQ(row.height(), c.height) << int(c.shown.look);
        row.pressAll();
        EXPECT_EQ(row.asked, c.buttons) << int(c.shown.look);
        EXPECT_EQ(row.accessibleName(), c.shown.name);
        EXPECT_TRUE(row.accessibleDescription().contains(c.shown.sentence));
        for (const QWidget* part : row.findChildren<QWidget*>())
            EXPECT_TRUE(!part->isVisible() || row.rect().contains(part->geometry()));
    }
}

TEST(EngineRow, whoInstallsByKeyCanStopByKey)
{
    Row row;
    row.setShown(look(EngineLook::absent, u"No instalado."_s));
    auto* install = named<PushButton>(&row, u"Instalar"_s);
    install->setFocus(Qt::TabFocusReason);
    EngineShown installing = look(EngineLook::installing, u"Descargando Gemma..."_s);
    installing.canCancel = true;
    installing.progress = 0.6;
    row.setShown(installing);
    EXPECT_EQ(row.focusWidget(), named<IconButton>(&row, u"Cancelar instalación"_s));
    QAccessibleInterface* bar =
        QAccessible::queryAccessibleInterface(row.findChild<ProgressBar*>());
    EXPECT_EQ(bar->role(), QAccessible::ProgressBar);
    EXPECT_EQ(bar->valueInterface()->currentValue().toInt(), 60);
    row.setShown(look(EngineLook::failed, u"No se ha podido instalar Gemma."_s));
    EXPECT_EQ(row.focusWidget()->accessibleName(), u"Instalar"_s);
}
