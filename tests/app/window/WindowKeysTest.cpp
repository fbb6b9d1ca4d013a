#include "app/controls/fields/SegmentedControl.h"
#include "app/controls/fields/SliderField.h"
#include "app/controls/popovers/FontField.h"
#include "app/controls/popovers/Swatch.h"
#include "app/export/ExportButtons.h"
#include "app/layers/SlotCard.h"
#include "app/layers/TextPanel.h"
#include "app/presets/TemplatesBinding.h"
#include "app/settings/AppSettingsWindow.h"
#include "app/window/KeysSheet.h"
#include "app/window/StudioMenu.h"
#include "platform/NotificationCenter.h"
#include "tests/app/Events.h"
#include "tests/app/Spoken.h"
#include "tests/app/window/MainWindowFixture.h"

#include <QAccessible>
#include <QAction>
#include <QMenu>

using namespace Qt::StringLiterals;

// Clicking tiles, buttons and segments leaves the focus in the objective's field, so its edit does
// not end.
TEST_F(MainWindowTest, anObjectiveBeingTypedSurvivesOtherChanges)
{
    session.load({photos(3)});
    settle();
    window.activateWindow();
    objective()->setFocus();
    QTest::keyClicks(objective(), u"Rebajas"_s);
    session.selectSingleIndex(2);
    session.setFormat(SocialFormat::square);
    EXPECT_EQ(objective()->text(), u"Rebajas"_s);
    QTest::keyClick(objective(), Qt::Key_Escape);
    EXPECT_EQ(session.batch().objective, u"Rebajas"_s);
    session.setObjective(u"Otra"_s);
    EXPECT_EQ(objective()->text(), u"Otra"_s);
}

