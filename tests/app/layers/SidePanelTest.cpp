#include "app/layers/SidePanel.h"
#include "app/controls/Button.h"
#include "app/controls/fields/LineField.h"
#include "app/controls/fields/SliderField.h"
#include "app/controls/fields/SlotEditor.h"
#include "app/controls/fields/Switch.h"
#include "app/controls/fields/TabStrip.h"
#include "app/layers/AddShapeButton.h"
#include "app/layers/ShapeRow.h"
#include "app/layers/ShapesPanel.h"
#include "app/layers/TextPanel.h"
#include "canvas/ItemLayout.h"
#include "model/PublicationItem.h"
#include "model/SocialFormat.h"
#include "tests/app/Events.h"

#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

struct SidePanelTest : ::testing::Test {
    SidePanelTest()
    {
        state.layers = PublicationItem::defaultLayers(GeneratedCopy::placeholder());
        state.selectedLayer = state.layers[0].id;
        panel.resize(344, 760);
        panel.setContent(SidePanel::Content::image);
        text->setState(state);
        panel.show();
        panel.activateWindow();
        settle();
    }
    SlotEditor* editor(const QString& name) { return named<SlotEditor>(text, name); }
    SliderField* slider(const QString& name) { return named<SliderField>(text, name); }

    SidePanel panel;
    TextPanel* text = panel.textPanel();
    ShapesPanel* shapes = panel.shapesPanel();
    TextPanelState state;
};

}    // namespace

TEST_F(SidePanelTest, whatCannotBeChangedSaysWhy)
{
    struct Case {
        bool selected, hasBox;
        QString size, box, shadow;    // why the fields are disabled; empty: enabled
    };
    const QString nothing = u"Selecciona un texto para cambiar su estilo."_s;
    for (const Case& c :
         {Case{true, true, {}, {}, {}},
          Case{true, false, {}, u"La caja está desactivada."_s, u"La sombra es de la caja."_s},
          Case{false, true, nothing, nothing, nothing}}) {
        state.layers[0].hasBox = c.hasBox;
        state.selectedLayer = c.selected ? state.layers[0].id : QUuid();
        text->setState(state);
        for (const auto& [name, reason] : {std::pair(u"Tamaño"_s, c.size),
                                           {u"Radio de la caja"_s, c.box},
                                           {u"Ángulo"_s, c.shadow},
                                           {u"Opacidad de la sombra"_s, c.shadow}}) {
            EXPECT_EQ(slider(name)->isEnabled(), reason.isEmpty()) << qPrintable(name);
            EXPECT_EQ(slider(name)->toolTip(), reason);
            EXPECT_EQ(slider(name)->valueText().isEmpty(), !c.selected) << qPrintable(name);
        }
        EXPECT_EQ(named<Switch>(text, u"Caja"_s)->isEnabled(), c.selected);
        auto* paste = named<IconButton>(text, u"Pegar estilo"_s);
        EXPECT_EQ(paste->toolTip(), c.selected ? u"Copia antes un estilo."_s : nothing);
        EXPECT_FALSE(paste->isEnabled());
    }
}

TEST_F(SidePanelTest, aStateWithTheSameTextLeavesTheEditorAlone)
{
    QStringList edits;
    QObject::connect(text, &TextPanel::textEdited,
                     [&](CopySlot, const QString& typed) { edits.append(typed); });
    SlotEditor* title = editor(u"Título"_s);
    title->setFocus();
    QTextCursor cursor = title->textCursor();
    cursor.setPosition(3);
    cursor.setPosition(7, QTextCursor::KeepAnchor);
    title->setTextCursor(cursor);
    state.layers[0].fontScale = 2;
    text->setState(state);
    EXPECT_EQ(title->textCursor().selectedText(), u"próx"_s);
    QTest::keyClick(title, Qt::Key_X);
    EXPECT_EQ(edits, QStringList{u"Tu ximo momento"_s});
    state.layers[0].text = edits.last();
    text->setState(state);
    EXPECT_EQ(title->textCursor().position(), 4) << "the session's answer to the key";

    state.layers[0].text = u"Tu"_s;    // a text set from outside, as undo does
    text->setState(state);
    EXPECT_EQ(title->text(), u"Tu"_s);
    EXPECT_EQ(edits.size(), 1) << "showing is not an edit";
}

TEST_F(SidePanelTest, aHiddenTextCanBeTypedInto)
{
    QStringList asked;
    QObject::connect(text, &TextPanel::textEdited, [&](CopySlot, const QString& typed) {
        asked.append(typed);
        state.layers[2].isVisible = true;
        state.layers[2].text = typed;
        text->setState(state);
    });
    SlotEditor* paragraph = editor(u"Párrafo"_s);
    EXPECT_FALSE(paragraph->isVisible());
    text->editSlot(CopySlot::tagline);
    EXPECT_TRUE(paragraph->isVisible());
    EXPECT_TRUE(paragraph->hasFocus());
    QTest::keyClicks(paragraph, u"ab"_s);
    EXPECT_EQ(asked, (QStringList{u"a"_s, u"ab"_s}));
}

