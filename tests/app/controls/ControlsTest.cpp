#include "app/controls/Button.h"
#include "app/controls/fields/SegmentedControl.h"
#include "app/controls/fields/TextField.h"
#include "tests/app/Events.h"

#include <QAccessible>
#include <QFocusFrame>
#include <QLineEdit>
#include <QScrollArea>
#include <QVBoxLayout>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QList<Segment> threeSegments()
{
    return {{Icon::none, u"uno"_qs, {}, u"Uno"_qs},
            {Icon::none, u"dos"_qs, {}, u"Dos"_qs},
            {Icon::none, u"tres"_qs, {}, u"Tres"_qs}};
}

}    // namespace

TEST(SegmentedControl, arrowsChooseAndStopAtTheEnds)
{
    SegmentedControl segments(threeSegments());
    QList<int> chosen;
    QObject::connect(&segments, &SegmentedControl::chosen,
                     [&](int index) { chosen.append(index); });
    segments.setCurrent(1);
    for (const int key : {Qt::Key_Right, Qt::Key_Right, Qt::Key_Home, Qt::Key_Left, Qt::Key_Down})
        type(segments, key);
    EXPECT_EQ(chosen, (QList<int>{2, 0, 1}));
    EXPECT_EQ(segments.accessibleName(), u"Dos"_qs);
}

TEST(SegmentedControl, pressingTheChosenSegmentAsksForNothing)
{
    SegmentedControl segments(threeSegments());
    segments.resize(segments.sizeHint());
    int asked = 0;
    QObject::connect(&segments, &SegmentedControl::chosen, [&] { ++asked; });
    press(segments, segments.segmentRect(2).center());
    press(segments, segments.segmentRect(2).center());
    EXPECT_EQ(segments.current(), 2);
    EXPECT_EQ(asked, 1);
}

TEST(SegmentedControl, isReadAsChoicesThatCanBePressed)
{
    QList<Segment> offered = threeSegments();
    offered[2].refusal = u"Hoy no"_qs;
    SegmentedControl segments(offered);
    QAccessibleInterface* group = QAccessible::queryAccessibleInterface(&segments);
    ASSERT_EQ(group->childCount(), 3);
    QAccessibleInterface* second = group->child(1);
    EXPECT_EQ(second->role(), QAccessible::RadioButton);
    EXPECT_EQ(second->text(QAccessible::Name), u"Dos"_qs);
    EXPECT_EQ(second->parent(), group);
    EXPECT_FALSE(second->state().checked);
    const QString press = QAccessibleActionInterface::pressAction();
    second->actionInterface()->doAction(press);
    EXPECT_TRUE(second->state().checked);
    QAccessibleInterface* refused = group->child(2);
    EXPECT_TRUE(refused->state().disabled);
    EXPECT_EQ(refused->text(QAccessible::Description), u"Hoy no"_qs);
    refused->actionInterface()->doAction(press);
    EXPECT_EQ(segments.current(), 1);
}

TEST(TextField, elidesALongTextThatIsNotBeingEdited)
{
    TextField field(u"Campo"_qs, {});
    field.resize(120, field.height());
    const auto picture = [&](const QString& text) {
        field.setText(text);
        return field.grab().toImage();
    };
    const QImage elided = picture(u"Llenar octubre con parejas y familias"_qs);
    const QString fitting =
        QFontMetricsF(fontOf(Type::body))
            .elidedText(field.edit()->text(), Qt::ElideRight, field.edit()->width());
    EXPECT_EQ(elided, picture(fitting)) << fitting.toStdString();
}

TEST(Controls, clicksLeaveTheFocusWhereItIs)
{
    QWidget window;
    QVBoxLayout layout(&window);
    TextField field(u"Campo"_qs, {});
    PushButton button(Icon::undo, u"Botón"_qs);
    IconButton icon(Icon::redo, u"Icono"_qs);
    SegmentedControl segments(threeSegments());
    for (QWidget* widget : QList<QWidget*>{&field, &button, &icon, &segments})
        layout.addWidget(widget);
    window.show();
    window.activateWindow();
    settle();
    field.edit()->setFocus();
    for (QWidget* widget : QList<QWidget*>{&button, &icon, &segments}) {
        EXPECT_FALSE(widget->focusPolicy() & Qt::ClickFocus);
        press(*widget, widget->rect().center());
        EXPECT_TRUE(field.edit()->hasFocus());
    }
}

TEST(Controls, theRingIsForFocusFromTheKeyboardAndDiesWithItsControl)
{
    QWidget window;
    auto button = std::make_unique<PushButton>(Icon::undo, u"Botón"_qs, ButtonKind::neutral,
                                               ButtonSize::regular, &window);
    window.show();
    window.activateWindow();
    settle();
    button->setFocus(Qt::OtherFocusReason);
    EXPECT_EQ(window.findChild<QFocusFrame*>(), nullptr);
    button->clearFocus();
    button->setFocus(Qt::TabFocusReason);
    const auto* frame = window.findChild<QFocusFrame*>();
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->widget(), button.get());
    button.reset();
    EXPECT_EQ(frame->widget(), nullptr);
    EXPECT_TRUE(frame->isHidden());
}

TEST(Controls, thereIsOneRingInAScrollAreaToo)
{
    QWidget window;
    QScrollArea area(&window);
    auto* page = new QWidget;
    auto* first = new IconButton(Icon::undo, u"Uno"_qs, 32, page);
    auto* second = new IconButton(Icon::redo, u"Dos"_qs, 32, page);
    area.setWidget(page);
    window.show();
    window.activateWindow();
    settle();
    for (QWidget* button : {first, second, first})
        button->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(window.findChildren<QFocusFrame*>().size(), 1);
}

TEST(TextField, tellsAnEditOnceWhenItEndsAndNothingWhenShown)
{
    QWidget window;
    TextField field(u"Objetivo"_qs, {}, &window);
    QStringList edits;
    QObject::connect(&field, &TextField::edited, [&](const QString& text) { edits.append(text); });
    window.show();
    window.activateWindow();
    settle();
    field.setText(u"Otoño"_qs);
    field.edit()->setFocus();
    field.edit()->setText(u"Invierno"_qs);
    type(*field.edit(), Qt::Key_Return);
    EXPECT_EQ(edits, QStringList{u"Invierno"_qs});
    EXPECT_FALSE(field.edit()->hasFocus()) << "the arrows would go on moving the cursor";

    field.edit()->setFocus();
    field.edit()->setText(u"Verano"_qs);
    type(*field.edit(), Qt::Key_Escape);
    EXPECT_EQ(edits, (QStringList{u"Invierno"_qs, u"Verano"_qs})) << "nothing typed is lost";

    field.edit()->setFocus();
    field.edit()->setText(u"Primavera"_qs);
    field.setText(u"Verano"_qs);
    EXPECT_EQ(field.text(), u"Primavera"_qs) << "shown again while it is edited";
    field.setText(u"Otoño"_qs);
    EXPECT_EQ(field.text(), u"Otoño"_qs);
}
