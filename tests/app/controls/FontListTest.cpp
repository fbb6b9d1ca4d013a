#include "app/controls/popovers/FontList.h"
#include "app/controls/fields/LineField.h"
#include "app/controls/popovers/FontField.h"
#include "app/controls/popovers/FontPopover.h"
#include "app/controls/popovers/KeptClear.h"
#include "canvas/TextFitting.h"
#include "tests/app/Events.h"

#include <QListView>

#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QStringList namesIn(const FontList& fonts)
{
    QStringList names;
    for (int i = 0; i < fonts.rowCount(); ++i)
        names.append(fonts.rowAt(i).storedName);
    return names;
}

int rowNamed(const FontList& fonts, const QString& name)
{
    for (int i = 0; i < fonts.rowCount(); ++i) {
        if (fonts.rowAt(i).name == name)
            return i;
    }
    return -1;
}

QString marked(const FontList& fonts)
{
    QStringList names;
    for (int i = 0; i < fonts.rowCount(); ++i) {
        if (fonts.isMarked(fonts.rowAt(i)))
            names.append(fonts.rowAt(i).name);
    }
    return names.join(u'+');
}

}    // namespace

TEST(FontCatalog, familiesThatAreAFaceOfAnotherAreFolded)
{
    const auto stylesOf = [](const QString& family) {
        return family == "Inter"_L1 ? QStringList{u"Regular"_s, u"Semi Bold"_s, u"Black"_s}
                                    : QStringList{u"Regular"_s, u"SemiBold"_s};
    };
    EXPECT_EQ(foldFamilies({u"Inter Display"_s, u"Inter SemiBold"_s, u"Inter"_s, u"Inter Black"_s,
                            u"C059 [urw]"_s, u"C059 [UKWN]"_s, u"Inter Display Semi Bold"_s,
                            u"Abril Black"_s},
                           stylesOf),
              (QStringList{u"Abril Black"_s, u"C059"_s, u"Inter"_s, u"Inter Display"_s}));
}

TEST(FontList, showsFacesUnderTheirFamilyAndFindsThem)
{
    FontList fonts(u"System"_s);
    EXPECT_EQ(fonts.rowAt(0).name, u"Sistema"_s);
    EXPECT_GT(rowNamed(fonts, u"Inter Display"_s), 0);
    EXPECT_FALSE(namesIn(fonts).contains(u"Inter Black"_s));
    EXPECT_LT(rowNamed(fonts, u"Vollkorn"_s), rowNamed(fonts, u"Noto Color Emoji"_s))
        << "what has no letters stands last";
    fonts.setUnfolded(u"Inter"_s, true);
    const QStringList names = namesIn(fonts);
    const auto family = names.indexOf(u"Inter Regular"_s);
    EXPECT_EQ(fonts.rowAt(int(family)).name, u"Inter"_s);
    EXPECT_EQ(names[family + 1], u"Inter Thin"_s);
    EXPECT_EQ(names.count(u"Inter Regular"_s), 2) << "the family and its face";
    EXPECT_TRUE(names.contains(u"Inter Black Italic"_s));
    for (const QString& name : names)
        EXPECT_TRUE(ExportCanvasRenderer::isInstalled(name)) << qPrintable(name);

    fonts.setUnfolded(u"Inter"_s, false);
    fonts.setFilter(u" black INTER dis "_s);
    EXPECT_EQ(namesIn(fonts), (QStringList{u"Inter Display Regular"_s, u"Inter Display Black"_s,
                                           u"Inter Display Black Italic"_s}));
}