TEST_F(SidePanelTest, aChangeIsTheSelectedLayerWithNothingElseChanged)
{
    QList<std::pair<TextLayer, Pace>> changes;
    QObject::connect(text, &TextPanel::layerEdited, [&](const TextLayer& layer, Pace pace) {
        changes.append({layer, pace});
    });
    state.layers[0].cornerRadius = 500;    // out of range, as a file may contain it
    state.layers[0].background.alpha = 0.3;
    text->setState(state);
    EXPECT_TRUE(changes.isEmpty());
    QTest::keyClick(slider(u"Opacidad de la sombra"_s), Qt::Key_Home);
    TextLayer expected = state.layers[0];
    expected.shadowOpacity = 0;
    ASSERT_EQ(changes.size(), 2);
    EXPECT_EQ(changes[1], std::pair(expected, Pace::once));
    struct Slider {
        QString name;
        double TextLayerDesign::*number;
        double most;
    };
    for (const Slider& each : {Slider{u"Tamaño"_s, &TextLayer::fontScale, 2.5},
                               Slider{u"Opacidad de la caja"_s, &TextLayer::backgroundOpacity, 1},
                               Slider{u"Radio de la caja"_s, &TextLayer::cornerRadius, 80},
                               Slider{u"Opacidad de la sombra"_s, &TextLayer::shadowOpacity, 1},
                               Slider{u"Desenfoque"_s, &TextLayer::shadowRadius, 50},
                               Slider{u"Distancia"_s, &TextLayer::shadowDistance, 50},
                               Slider{u"Ángulo"_s, &TextLayer::shadowAngle, 360}}) {
        slider(each.name)->enter(each.most - 0.25);
        expected = state.layers[0];
        expected.*each.number = each.most - 0.25;
        EXPECT_EQ(changes.last(), std::pair(expected, Pace::once)) << qPrintable(each.name);
    }
    named<Switch>(text, u"Caja"_s)->click();
    EXPECT_FALSE(changes.last().first.hasBox);
}

TEST_F(SidePanelTest, theSizeSaysWhereTheBoxEndsIt)
{
    const SocialFormat format = SocialFormat::square;
    const auto limitOf = [](const TextLayer& layer) {
        return fontScaleInBox(layer, exportSize(format), designSize(format));
    };
    TextLayer title = state.layers[0];
    title.fontScale = 0.5;
    EXPECT_FALSE(limitOf(title));
    title.fontScale = 2.5;
    const std::optional<double> limit = limitOf(title);
    ASSERT_TRUE(limit);
    EXPECT_LT(*limit, 2.5);
    title.fontScale = *limit;
    EXPECT_FALSE(limitOf(title)) << "at the end itself the text is as large as it wants to be";
    // In a large box, the largest font size of any text is reached before the text fills the box.
    TextLayer large = title;
    large.frame = {0, 0, 1, 1};
    large.text = QString(u"palabras "_s).repeated(60);
    large.fontScale = 2.5;
    large.fontScale = limitOf(large).value_or(0);
    EXPECT_GT(large.fontScale, 0);
    EXPECT_FALSE(limitOf(large));

    EXPECT_EQ(slider(u"Tamaño"_s)->accessibleDescription(), QString());
    state.sizeLimit = limit;
    text->setState(state);
    EXPECT_EQ(slider(u"Tamaño"_s)->accessibleDescription(), u"La caja limita el tamaño"_s);
    EXPECT_EQ(slider(u"Tamaño"_s)->toolTip(), u"La caja limita el tamaño"_s);
}

TEST_F(SidePanelTest, onlyTextFieldsTakeTheFocusFromTheMouse)
{
    for (const QWidget* widget : panel.findChildren<QWidget*>()) {
        const bool typed = qobject_cast<const QTextEdit*>(widget) ||
                           qobject_cast<const QLineEdit*>(widget) ||
                           qobject_cast<const QAbstractScrollArea*>(widget->parentWidget());
        EXPECT_TRUE(typed || !(widget->focusPolicy() & Qt::ClickFocus))
            << widget->metaObject()->className();
    }
}

TEST_F(SidePanelTest, arrowsChangeTheTabAndTellIt)
{
    QList<SideTab> chosen;
    QObject::connect(&panel, &SidePanel::tabChosen, [&](SideTab tab) { chosen.append(tab); });
    panel.setTab(SideTab::shapes);
    EXPECT_TRUE(chosen.isEmpty());
    EXPECT_TRUE(shapes->isVisible());
    auto* strip = panel.findChild<TabStrip*>();
    type(*strip, Qt::Key_Right);
    type(*strip, Qt::Key_Right);
    EXPECT_EQ(chosen, QList<SideTab>{SideTab::templates});
    EXPECT_FALSE(shapes->isVisible());
}

