#include "app/window/StudioShell.h"
#include "app/batch/BatchColumn.h"
#include "app/controls/Button.h"
#include "app/controls/fields/SegmentedControl.h"
#include "app/controls/fields/TabStrip.h"
#include "app/copy/ComposeBar.h"
#include "app/layers/SidePanel.h"
#include "app/stage/EmptyState.h"
#include "app/stage/StagePanel.h"
#include "app/stage/ViewBar.h"
#include "app/theme/Theme.h"
#include "app/window/DropVeil.h"
#include "app/window/KeptLook.h"
#include "app/window/StatusLine.h"
#include "canvas/interaction/CanvasInteractionView.h"
#include "tests/app/Events.h"

#include <QRandomGenerator>
#include <QSplitter>

#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QList<FormatChoice> formats()
{
    return {{u"9:16"_qs, u"Story / Reel"_qs, u"9 a 16"_qs, {1080, 1920}},
            {u"4:5"_qs, u"Carrusel / Post vertical"_qs, u"4 a 5"_qs, {1080, 1350}}};
}

struct Shell : StudioShell {
    explicit Shell(QSize size) : StudioShell(formats())
    {
        resize(size);
        show();
        setStage(Stage::picture);
        stage()->setFormat(u"Carrusel / Post vertical"_qs, u"4:5"_qs, {1080, 1350});
        settle();
    }
};

// Nothing that is seen may reach beyond the right edge of `panel`.
void expectInside(const QWidget* panel, const std::string& label)
{
    for (const QWidget* part : panel->findChildren<QWidget*>()) {
        if (!part->isVisible())
            continue;
        const int right = part->mapTo(panel, QPoint(part->width(), 0)).x();
        EXPECT_LE(right, panel->width()) << label << " " << part->metaObject()->className() << " "
                                         << qPrintable(part->accessibleName());
    }
}

}    // namespace

TEST(KeptLook, aWindowIsWholeOnTheScreensThatThereAre)
{
    const QRect left(0, 0, 1600, 1000), right(1600, 100, 1200, 800);
    constexpr int title = 20;
    const QRect onTheRight(1650, 150, 1100, 700);
    for (const QRect& seen : {QRect(100, 0, 1300, 850), QRect(1000, 150, 1300, 700), onTheRight})
        EXPECT_EQ(broughtOnto({left, right}, seen, title), seen);
    EXPECT_EQ(broughtOnto({left}, onTheRight, title), QRect(500, 150, 1100, 700))
        << "its screen is gone";
    EXPECT_EQ(broughtOnto({left, right}, {2700, 850, 1100, 600}, title),
              QRect(1700, 300, 1100, 600));
    EXPECT_EQ(broughtOnto({left}, {-50, -20, 2000, 1200}, title), QRect(0, 20, 1600, 980));
    EXPECT_EQ(broughtOnto({}, onTheRight, title), onTheRight);
}

TEST(StudioShell, columnsFollowTheWidthOfTheWindow)
{
    struct Case {
        int window, column, tiles, panel;
    };
    for (const Case& c : {Case{1200, 124, 1, 320}, Case{1280, 124, 1, 320}, Case{1440, 208, 2, 344},
                          Case{1920, 304, 3, 376}, Case{2560, 400, 4, 376}}) {
        Shell shell({c.window, 800});
        EXPECT_EQ(shell.batchColumn()->width() + 1, c.column) << c.window;
        EXPECT_EQ(shell.batchColumn()->grid()->columns(), c.tiles) << c.window;
        EXPECT_EQ(shell.sidePanel()->width() + 1, c.panel) << c.window;
        EXPECT_EQ(shell.width(), c.window) << "does not fit";
    }
}

