#include "app/controls/fields/LineField.h"
#include "app/controls/fields/SliderField.h"
#include "app/controls/fields/SlotEditor.h"
#include "tests/app/Events.h"

#include <QAccessible>
#include <QClipboard>
#include <QMimeData>
#include <QVBoxLayout>

#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

constexpr SliderRange percent{SliderUnit::percent, 0, 1}, radius{SliderUnit::plain, 0, 80};

struct Change {
    double value;
    Pace pace;
    bool operator==(const Change&) const = default;
};
void PrintTo(const Change& change, std::ostream* out)
{
    *out << change.value << (change.pace == Pace::held ? " held" : " once");
}

struct Slider {
    explicit Slider(SliderRange range) : field(u"Opacidad"_s, range, &window)
    {
        field.setGeometry(0, 0, 160, 32);
        QObject::connect(&field, &SliderField::valueChanged, [this](double value, Pace pace) {
            changes.append({value, pace});
        });
        window.show();
        window.activateWindow();
        settle();
    }
    QList<Change> taken() { return std::exchange(changes, {}); }

    QWidget window;
    SliderField field;
    LineField* edit = field.findChild<LineField*>();
    QList<Change> changes;
};

}    // namespace

TEST(SliderField, readsWhatPeopleType)
{
    struct Case {
        SliderRange range;
        QString typed;
        double value;
    };
    const SliderRange size{SliderUnit::multiplier, 0.4, 2.5};
    for (const Case& c :
         {Case{percent, u"38"_s, 0.38}, Case{percent, u" 38,5 %"_s, 0.385},
          Case{percent, u"1e9"_s, 0.01}, Case{percent, u"999999999"_s, 1},
          Case{percent, u"-3"_s, 0}, Case{size, u"1,15×"_s, 1.15}, Case{size, u"1.15"_s, 1.15},
          Case{size, u",9"_s, 0.9}, Case{percent, u"nada"_s, 0.5}, Case{percent, {}, 0.5}}) {
        Slider slider(c.range);
        slider.field.setValue(0.5);
        press(slider.field, {20, 10});
        ASSERT_TRUE(slider.edit->hasFocus());
        slider.edit->setText(c.typed);
        type(*slider.edit, Qt::Key_Return);
        settle();
        EXPECT_NEAR(slider.field.value(), c.value, 1e-12) << qPrintable(c.typed);
        EXPECT_EQ(slider.changes.size(), c.value == 0.5 ? 0 : 1) << qPrintable(c.typed);
        EXPECT_TRUE(slider.edit->isHidden());
        EXPECT_FALSE(slider.window.focusWidget()) << "the arrows would not change the image";
    }
}

TEST(SliderField, escLeavesTheValueAndASecondClickGivesTheDefault)
{
    Slider slider(radius);
    slider.field.setDefault(16);
    slider.field.setValue(40);
    press(slider.field, {20, 10});
    slider.edit->setText(u"70"_s);
    type(*slider.edit, Qt::Key_Escape);
    settle();
    EXPECT_EQ(slider.field.value(), 40);
    EXPECT_TRUE(slider.taken().isEmpty());

    // The first click opens `edit`, so the second click of a double click reaches `edit`.
    press(slider.field, {20, 10});
    QTest::mouseDClick(slider.edit, Qt::LeftButton, {}, {20, 10});
    settle();
    EXPECT_EQ(slider.taken(), (QList<Change>{{16, Pace::once}}));
    EXPECT_TRUE(slider.edit->isHidden());
}

TEST(SliderField, aDragIsHeldUntilItIsReleased)
{
    Slider slider(radius);    // dragging by one pixel changes the value by half a unit
    slider.field.setValue(20);
    const auto move = [&](int x, Qt::KeyboardModifiers modifiers = {}) {
        QMouseEvent event(QEvent::MouseMove, QPointF(x, 10), QPointF(x, 10), Qt::NoButton,
                          Qt::LeftButton, modifiers);
        QApplication::sendEvent(&slider.field, &event);
    };
    QTest::mousePress(&slider.field, Qt::LeftButton, {}, {50, 10});
    move(54);
    move(64);
    move(74, Qt::ShiftModifier);
    move(54 + 300);
    EXPECT_EQ(slider.taken(),
              (QList<Change>{{25, Pace::held}, {26, Pace::held}, {80, Pace::held}}));
    move(54 + 299);
    QTest::mouseRelease(&slider.field, Qt::LeftButton, {}, {353, 10});
    EXPECT_EQ(slider.taken(), (QList<Change>{{80, Pace::once}})) << "nothing changed since";
    EXPECT_TRUE(slider.edit->isHidden());
    EXPECT_FALSE(slider.edit->hasFocus());

    // Disabling the field during a drag ends the drag with Pace::once as well.
    QTest::mousePress(&slider.field, Qt::LeftButton, {}, {50, 10});
    move(46);
    move(26);
    slider.field.setEnabled(false);
    EXPECT_EQ(slider.taken(), (QList<Change>{{70, Pace::held}, {70, Pace::once}}));
}