// The name "Bebas Neue" without a style is drawn with the face "Book", which is lighter than the
// regular face.
TEST(FontList, offersEachInstalledFaceAndMarksTheOneThatIsDrawn)
{
    FontCatalog catalog;
    QStringList faces;
    for (const FontFace& face : catalog.faces(u"Bebas Neue"_s)) {
        faces.append(face.name);
        EXPECT_EQ(drawnFace(face.storedName), face.storedName);
    }
    EXPECT_EQ(faces, (QStringList{u"Thin"_s, u"Light"_s, u"Book"_s, u"Regular"_s, u"Bold"_s}));
    EXPECT_EQ(catalog.usualFace(u"Bebas Neue"_s), u"Bebas Neue Regular"_s);
    EXPECT_EQ(drawnFace(u"Bebas Neue"_s), u"Bebas Neue Book"_s);
    EXPECT_EQ(marked(FontList(u"Bebas Neue"_s)), u"Book"_s);
    EXPECT_EQ(marked(FontList(u"Inter"_s)), u"Inter"_s);
    EXPECT_EQ(marked(FontList(u"System"_s)), u"Sistema"_s);
    FontList unfolded(u"Inter Regular"_s);
    unfolded.setUnfolded(u"Inter"_s, true);
    EXPECT_EQ(marked(unfolded), u"Regular"_s);
}

TEST(FontList, aFontThatIsNotInstalledStandsOnTop)
{
    const FontList fonts(u"Futura Perdida"_s);
    EXPECT_EQ(fonts.rowAt(0).kind, FontRowKind::missing);
    EXPECT_EQ(fonts.rowAt(0).storedName, u"Futura Perdida"_s);
    EXPECT_EQ(fonts.rowAt(1).kind, FontRowKind::system);
    EXPECT_EQ(FontList(u"Inter Semi Bold"_s).rowAt(0).kind, FontRowKind::system);
}

TEST(FontField, theListLeavesInSightWhatTheWindowWantsSeen)
{
    struct Studio : QWidget, KeptClear {
        QList<QRect> keptClear(const QWidget*) const override
        {
            return {QRect(880, 0, 320, 56), QRect(900, 150, 280, 60), QRect(300, 200, 300, 80)};
        }
    };
    Studio window;
    window.resize(1200, 720);
    FontField field(&window);
    window.show();
    for (const int top : {90, 300, 440, 600}) {
        field.setGeometry(900, top, 140, 32);
        field.click();
        auto* popover = window.findChild<FontPopover*>();
        const QRect seen = popover->geometry().adjusted(28, 28, -28, -28);
        EXPECT_TRUE(window.rect().contains(seen));
        for (const QRect& area : window.keptClear(&field))
            EXPECT_FALSE(seen.intersects(area)) << top;
        field.click();
        settle();
    }
}

TEST(FontField, typingAndEnterChooseAndTheFocusComesBack)
{
    QWidget window;
    window.resize(500, 600);
    LineField before(u"Antes"_s, {}, Icon::none, &window);
    FontField field(&window);
    field.move(20, 40);
    QStringList chosen;
    QObject::connect(&field, &FontField::chosen, [&](const QString& name) { chosen.append(name); });
    window.show();
    window.activateWindow();
    settle();
    before.setFocus();
    field.click();
    auto* search = window.findChild<FontPopover*>()->findChild<LineField*>();
    ASSERT_TRUE(search->hasFocus());
    QTest::keyClicks(search, u"inter display"_s);
    auto* list = window.findChild<QListView*>();
    const int folded = list->model()->rowCount();
    type(*search, Qt::Key_Right);
    EXPECT_GT(list->model()->rowCount(), folded) << "the faces of what was searched";
    type(*search, Qt::Key_Left);
    EXPECT_EQ(list->model()->rowCount(), folded);
    type(*search, Qt::Key_Left);
    EXPECT_EQ(search->cursorPosition(), search->text().size() - 1);
    search->setText(u"inter display semi"_s);
    type(*search, Qt::Key_Down);
    type(*search, Qt::Key_Return);
    EXPECT_EQ(chosen, QStringList{u"Inter Display Semi Bold"_s});
    EXPECT_TRUE(before.hasFocus());
    settle();

    field.setFontName(u"Futura Perdida"_s);
    EXPECT_EQ(field.toolTip(), u"No está instalada; se dibuja con otra."_s);
}