TEST(StudioShell, aSmallWindowHasTheCompactLayoutAsLongAsItIsSmall)
{
    Shell shell({1440, 900});
    shell.setBatchWidth(300);
    shell.sidePanel()->setContent(SidePanel::Content::image);
    struct Case {
        QSize window;
        int batch, panel, compose, viewBar, status, tabs;
    };
    for (const Case& c :
         {Case{{1093, 614}, 88, 280, 48, 44, 24, 36}, Case{{1080, 580}, 88, 280, 48, 44, 24, 36},
          Case{{1199, 900}, 88, 280, 48, 44, 24, 36}, Case{{1920, 719}, 88, 280, 48, 44, 24, 36},
          Case{{1200, 720}, 300, 320, 52, 52, 28, 44}}) {
        shell.resize(c.window);
        settle();
        const std::string label =
            std::to_string(c.window.width()) + " x " + std::to_string(c.window.height());
        EXPECT_EQ(shell.size(), c.window) << label << ": something needs more room";
        EXPECT_EQ(shell.batchColumn()->width() + 1, c.batch) << label;
        EXPECT_EQ(shell.sidePanel()->width() + 1, c.panel) << label;
        EXPECT_EQ(shell.composeBar()->height(), c.compose) << label;
        EXPECT_EQ(shell.viewBar()->height(), c.viewBar) << label;
        EXPECT_EQ(shell.statusLine()->height(), c.status) << label;
        EXPECT_EQ(shell.findChild<TabStrip*>()->height(), c.tabs) << label;
        if (c.window == QSize(1093, 614)) {
            EXPECT_EQ(shell.stage()->canvasRect().size(), QSize(310, 388));
            EXPECT_EQ(shell.batchColumn()->grid()->tileRect(0).width(), 62);
        }
        for (const SideTab tab : {SideTab::text, SideTab::shapes, SideTab::templates}) {
            shell.sidePanel()->setTab(tab);
            settle();
            expectInside(shell.sidePanel(), label);
        }
    }
}

TEST(StudioShell, aDraggedColumnKeepsItsWidth)
{
    Shell shell({1280, 800});
    shell.setBatchWidth(300);
    shell.resize(1920, 1000);
    settle();
    EXPECT_EQ(shell.batchColumn()->width() + 1, 300);
    shell.setBatchWidth(std::nullopt);
    EXPECT_EQ(shell.batchColumn()->width() + 1, 304);

    shell.setBatchWidth(480);
    shell.setPanelWidth(440);
    shell.resize(1200, 720);
    settle();
    EXPECT_EQ(shell.sidePanel()->width() + 1, 440);
    EXPECT_GE(shell.stage()->width(), 500) << "the columns left no room for the photograph";
    shell.resize(1920, 1000);
    settle();
    EXPECT_EQ(shell.batchColumn()->width() + 1, 480) << "forgotten in the small window";
}

TEST(StudioShell, dividersAreDraggedEachForItsColumnAndColumnsCanBeHidden)
{
    Shell shell({1440, 900});
    QList<int> batch, panel;
    QObject::connect(&shell, &StudioShell::batchWidthDragged, [&](int width) { batch += width; });
    QObject::connect(&shell, &StudioShell::panelWidthDragged, [&](int width) { panel += width; });
    const auto drag = [&](int divider, int by) {
        QWidget* handle = shell.findChild<QSplitter*>()->handle(divider);
        QTest::mousePress(handle, Qt::LeftButton, {}, {0, 300});
        QTest::mouseMove(handle, {by, 300});
        QTest::mouseRelease(handle, Qt::LeftButton, {}, {by, 300});
    };
    drag(1, 40);
    EXPECT_EQ(batch, QList<int>{shell.batchColumn()->width() + 1});
    EXPECT_NEAR(batch.value(0), 248, 3) << "where the divider was gripped";
    EXPECT_TRUE(panel.isEmpty());
    drag(2, -50);
    EXPECT_EQ(panel, QList<int>{shell.sidePanel()->width() + 1});
    EXPECT_NEAR(panel.value(0), 394, 3);
    drag(2, -500);
    EXPECT_EQ(shell.sidePanel()->width() + 1, 440);
    EXPECT_EQ(shell.batchColumn()->width() + 1, batch.value(0));

    shell.setPanelVisible(false);
    shell.setBatchVisible(false);
    settle();
    EXPECT_EQ(shell.stage()->width(), 1440);
    shell.setPanelVisible(true);
    settle();
    EXPECT_EQ(shell.sidePanel()->width() + 1, 440);
}