TEST_F(MainWindowTest, keysChangeTheImageUnlessAFieldHasThem)
{
    session.load({photos(3)});
    settle();
    window.activateWindow();
    QTest::keyClick(&window, Qt::Key_Right);
    EXPECT_EQ(session.batch().selectedIndex, 1);
    QTest::keyClick(&window, Qt::Key_PageDown);
    EXPECT_EQ(session.batch().selectedIndex, 2);
    QTest::keyClick(&window, Qt::Key_Left);
    EXPECT_EQ(session.batch().selectedIndex, 1);
    QTest::keyClick(&window, Qt::Key_Right);
    objective()->setFocus();
    QTest::keyClicks(objective(), u"ab"_s);
    QTest::keyClick(objective(), Qt::Key_Left);
    QTest::keyClick(objective(), Qt::Key_Backspace);
    EXPECT_EQ(objective()->text(), u"b"_s);
    EXPECT_EQ(session.batch().selectedIndex, 2);
    QTest::keyClick(objective(), Qt::Key_PageUp);
    EXPECT_EQ(session.batch().selectedIndex, 1) << "from anywhere";
    QTest::keyClick(&window, Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(session.batch().items.size(), 2);
}

// The pointer, the keys and the fields of the panel end with the same frame.
TEST_F(MainWindowTest, aLayerGoesToTheSamePlaceByPointerKeysAndNumbers)
{
    session.load({photos(2)});
    settle();
    window.activateWindow();
    session.selectAll();
    session.selectLayer(current().layers[0].id);
    canvas()->setFocus();
    const CodableRect start{0.05, 0.1, 0.4, 0.2};
    session.setLayerFrame(start, Pace::once);
    const auto frames = [this] {
        return std::pair(current().layers[0].frame, session.batch().items[1].layers[0].frame);
    };
    CanvasInteraction& gestures = canvas()->interaction();
    const QSizeF size = gestures.canvasSize();
    const QSizeF pixel(size.width() / 1080, size.height() / 1350);
    const QPointF inside(0.2 * size.width(), 0.2 * size.height());
    gestures.press(inside);
    gestures.drag(inside + QPointF(11 * pixel.width(), -1 * pixel.height()));
    gestures.release();
    const auto dragged = frames();
    session.setLayerFrame(start, Pace::once);
    QTest::keyClick(canvas(), Qt::Key_Right, Qt::AltModifier | Qt::ShiftModifier);
    QTest::keyClick(canvas(), Qt::Key_Right, Qt::AltModifier);
    QTest::keyClick(canvas(), Qt::Key_Up, Qt::AltModifier);
    const auto pressed = frames();
    session.setLayerFrame(start, Pace::once);
    const auto field = [this](const QString& name) {
        SliderField* found = nullptr;
        for (SliderField* each : panel()->textPanel()->findChildren<SliderField*>())
            found = each->accessibleName() == name ? each : found;
        return found;
    };
    EXPECT_EQ(field(u"Posición horizontal"_s)->valueText(), u"54"_s);
    field(u"Posición horizontal"_s)->enter(54 + 11);
    field(u"Posición vertical"_s)->enter(135 - 1);
    const auto typed = frames();
    for (const auto& [name, got] :
         {std::pair("pointer", dragged), std::pair("keys", pressed), std::pair("fields", typed)}) {
        EXPECT_NEAR(got.first.x, start.x + 11 / 1080.0, 1e-9) << name;
        EXPECT_NEAR(got.first.y, start.y - 1 / 1350.0, 1e-9) << name;
        EXPECT_EQ(got.first, got.second) << name;
    }
    QTest::keyClick(canvas(), Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_NEAR(current().layers[0].frame.height, start.height + 1 / 1350.0, 1e-9);
    EXPECT_EQ(field(u"Alto"_s)->valueText(), u"271"_s);
    EXPECT_EQ(session.batch().selectedIndex, 0) << "no other image";

    // Elsewhere these keys keep their own meaning.
    const auto rest = frames();
    objective()->setFocus();
    QTest::keyClicks(objective(), u"uno dos"_s);
    QTest::keyClick(objective(), Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
    QTest::keyClick(objective(), Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(objective()->selectedText(), u"dos"_s);
    EXPECT_EQ(frames(), rest);
}

TEST_F(MainWindowTest, anEditorKeepsItsKeysAndFollowsTheImage)
{
    session.load({photos(3)});
    settle();
    SlotEditor* editor = editSelected();
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->textCursor().selectedText(), current().layers[0].text);
    QTest::keyClicks(editor, u"Hola"_s);
    QTest::keyClick(editor, Qt::Key_Left);
    QTest::keyClick(editor, Qt::Key_Delete);
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_EQ(current().layers[0].text, u"Hol\n"_s);
    EXPECT_TRUE(current().layers[0].isVisible);
    EXPECT_EQ(session.batch().selectedIndex, 0);

    QTest::keyClick(editor, Qt::Key_Tab);
    editor = qobject_cast<SlotEditor*>(QApplication::focusWidget());
    ASSERT_TRUE(editor);
    QTest::keyClick(editor, Qt::Key_PageDown);
    EXPECT_EQ(session.batch().selectedIndex, 1);
    EXPECT_EQ(session.batch().selectedLayerID, current().layers[1].id);
    EXPECT_EQ(QApplication::focusWidget(), editor);
    EXPECT_EQ(editor->textCursor().selectedText(), current().layers[1].text);
    QTest::keyClick(editor, Qt::Key_Backspace, Qt::AltModifier);
    EXPECT_TRUE(current().layers[1].isVisible);
    session.nextItem();
    QTest::keyClicks(editor, u"Otra cosa"_s);
    QTest::keyClick(editor, Qt::Key_PageDown);    // there is no next image
    EXPECT_EQ(editor->textCursor().selectedText(), QString());
    QTest::keyClick(editor, Qt::Key_Escape);
    EXPECT_EQ(QApplication::focusWidget(), canvas());
    session.selectLayer(current().layers[1].id);
    QTest::keyClick(canvas(), Qt::Key_Delete);
    EXPECT_FALSE(current().layers[1].isVisible);
    session.selectLayer(current().layers[0].id);
    QTest::keyClick(&window, Qt::Key_Backspace);
    EXPECT_FALSE(current().layers[0].isVisible);
}

TEST_F(MainWindowTest, undoingActsOnTheBatchAlsoInsideFields)
{
    session.load({photos(2)});
    settle();
    window.activateWindow();
    objective()->setFocus();
    QTest::keyClicks(objective(), u"Rebajas"_s);
    QTest::keyClick(objective(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(session.batch().objective, QString());
    EXPECT_EQ(objective()->text(), QString());
    QTest::qWait(1);
    for (const auto& redo : {QKeyCombination(Qt::ControlModifier | Qt::ShiftModifier, Qt::Key_Z),
                             QKeyCombination(Qt::ControlModifier, Qt::Key_Y)}) {
        QTest::keyClick(objective(), redo.key(), redo.keyboardModifiers());
        EXPECT_EQ(session.batch().objective, u"Rebajas"_s);
        QCoreApplication::processEvents();
        session.undo();
        QCoreApplication::processEvents();
        EXPECT_EQ(session.batch().objective, QString());
    }

    // The top bar shows the format that undo has brought back.
    const auto* formats = window.shell()->topBar()->findChild<SegmentedControl*>();
    session.setFormat(SocialFormat::square);
    EXPECT_EQ(formats->current(), int(SocialFormat::square));
    session.undo();
    EXPECT_EQ(formats->current(), int(SocialFormat::carouselPortrait));
    QTest::qWait(1);

    SlotEditor* editor = editSelected();
    ASSERT_TRUE(editor);
    const QString before = current().layers[0].text;
    QTest::keyClicks(editor, u"Hola"_s);
    QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(current().layers[0].text, before);
    EXPECT_EQ(editor->text(), before);
}

// As AppDelegate posts them for the keys.
TEST_F(MainWindowTest, undoingIsAskedForByNotificationsAndReachesOpenFieldsElse)
{
    session.load({photos(2)});
    settle();
    window.activateWindow();
    session.setFormat(SocialFormat::square);
    notificationCenter().post(Notification::undoRequested);
    EXPECT_EQ(session.batch().format, SocialFormat::carouselPortrait);
    notificationCenter().post(Notification::redoRequested);
    EXPECT_EQ(session.batch().format, SocialFormat::square);

    session.setAppSettingsPresented(true);
    notificationCenter().post(Notification::undoRequested);
    EXPECT_EQ(session.batch().format, SocialFormat::square) << "a sheet covers the studio";
    session.setAppSettingsPresented(false);

    session.setAccountPanel(AccountPanelDestination::account);
    QLineEdit* typed = nullptr;
    for (QLineEdit* edit : window.findChildren<QLineEdit*>()) {
        if (edit->accessibleName() == u"Nombre"_s && edit->isVisible())
            typed = edit;
    }
    ASSERT_TRUE(typed);
    typed->setFocus();
    const QString before = typed->text();
    QTest::keyClicks(typed, u"X"_s);
    notificationCenter().post(Notification::undoRequested);
    EXPECT_EQ(typed->text(), before);
    EXPECT_EQ(session.batch().format, SocialFormat::square);
}

TEST_F(MainWindowTest, tabGoesFromTheBarThroughTheColumnAndTheCanvasToThePanel)
{
    session.load({photos(2)});
    settle();
    panel()->setTab(SideTab::text);
    window.activateWindow();
    canvas()->setFocus();
    QStringList stops;
    do {
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
        stops.append(window.focusWidget()->accessibleName());
    } while (window.focusWidget() != canvas() && stops.size() < 100);
    const auto first = [&stops](const QString& name) { return stops.indexOf(name); };
    EXPECT_EQ(first(u"Imagen siguiente"_s), 0);
    EXPECT_LT(first(u"CTA"_s), first(u"Ángulo"_s));
    EXPECT_EQ(first(u"Guardar estilo"_s), first(u"Ángulo"_s) + 1);
    EXPECT_EQ(first(u"Menú"_s), first(u"Guardar estilo"_s) + 1);
    EXPECT_LT(first(u"Menú"_s), first(u"Lote"_s));
    EXPECT_LT(first(u"Lote"_s), first(u"Objetivo de la campaña"_s));
    // "Generar" is disabled, because nothing writes texts here.
    EXPECT_EQ(first(u"Objetivo de la campaña"_s), stops.size() - 3);
    EXPECT_EQ(first(u"Modo Local, 0 créditos por imagen"_s), stops.size() - 2);
}

TEST_F(MainWindowTest, theTabFollowsWhatIsPressedButNotAChangeOfImage)
{
    session.load({photos(2)});
    settle();
    panel()->setTab(SideTab::text);
    session.addShape(ShapeKind::rectangle);
    ShapeLayer shape = current().shapeLayers[0];
    shape.frame = {0.1, 0.85, 0.2, 0.1};    // below the texts
    session.editShape(shape);
    session.selectLayer(current().layers[0].id);
    EXPECT_EQ(panel()->tab(), SideTab::text);
    const auto pressAt = [this](double x, double y) {
        const QRect box = canvas()->canvasRect();
        QTest::mouseClick(canvas(), Qt::LeftButton, Qt::NoModifier,
                          box.topLeft() + QPoint(int(x * box.width()), int(y * box.height())));
    };
    pressAt(0.2, 0.9);
    EXPECT_EQ(session.batch().selectedLayerID, shape.id);
    EXPECT_EQ(panel()->tab(), SideTab::shapes);
    QTest::keyClick(canvas(), Qt::Key_Right);
    EXPECT_EQ(session.batch().selectedLayerID, current().layers[0].id);
    EXPECT_EQ(panel()->tab(), SideTab::shapes);
    pressAt(0.5, 0.38);
    EXPECT_EQ(panel()->tab(), SideTab::text);
    QTest::keyClick(&window, Qt::Key_3, Qt::ControlModifier);
    pressAt(0.5, 0.38);
    EXPECT_EQ(panel()->tab(), SideTab::templates);
    pressAt(0.02, 0.02);
    EXPECT_TRUE(session.batch().selectedLayerID.isNull());
}

// In the tree that a screen reader walks, every control has a role, and a name of its own on its
// screen. The text panel is read from top to bottom. The layers are children of the canvas and can
// be selected in that tree.
TEST_F(MainWindowTest, everythingHasANameAndARoleForAScreenReader)
{
    const auto expectClear = [this](const char* screen) {
        EXPECT_EQ(unclearControls(window), "") << screen;
    };
    expectClear("empty");
    session.load({photos(2)});
    settle();
    session.addShape(ShapeKind::rectangle);
    session.addShape(ShapeKind::rectangle);
    window.templates().saved().saveTemplate(current(), session.batch().format);
    window.templates().saved().saveStyle(current().layers[0]);
    settle();
    for (const SideTab tab : {SideTab::text, SideTab::shapes, SideTab::templates}) {
        panel()->setTab(tab);
        settle();
        expectClear("a tab of the panel");
    }
    panel()->setTab(SideTab::text);
    session.selectLayer(current().layers[0].id);
    settle();
    for (Control* opener : {static_cast<Control*>(panel()->findChild<Swatch*>()),
                            static_cast<Control*>(panel()->findChild<FontField*>())}) {
        opener->click();
        expectClear("a popover");
        opener->click();
    }
    session.setAppSettingsPresented(true);
    for (const auto page : allCases<AppSettingsDestination>()) {
        window.findChild<AppSettingsWindow*>()->setDestination(page);
        expectClear("the settings");
    }
    session.setAppSettingsPresented(false);
    window.menu()->action(u"Atajos de teclado"_s)->trigger();
    expectClear("the keys");
    Q_EMIT window.findChild<KeysSheet*>()->closeRequested();
    panel()->setTab(SideTab::text);
    settle();
    QAccessibleInterface* texts = QAccessible::queryAccessibleInterface(panel()->textPanel());
    int top = 0;
    for (int i = 0; i < texts->childCount(); ++i) {
        const QAccessibleInterface* part = texts->child(i);
        if (part->state().invisible)
            continue;
        EXPECT_GT(part->rect().bottom(), top) << part->text(QAccessible::Name).toStdString();
        top = part->rect().top();
    }
    EXPECT_GT(top, 0);
    QAccessibleInterface* stage = QAccessible::queryAccessibleInterface(canvas());
    ASSERT_EQ(stage->childCount(), 6);
    EXPECT_EQ(stage->text(QAccessible::Name), u"Lienzo, Carrusel / Post vertical, imagen 1 de 2"_s);
    QStringList names;
    for (int i = 0; i < stage->childCount(); ++i)
        names.append(stage->child(i)->text(QAccessible::Name));
    ASSERT_TRUE(names.contains(u"Subtítulo: "_s + current().layers[1].text)) << names.size();
    QAccessibleInterface* subtitle =
        stage->child(int(names.indexOf(u"Subtítulo: "_s + current().layers[1].text)));
    subtitle->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(session.batch().selectedLayerID, current().layers[1].id);
}

// Menu entries are disabled only while the menu is open: afterwards their keys work again.
TEST_F(MainWindowTest, keysActAfterALookIntoTheMenu)
{
    window.menu()->menu()->popup({});
    EXPECT_FALSE(window.menu()->action(u"Seleccionar todas las imágenes"_s)->isEnabled());
    window.menu()->menu()->close();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    session.load({photos(3)});
    settle();
    window.activateWindow();
    QTest::keyClick(&window, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(session.batch().selectedItemIDs.size(), 3);
    QTest::keyClick(&window, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(session.batch().items.isEmpty());
}

TEST_F(MainWindowTest, aNumberBeingTypedBelongsToTheImageItWasBegunOn)
{
    session.load({photos(2)});
    settle();
    window.activateWindow();
    SliderField* size = nullptr;
    for (SliderField* field : panel()->textPanel()->findChildren<SliderField*>())
        size = field->accessibleName() == u"Tamaño"_s ? field : size;
    ASSERT_TRUE(size);
    QTest::mouseClick(size, Qt::LeftButton);
    QTest::keyClicks(QApplication::focusWidget(), u"2"_s);
    press(*grid()->viewport(), grid()->tileRect(1).center());
    EXPECT_EQ(session.batch().selectedIndex, 1);
    EXPECT_EQ(session.batch().items[0].layers[0].fontScale, 2.0);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(session.batch().items[1].layers[0].fontScale, 1.0);

    // A drag ends, too, when a key changes the current image.
    QTest::mousePress(size, Qt::LeftButton, Qt::NoModifier, {20, 16});
    QTest::mouseMove(size, {30, 16});
    QTest::mouseMove(size, {50, 16});
    const double dragged = session.batch().items[1].layers[0].fontScale;
    EXPECT_GT(dragged, 1.0);
    QTest::keyClick(&window, Qt::Key_Left);
    QTest::mouseMove(size, {90, 16});
    QTest::mouseRelease(size, Qt::LeftButton, Qt::NoModifier, {90, 16});
    EXPECT_EQ(session.batch().items[0].layers[0].fontScale, 2.0);
    EXPECT_EQ(session.batch().items[1].layers[0].fontScale, dragged);
}

// No two commands have the same key, and F6 goes through all regions of the window and back to the
// first.
TEST_F(MainWindowTest, theKeyboardReachesEverything)
{
    session.load({photos(2)});
    settle();
    QSet<QKeySequence> keys;
    for (const QAction* action : window.actions()) {
        for (const QKeySequence& sequence : action->shortcuts()) {
            EXPECT_FALSE(keys.contains(sequence)) << qPrintable(sequence.toString());
            keys.insert(sequence);
        }
    }
    EXPECT_GT(keys.size(), 25);
    window.activateWindow();
    canvas()->setFocus();
    QSet<QWidget*> stops;
    for (int i = 0; i < 6; ++i) {
        QTest::keyClick(&window, Qt::Key_F6);
        stops.insert(QApplication::focusWidget());
    }
    EXPECT_EQ(stops.size(), 6);
    EXPECT_EQ(QApplication::focusWidget(), canvas());
}

TEST_F(MainWindowTest, aClickIntoATextIsNoSelectionWhenTheCardAboveShrinks)
{
    session.load({photos(1)});
    settle();
    panel()->setTab(SideTab::text);
    for (const int i : {0, 1}) {
        TextLayer layer = current().layers[i];
        layer.hasBox = false;
        layer.foreground = CodableColor(QColor::fromHsv(0, 200, 200));
        session.editLayer(layer);
    }
    settle();
    const auto cards = panel()->textPanel()->findChildren<SlotCard*>();
    cards[0]->edit();
    settle();
    SlotEditor* below = cards[1]->editor();
    const int told = cards[0]->height();
    const QPoint at = below->mapTo(&window, QPoint(60, 9));
    QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, at);
    settle();
    QTest::mouseMove(window.windowHandle(), at + QPoint(1, 0));
    QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, at + QPoint(1, 0));
    EXPECT_TRUE(below->hasFocus());
    EXPECT_EQ(below->textCursor().selectedText(), QString());
    EXPECT_TRUE(QTest::qWaitFor([&] { return cards[0]->height() < told; }));
}

TEST_F(MainWindowTest, theMenuOffersWhatCanBeDoneAndMarksWhatHolds)
{
    const auto marked = [this](bool (QAction::*state)() const, const QStringList& among) {
        Q_EMIT window.menu()->menu()->aboutToShow();
        QStringList names;
        for (const QString& name : among) {
            if ((window.menu()->action(name)->*state)())
                names.append(name);
        }
        Q_EMIT window.menu()->menu()->aboutToHide();
        return names;
    };
    const auto offered = [&] {
        return marked(&QAction::isEnabled,
                      {u"Exportar textos (CSV)…"_s, u"Recuperar la sesión apartada"_s,
                       u"Deshacer"_s, u"Rehacer"_s, u"Editar el texto"_s,
                       u"Ocultar texto o eliminar forma"_s, u"Copiar estilo"_s, u"Pegar estilo"_s,
                       u"Línea"_s, u"Imagen anterior"_s, u"Imagen siguiente"_s, u"Acercar"_s,
                       u"Zona segura"_s});
    };
    const auto checked = [&] {
        return marked(&QAction::isChecked,
                      {u"Story / Reel"_s, u"Carrusel / Post vertical"_s, u"Llenar"_s, u"Encajar"_s,
                       u"Zona segura"_s, u"Columna del lote"_s, u"Panel lateral"_s, u"Oscuro"_s,
                       u"Claro"_s});
    };
    EXPECT_EQ(offered(), QStringList());
    session.load({photos(2)});
    settle();
    session.selectLayer(current().layers[0].id);
    const QStringList ofAnImage{u"Exportar textos (CSV)…"_s,
                                u"Editar el texto"_s,
                                u"Ocultar texto o eliminar forma"_s,
                                u"Copiar estilo"_s,
                                u"Línea"_s,
                                u"Imagen siguiente"_s,
                                u"Acercar"_s};
    QStringList now = offered();
    now.removeAll(u"Deshacer"_s);
    EXPECT_EQ(now, ofAnImage);
    EXPECT_EQ(checked(), (QStringList{u"Carrusel / Post vertical"_s, u"Llenar"_s,
                                      u"Columna del lote"_s, u"Panel lateral"_s, u"Oscuro"_s}));
    window.menu()->action(u"Línea"_s)->trigger();
    session.nextItem();
    session.setFormat(SocialFormat::storyReel);
    session.undo();
    settle();
    for (const char16_t* command : {u"Encajar", u"Panel lateral", u"Claro"})
        window.menu()->action(command)->trigger();
    session.setFormat(SocialFormat::storyReel);
    window.menu()->action(u"Zona segura")->trigger();
    session.selectLayer({});
    EXPECT_EQ(offered(), (QStringList{u"Exportar textos (CSV)…"_s, u"Deshacer"_s, u"Línea"_s,
                                      u"Imagen anterior"_s, u"Acercar"_s, u"Zona segura"_s}));
    EXPECT_EQ(checked(), (QStringList{u"Story / Reel"_s, u"Encajar"_s, u"Zona segura"_s,
                                      u"Columna del lote"_s, u"Claro"_s}));
    session.undo();
    EXPECT_TRUE(offered().contains(u"Rehacer"_s));
    window.menu()->action(u"Oscuro")->trigger();
}
