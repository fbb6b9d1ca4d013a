#include "app/window/KeysSheet.h"

#include "app/controls/fields/LineField.h"
#include "app/window/StudioMenu.h"
#include "tests/app/Events.h"

#include <QScrollArea>
#include <QScrollBar>

#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QStringList linesOf(const QList<KeyGroup>& groups)
{
    QStringList lines;
    for (const KeyGroup& group : groups) {
        lines.append(group.title);
        for (const KeyRow& row : group.rows)
            lines.append(row.text + u": "_s + row.caps.join(u' '));
    }
    return lines;
}

QList<MenuCommand> commands()
{
    return {
        {.menu = u"Ver", .text = u"Acercar"_s, .keys = u"Ctrl++ Ctrl+=", .topic = KeyTopic::photo},
        {.menu = u"Ver",
         .text = u"Uno"_s,
         .keys = u"Ctrl+1",
         .topic = KeyTopic::places,
         .keyText = u"Ficha"},
        {.menu = u"Ver",
         .text = u"Dos"_s,
         .keys = u"Ctrl+2",
         .topic = KeyTopic::places,
         .keyText = u"Ficha"},
        {.menu = u"Ver",
         .text = u"Tres"_s,
         .keys = u"Ctrl+3",
         .topic = KeyTopic::places,
         .keyText = u"Ficha"},
        {.menu = u"Ver",
         .text = u"Importar imágenes…"_s,
         .keys = u"Ctrl+O",
         .topic = KeyTopic::images},
        {.menu = u"Ver", .text = u"Editar"_s, .shownKey = u"Intro", .topic = KeyTopic::layers},
        {.menu = u"Ver", .text = u"Sin tecla"_s, .topic = KeyTopic::layers},
        {.menu = {},
         .text = u"Editar también"_s,
         .shownKey = u"o F2",
         .topic = KeyTopic::layers,
         .keyText = u"Editar"}};
}

}    // namespace

TEST(KeysSheet, linesAreThoseOfTheCommandsAndTheSearchFindsActionsAndKeys)
{
    const QStringList whole{u"Lote e imágenes"_s,
                            u"Importar imágenes: Ctrl O"_s,
                            u"Textos y formas"_s,
                            u"Editar: Intro o F2"_s,
                            u"Foto"_s,
                            u"Acercar: Ctrl +"_s,
                            u"Formato y panel"_s,
                            u"Ficha: Ctrl 1 a 3"_s};
    QWidget window;
    window.resize(1200, 800);
    window.show();
    KeysSheet sheet(keyGroups(commands()), &window);
    sheet.present();
    EXPECT_EQ(linesOf(sheet.shown()), whole);
    struct Case {
        QString search;
        QStringList found;
    };
    for (const Case& c :
         {Case{u"IMAGENES"_s, {u"Lote e imágenes"_s, u"Importar imágenes: Ctrl O"_s}},
          Case{u"f2"_s, {u"Textos y formas"_s, u"Editar: Intro o F2"_s}},
          Case{u"Ctrl+2"_s, {u"Formato y panel"_s, u"Ficha: Ctrl 1 a 3"_s}},
          Case{u"ctrl+="_s, {u"Foto"_s, u"Acercar: Ctrl +"_s}},
          Case{u"ctrl+o"_s, {u"Lote e imágenes"_s, u"Importar imágenes: Ctrl O"_s}},
          Case{u" ctrl  o "_s, {u"Lote e imágenes"_s, u"Importar imágenes: Ctrl O"_s}},
          Case{u"nada"_s, {}}, Case{QString(), whole}}) {
        sheet.search()->setText(c.search);
        EXPECT_EQ(linesOf(sheet.shown()), c.found) << qPrintable(c.search);
    }
    const auto* bar = sheet.findChild<QScrollArea*>()->verticalScrollBar();
    window.resize(1200, 240);
    ASSERT_TRUE(QTest::qWaitFor([&] { return bar->maximum() > 0; }));
    type(*sheet.search(), Qt::Key_PageDown);
    EXPECT_GT(bar->value(), 0);
    sheet.search()->setText(u"nada"_s);
    EXPECT_TRUE(named<QWidget>(&sheet, u"Ninguna tecla coincide."_s));

    int closed = 0;
    QObject::connect(&sheet, &Sheet::closeRequested, [&closed] { ++closed; });
    type(*sheet.search(), Qt::Key_Escape);
    EXPECT_EQ(closed, 1);
}