TEST(StudioShell, looksDifferentInEachThemeWithoutAnyLeftovers)
{
    Shell shell({1280, 800});
    const QPoint bar(20, 4), stage(140, 400), column(4, 300);
    for (const Theme* theme : {&lightTheme(), &darkTheme()}) {
        applyTheme(*theme);
        settle();
        const QImage image = shell.grab().toImage();
        ASSERT_EQ(image.size(), QSize(1280, 800));
        EXPECT_EQ(image.pixelColor(bar), theme->panel);
        EXPECT_EQ(image.pixelColor(stage), theme->bg);
        EXPECT_EQ(image.pixelColor(column), theme->panel);
    }
}

TEST(StudioShell, everyStopOfTheTabKeyHasAName)
{
    Shell shell({1280, 800});
    int stops = 0;
    for (const QWidget* widget : shell.findChildren<QWidget*>()) {
        if (!(widget->focusPolicy() & Qt::TabFocus) || widget->focusProxy())
            continue;
        ++stops;
        EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->metaObject()->className();
    }
    EXPECT_GT(stops, 10);
}

TEST(StagePanel, thePictureIsShownPixelByPixel)
{
    Shell shell({1280, 800});
    StagePanel* stage = shell.stage();
    const auto shown = [stage] {
        const QImage image = stage->grab().toImage();
        return image.convertToFormat(QImage::Format_ARGB32_Premultiplied).copy(stage->canvasRect());
    };
    EXPECT_EQ(shown().pixelColor(5, 5), themeOf(stage).empty);
    stage->canvas()->setItem(PublicationItem::make(QUrl(), {}), SocialFormat::carouselPortrait);
    EXPECT_EQ(shown(), stage->canvas()->canvasBuffer());
    EXPECT_EQ(shown().size(), stage->pictureSize());
}

TEST(StagePanel, thePictureFitsInItsRatioWithRoomAtTheSides)
{
    StagePanel stage;
    QList<QSize> sizes;
    QObject::connect(&stage, &StagePanel::pictureSizeChanged,
                     [&](QSize size) { sizes.append(size); });
    stage.resize(448, 2000);
    stage.setFormat(u"Post cuadrado"_qs, u"1:1"_qs, {1080, 1080});
    stage.setFormat(u"Horizontal"_qs, u"16:9"_qs, {1920, 1080});
    stage.setFormat(u"Horizontal"_qs, u"16:9"_qs, {1920, 1080});
    EXPECT_EQ(sizes, (QList<QSize>{{400, 400}, {400, 225}}));
    EXPECT_EQ(stage.canvasRect().left(), 24);
    stage.setPosition(0, 24);
    EXPECT_EQ(stage.canvas()->accessibleName(), u"Lienzo, Horizontal, imagen 1 de 24"_qs);
}

TEST(TopBar, formatsAreNamedInFull)
{
    TopBar bar(formats());
    auto* segments = bar.findChild<SegmentedControl*>();
    bar.setFormat(1);
    EXPECT_EQ(segments->accessibleName(), u"Formato Carrusel / Post vertical, 4 a 5"_qs);
}

TEST(TopBar, importLabelsFoldBelow1400AndStayReadableByName)
{
    TopBar bar(formats());
    const auto images = [&] {
        for (auto* button : bar.findChildren<PushButton*>()) {
            if (button->accessibleName() == u"Imágenes"_qs)
                return button;
        }
        return static_cast<PushButton*>(nullptr);
    }();
    ASSERT_NE(images, nullptr);
    bar.resize(1399, 56);
    bar.show();
    settle();
    EXPECT_EQ(images->width(), 42);
    EXPECT_EQ(images->toolTip(), u"Imágenes"_qs);
    bar.resize(1400, 56);
    settle();
    EXPECT_GT(images->width(), 100);
}

TEST(DropVeil, saysWhatADropBringsAndLetsTheDragThrough)
{
    QWidget window;
    window.resize(400, 300);
    QWidget below(&window);
    below.resize(400, 300);
    DropVeil veil(&window);
    window.show();
    veil.offer({1, false, false});
    EXPECT_EQ(veil.sentence(), u"Suelta para importar 1 imagen"_qs);
    veil.offer({24, false, true});
    EXPECT_EQ(veil.sentence(), u"Suelta para importar 24 imágenes"_qs);
    veil.offer({0, true, true});
    EXPECT_EQ(veil.sentence(), u"Suelta para importar la carpeta"_qs);
    EXPECT_EQ(window.childAt(200, 150), &below);
}