TEST_F(SidePanelTest, shapesAreListedFromTheTopAndALineHasNoFill)
{
    panel.setTab(SideTab::shapes);
    EXPECT_FALSE(shapes->findChild<AddShapeButton*>()->isEnabled()) << "no image";
    const ShapeLayer line(QUuid::createUuid(), ShapeKind::line, {});
    const ShapeLayer circle(QUuid::createUuid(), ShapeKind::circle, {});
    ShapesPanelState shown{.hasImage = true, .shapes = {line, circle}, .selectedLayer = line.id};
    shapes->setState(shown);
    QList<QUuid> wanted;
    QObject::connect(shapes, &ShapesPanel::shapeSelected, [&](QUuid id) { wanted.append(id); });
    const auto rows = shapes->findChildren<ShapeRow*>();
    ASSERT_EQ(rows.size(), 2);
    rows[0]->click();
    EXPECT_EQ(wanted, QList<QUuid>{circle.id});
    auto* hex = named<LineField>(shapes, u"Color hexadecimal del relleno"_s);
    auto* radius = named<SliderField>(shapes, u"Radio de las esquinas"_s);
    EXPECT_FALSE(hex->isEnabled());
    EXPECT_FALSE(radius->isEnabled());
    EXPECT_TRUE(named<SliderField>(shapes, u"Grosor del trazo"_s)->isEnabled());
    EXPECT_EQ(hex->text() + radius->valueText(), QString()) << "values of nothing";
    EXPECT_EQ(rows[0]->accessibleName(), u"Círculo"_s);
    const ShapeLayer other(QUuid::createUuid(), ShapeKind::circle, {});
    shown.shapes = {line, circle, other};
    shapes->setState(shown);
    EXPECT_EQ(shapes->findChildren<ShapeRow*>()[0]->accessibleName(), u"Círculo 2"_s);
    EXPECT_EQ(shapes->findChildren<ShapeRow*>()[1]->deleteButton()->accessibleName(),
              u"Eliminar Círculo 1"_s);

    ShapeLayer box(QUuid::createUuid(), ShapeKind::rectangle, {});
    box.fill.alpha = 0.5;
    shown.shapes = QList<ShapeLayer>(100000, box);    // as many as a hostile file may contain
    shown.selectedLayer = box.id;
    shapes->setState(shown);
    EXPECT_LT(shapes->findChildren<ShapeRow*>().size(), 100);
    QList<ShapeLayer> changes;
    QObject::connect(shapes, &ShapesPanel::shapeEdited,
                     [&](const ShapeLayer& shape, Pace) { changes.append(shape); });
    hex->setFocus();
    hex->setText(u"nada"_s);
    type(*hex, Qt::Key_Return);
    EXPECT_TRUE(changes.isEmpty());
    hex->setText(u"#0000ff"_s);
    hex->setFocus();
    type(*hex, Qt::Key_Return);
    box.fill = {0, 0, 1, 0.5};
    EXPECT_EQ(changes, QList<ShapeLayer>{box});
}

TEST_F(SidePanelTest, theCaptionKeepsItsHeightUntilItIsEdited)
{
    state.caption = u"Una frase larga que necesita varias líneas en el panel. "_s.repeated(12);
    text->setState(state);
    SlotEditor* caption = editor(u"Texto de la publicación"_s);
    const int line = row(Type::body).lineHeight;
    EXPECT_EQ(caption->height(), 2 * line) << "a low panel";
    panel.resize(344, 900);
    settle();
    EXPECT_EQ(caption->height(), 3 * line);
    text->editCaption();
    EXPECT_EQ(caption->height(), 5 * line);
    caption->clearFocus();
    EXPECT_EQ(caption->height(), 3 * line);
    state.caption = u"Corta"_s;
    text->setState(state);
    EXPECT_EQ(caption->height(), 3 * line) << "what is below must not move with the image";
    state.caption = u"x"_s.repeated(2201);
    text->setState(state);
    EXPECT_TRUE(caption->accessibleDescription().startsWith(u"2.201 de 2.200"_s));
}

TEST_F(SidePanelTest, onlyTheSelectedTextOffersAnotherProposal)
{
    QList<CopySlot> asked;
    QObject::connect(text, &TextPanel::proposalRequested,
                     [&](CopySlot slot) { asked.append(slot); });
    const auto shown = [this] {
        QList<IconButton*> buttons;
        for (auto* button : text->findChildren<IconButton*>()) {
            if (button->accessibleName() == u"Otra propuesta"_s && button->isVisible())
                buttons.append(button);
        }
        return buttons;
    };
    state.selectedLayer = state.layers[2].id;
    text->setState(state);
    ASSERT_EQ(shown().size(), 1);
    shown().first()->click();
    EXPECT_EQ(asked, QList<CopySlot>{state.layers[2].slot});
    state.proposalRefusal = u"Espera a que termine la generación."_s;
    text->setState(state);
    EXPECT_FALSE(shown().first()->isEnabled());
    EXPECT_EQ(shown().first()->toolTip(), state.proposalRefusal);
}