TEST(SliderField, aKeyThatRepeatsIsOneChangeAtRest)
{
    Slider slider(percent);
    slider.field.setValue(0.5);
    for (const bool repeated : {false, true, true}) {
        QKeyEvent down(QEvent::KeyPress, Qt::Key_Right, {}, {}, repeated);
        QApplication::sendEvent(&slider.field, &down);
        QKeyEvent up(QEvent::KeyRelease, Qt::Key_Right, {}, {}, true);
        QApplication::sendEvent(&slider.field, &up);
    }
    QTest::keyRelease(&slider.field, Qt::Key_Right);
    EXPECT_EQ(slider.taken(),
              (QList<Change>{
                  {0.51, Pace::held}, {0.52, Pace::held}, {0.53, Pace::held}, {0.53, Pace::once}}));
    QTest::keyClick(&slider.field, Qt::Key_Left, Qt::ShiftModifier);
    QTest::keyClick(&slider.field, Qt::Key_End);
    EXPECT_EQ(
        slider.taken(),
        (QList<Change>{{0.43, Pace::held}, {0.43, Pace::once}, {1, Pace::held}, {1, Pace::once}}));
}

TEST(SliderField, showsAnyNumberInsideItsRangeAndIsReadAsASlider)
{
    Slider slider(percent);
    for (const double value : {5.0, 1e300, double(INFINITY)}) {
        slider.field.setValue(value);
        EXPECT_EQ(slider.field.valueText(), u"100 %"_s);
    }
    for (const double value : {-1.0, double(NAN)}) {
        slider.field.setValue(value);
        EXPECT_EQ(slider.field.valueText(), u"0 %"_s);
    }
    EXPECT_TRUE(slider.changes.isEmpty());
    auto* accessible = QAccessible::queryAccessibleInterface(&slider.field);
    EXPECT_EQ(accessible->role(), QAccessible::Slider);
    EXPECT_EQ(accessible->text(QAccessible::Name), u"Opacidad"_s);
    slider.field.setAccessibleName(u"Opacidad de la caja"_s);
    EXPECT_EQ(accessible->text(QAccessible::Name), u"Opacidad de la caja"_s);
    ASSERT_TRUE(accessible->valueInterface());
    accessible->valueInterface()->setCurrentValue(25);
    EXPECT_EQ(slider.taken(), (QList<Change>{{0.25, Pace::once}}));
    EXPECT_EQ(accessible->text(QAccessible::Value), u"25 %"_s);
    EXPECT_EQ(accessible->text(QAccessible::Description), u"25 %"_s);
}

TEST(SlotEditor, leavesToTheWindowWhatIsTheWindows)
{
    struct Window : QWidget {
        void keyPressEvent(QKeyEvent* event) override { keys.append(event->key()); }
        QList<int> keys;
    } window;
    QVBoxLayout layout(&window);
    SlotEditor title(u"Título"_s, &window), subtitle(u"Subtítulo"_s, &window);
    layout.addWidget(&title);
    layout.addWidget(&subtitle);
    window.show();
    window.activateWindow();
    settle();
    title.setFocus();
    QTest::keyClicks(&title, u"Hola"_s);
    QTest::keyClick(&title, Qt::Key_Return);
    const QList<QKeyCombination> windows{Qt::CTRL | Qt::Key_Z, Qt::CTRL | Qt::SHIFT | Qt::Key_Z,
                                         Qt::Key_PageUp, Qt::Key_PageDown};
    for (const QKeyCombination key : windows) {
        QKeyEvent shortcut(QEvent::ShortcutOverride, key.key(), key.keyboardModifiers());
        shortcut.ignore();
        QApplication::sendEvent(&title, &shortcut);
        EXPECT_FALSE(shortcut.isAccepted()) << key.key() << " would be no shortcut here";
        type(title, key.key(), key.keyboardModifiers());
    }
    EXPECT_EQ(window.keys, (QList<int>{Qt::Key_Z, Qt::Key_Z, Qt::Key_PageUp, Qt::Key_PageDown}));
    EXPECT_EQ(title.text(), u"Hola\n"_s);
    QTest::keyClick(&title, Qt::Key_Tab);
    EXPECT_TRUE(subtitle.hasFocus());
    QTest::keyClick(&subtitle, Qt::Key_Backtab);
    EXPECT_TRUE(title.hasFocus());
    EXPECT_EQ(title.textCursor().selectedText().size(), 5);
    QTest::keyClick(&title, Qt::Key_Tab);
    EXPECT_FALSE(title.textCursor().hasSelection()) << "it looks as if it were being edited";
}

TEST(SlotEditor, takesPlainTextOfABoundedLengthAndGrowsToFiveLines)
{
    SlotEditor editor(u"Título"_s);
    editor.resize(280, editor.height());
    editor.show();
    QStringList edits;
    QObject::connect(&editor, &SlotEditor::edited,
                     [&](const QString& text) { edits.append(text); });
    editor.setText(u"uno\u00a0y dos"_s);
    EXPECT_EQ(editor.height(), 18);
    EXPECT_TRUE(edits.isEmpty());
    EXPECT_EQ(editor.text(), u"uno\u00a0y dos"_s) << "the no-break space is the author's";

    auto* rich = new QMimeData;    // the clipboard takes ownership
    rich->setHtml(u"<b>uno</b>"_s);
    rich->setText(QString(20000, u'x'));
    QApplication::clipboard()->setMimeData(rich);
    editor.selectAll();
    editor.paste();
    QTest::keyClicks(&editor, u"y"_s);
    EXPECT_EQ(editor.text(), QString(10000, u'x'));
    EXPECT_EQ(editor.height(), 5 * 18);
    QApplication::clipboard()->setText(u"a\v\u2028b\r\nc\a\td"_s);
    editor.selectAll();
    editor.paste();
    EXPECT_EQ(editor.text(), u"a\n\nb\nc\td"_s);
    editor.setText(u"a\nb"_s);
    EXPECT_EQ(editor.height(), 2 * 18);

    editor.setText(QString(10001, u'y'));
    EXPECT_TRUE(editor.isReadOnly()) << "an edit would cut off the rest";
}
