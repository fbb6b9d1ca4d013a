#include "app/publish/PublishSheet.h"

#include "app/controls/Button.h"
#include "app/controls/fields/LineField.h"
#include "app/controls/fields/SegmentedControl.h"
#include "app/controls/fields/SlotEditor.h"
#include "app/publish/HistoryPage.h"
#include "app/publish/NetworkCard.h"
#include "app/publish/PostPreview.h"
#include "app/publish/PostStrip.h"
#include "app/publish/PublishStatusPanel.h"
#include "app/publish/PublishTexts.h"
#include "tests/app/Events.h"
#include "tests/app/Spoken.h"

#include <QBuffer>
#include <QScrollArea>
#include <QScrollBar>

#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr auto instagram = SocialPublishNetwork::instagram;
constexpr auto facebook = SocialPublishNetwork::facebook;

PublishShown readySheet(qsizetype images = 4)
{
    PublishShown shown{.batchSize = 24, .balance = 4280, .site = u"Moltiva Web"_s};
    for (qsizetype i = 0; i < images; ++i)
        shown.images.append({.id = QUuid::createUuid(), .name = u"foto-%1"_s.arg(i + 1)});
    for (const auto network : allCases<SocialPublishNetwork>())
        shown.networks.append(
            {.network = network, .state = ConnectionState::connected, .cost = 150});
    shown.caption = {.text = u"Un texto"_s, .guide = 2'200, .hasChoices = true};
    return shown;
}

PublishCheck checkWith(const QString& sentence, const QString& link)
{
    PublishCheck check;
    check.sentence = sentence;
    check.link = link;
    return check;
}

QByteArray redPicture(QSize size, const char* format)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QBuffer buffer;
    EXPECT_TRUE(picture.save(&buffer, format));
    return buffer.data();
}

bool hasRed(const QImage& seen)
{
    for (int y = 0; y < seen.height(); ++y) {
        for (int x = 0; x < seen.width(); ++x) {
            const QColor color = seen.pixelColor(x, y);
            if (color.red() > 230 && color.green() < 30 && color.blue() < 30)
                return true;
        }
    }
    return false;
}

struct SheetTest : ::testing::Test {
    explicit SheetTest(QSize size = {1440, 900})
    {
        window.resize(size);
        window.show();
        window.activateWindow();
        sheet.setShown(shown);
        sheet.present();
        settle();
    }
    void change(const std::function<void(PublishShown&)>& edit)
    {
        edit(shown);
        sheet.setShown(shown);
        settle();
    }
    // The one that is seen: the chosen card hides its own.
    PushButton* button(const QString& name)
    {
        for (auto* each : sheet.findChildren<PushButton*>()) {
            if (each->accessibleName() == name && each->isVisible())
                return each;
        }
        ADD_FAILURE() << "no " << qPrintable(name);
        return nullptr;
    }
    SlotEditor* caption() { return sheet.findChild<SlotEditor*>(); }
    PostStrip* strip() { return sheet.strip(); }

    PublishShown shown = readySheet();
    QWidget window;
    PublishSheet sheet{&window};
};
using PublishSheetTest = SheetTest;

struct SmallSheetTest : SheetTest {
    SmallSheetTest() : SheetTest({1093, 614}) {}
};

}    // namespace

TEST_F(PublishSheetTest, thePrimaryButtonSaysWhatItDoesAndWhatItCosts)
{
    struct Row {
        const char* label;
        std::function<void(PublishShown&)> edit;
        QString text;
        bool isEnabled;
    };
    const Row rows[] = {
        {"feed", [](PublishShown&) {}, u"Publicar en Feed (150 créditos)"_s, true},
        {"story", [](PublishShown& s) { s.placement = SocialPublishPlacement::story; },
         u"Publicar Story (150 créditos)"_s, true},
        {"facebook", [](PublishShown& s) { s.network = facebook; },
         u"Publicar en Facebook (150 créditos)"_s, true},
        {"unknown price", [](PublishShown& s) { s.networks[0].cost.reset(); },
         u"Publicar en Feed"_s, true},
        {"not connected", [](PublishShown& s) { s.networks[0].state = ConnectionState::absent; },
         u"Publicar"_s, false},
        {"provider missing",
         [](PublishShown& s) { s.networks[0].state = ConnectionState::pending; }, u"Publicar"_s,
         false},
        {"nothing selected", [](PublishShown& s) { s.images.clear(); }, u"Publicar"_s, false},
        {"a check asks again", [](PublishShown& s) { s.isConfirming = true; },
         u"Publicar de todos modos (150 créditos)"_s, true},
        {"sent before",
         [](PublishShown& s) {
             s.isConfirming = true;
             s.report.checks.found = {checkWith(u"Ya se publicó."_s, {})};
             s.report.checks.found[0].kind = PublishCheckKind::published;
         },
         u"Publicar otra vez (150 créditos)"_s, true},
    };
    PushButton* primary = button(u"Publicar en Feed (150 créditos)"_s);
    ASSERT_TRUE(primary);
    for (const Row& row : rows) {
        PublishShown state = shown;
        row.edit(state);
        sheet.setShown(state);
        EXPECT_EQ(primary->text(), row.text) << row.label;
        EXPECT_EQ(primary->accessibleName(), row.text) << row.label;
        EXPECT_EQ(primary->isEnabled(), row.isEnabled) << row.label;
    }
}

TEST_F(PublishSheetTest, whileAPostIsSentNothingElseCanBeChosen)
{
    int asked = 0;
    QObject::connect(&sheet, &PublishSheet::publishRequested, [&] { ++asked; });
    QObject::connect(&sheet, &PublishSheet::networkChosen, [&] { ++asked; });
    QObject::connect(&sheet, &PublishSheet::captionEdited, [&] { ++asked; });
    PushButton* primary = button(u"Publicar en Feed (150 créditos)"_s);
    change([](PublishShown& s) {
        s.isPublishing = true;
        s.report.sending = SendingShown{.amount = u"1,0 MB de 2,0 MB"_s, .fraction = 0.5};
    });
    EXPECT_EQ(primary->text(), u"Publicando..."_s);
    press(*primary, primary->rect().center());
    for (NetworkCard* card : sheet.findChildren<NetworkCard*>())
        press(*card, card->rect().center());
    QTest::keyClicks(caption(), u"x"_s);
    EXPECT_EQ(asked, 0);
    EXPECT_FALSE(button(u"Cerrar"_s)->isEnabled());

    PushButton* stop = button(u"Detener"_s);
    stop->setFocus(Qt::TabFocusReason);
    change([](PublishShown& s) { s.report.sending->canStop = false; });
    EXPECT_FALSE(stop->isEnabled()) << "the last byte has left";
    EXPECT_FALSE(button(u"Cerrar"_s)->isEnabled());
    change([](PublishShown& s) { s.report.sending->canLeave = true; });
    EXPECT_TRUE(button(u"Cerrar"_s)->isEnabled()) << "the answer may take minutes";
    EXPECT_TRUE(sheet.isAncestorOf(window.focusWidget())) << "the focus went astray";
}

TEST_F(PublishSheetTest, theCaptionIsEditedAsTypedAndComesBackAfterAStory)
{
    QStringList edits;
    QObject::connect(&sheet, &PublishSheet::captionEdited,
                     [&](const QString& text) { edits.append(text); });
    change([](PublishShown& s) { s.caption.text = u"Otro"_s; });
    EXPECT_TRUE(edits.isEmpty()) << "showing is not editing";
    caption()->setFocus();
    caption()->moveCursor(QTextCursor::End);
    const QString added = u"\n👩‍👩‍👧 שלום\u00a0#Año"_s;
    QTest::keyClicks(caption(), u"!"_s);
    caption()->textCursor().insertText(added);
    EXPECT_EQ(edits.last(), u"Otro!"_s + added);
    QTest::keyClick(caption(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(edits.last(), u"Otro!"_s) << "undo acts in the caption";

    const qsizetype before = edits.size();
    change([](PublishShown& s) { s.caption.isUnused = true; });
    EXPECT_FALSE(caption()->isEnabled());
    EXPECT_EQ(caption()->text(), u"No se usa en stories"_s);
    change([](PublishShown& s) { s.caption.isUnused = false; });
    EXPECT_EQ(caption()->text(), shown.caption.text);
    EXPECT_TRUE(caption()->isEnabled());
    EXPECT_EQ(edits.size(), before);

    change([](PublishShown& s) { s.caption.text = QString(60'000, u'a'); });
    EXPECT_FALSE(caption()->isReadOnly()) << "a network takes longer captions than a layer";
}

TEST_F(PublishSheetTest, tabReachesEveryControlAndEscCloses)
{
    change([](PublishShown& s) {
        s.networks[2].state = ConnectionState::absent;
        s.report.checks.found = {checkWith(u"Aviso"_s, u"Ver imagen 2"_s)};
        s.report.isPublished = s.report.hasPage = true;
    });
    QStringList reached;
    QWidget* const first = window.focusWidget();
    do {
        reached.append(window.focusWidget()->accessibleName());
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    } while (window.focusWidget() != first && reached.size() < 60);
    for (const QString& name :
         {u"Página: Publicar"_s, u"Instagram, Conectada"_s, u"Cambiar cuenta"_s,
          u"Destino de Instagram: Feed"_s, u"Publicar en Facebook (150 créditos)"_s,
          u"Conectar LinkedIn"_s, u"Texto de la imagen"_s, u"Copiar texto"_s,
          u"Texto de la publicación"_s, u"Abrir la publicación"_s, u"Ver imagen 2: Aviso"_s,
          u"Cerrar"_s, u"Publicar en Feed (150 créditos)"_s, u"Imagen siguiente"_s,
          u"Imagen 1 de 4, foto-1"_s})
        EXPECT_TRUE(reached.contains(name)) << qPrintable(name);
    EXPECT_EQ(QSet<QString>(reached.begin(), reached.end()).size(), reached.size())
        << "each has a name of its own: " << qPrintable(reached.join(u", "_s));

    int closings = 0;
    QObject::connect(&sheet, &Sheet::closeRequested, [&] { ++closings; });
    for (QWidget* from : {static_cast<QWidget*>(caption()), static_cast<QWidget*>(strip())}) {
        from->setFocus();
        QTest::keyClick(from, Qt::Key_Escape);
    }
    EXPECT_EQ(closings, 2);
}

TEST_F(PublishSheetTest, keysWalkThroughTheCarouselAndWhatIsNotSentIsTold)
{
    change([](PublishShown& s) {
        s.images = readySheet(12).images;
        for (qsizetype i = 10; i < 12; ++i)
            s.images[i].isSent = false;
    });
    EXPECT_EQ(sheet.previewed(), shown.images[0].id);
    QTest::keyClick(strip(), Qt::Key_Left);
    EXPECT_EQ(sheet.previewed(), shown.images[0].id);
    QTest::keyClick(strip(), Qt::Key_Right);
    EXPECT_EQ(sheet.previewed(), shown.images[1].id);
    QTest::keyClick(strip(), Qt::Key_End);
    EXPECT_EQ(sheet.previewed(), shown.images[11].id);
    EXPECT_EQ(strip()->accessibleName(), u"Imagen 12 de 12, foto-12, no se envía"_s);
    EXPECT_TRUE(strip()->seen().contains(shown.images[11].id)) << "the strip scrolls";
    change([](PublishShown& s) { s.images.removeLast(); });
    EXPECT_EQ(sheet.previewed(), shown.images[0].id) << "its image is no longer selected";
}

TEST_F(PublishSheetTest, aStoryIsShownWithBarsWhereTheImageDoesNotFillIt)
{
    change([](PublishShown& s) {
        s.format = SocialFormat::square;
        s.placement = SocialPublishPlacement::story;
    });
    auto* preview = sheet.findChild<PostPreview*>();
    QImage white(sheet.previewPixels(), QImage::Format_RGB32);
    white.fill(Qt::white);
    EXPECT_EQ(white.width(), white.height());
    preview->setPicture(white);
    const QImage seen = preview->grab().toImage();
    const int height = std::min(seen.height(), seen.width() * 16 / 9);
    const auto at = [&](double down) {
        return seen.pixelColor(seen.width() / 2, int(down * height));
    };
    EXPECT_EQ(at(0.5), QColor(Qt::white));
    EXPECT_EQ(at(0.21), QColor(Qt::black)) << "in the safe zone, but beside the image";
    EXPECT_EQ(at(0.79), QColor(Qt::black));
    EXPECT_EQ(preview->heightForWidth(90), 160);
}

TEST_F(PublishSheetTest, stepsAreAnnouncedNowAndThenAndTheEndAtOnce)
{
    const auto* panel = sheet.findChild<PublishStatusPanel*>();
    const auto tell = [&](StatusKind kind, const QString& sentence) {
        change([&](PublishShown& s) {
            s.report.kind = kind;
            s.report.sentence = sentence;
        });
    };
    tell(StatusKind::note, u"Lista"_s);
    tell(StatusKind::working, u"Enviando"_s);
    EXPECT_EQ(panel->accessibleName(), u"Lista"_s);
    tell(StatusKind::done, u"Enviada"_s);
    EXPECT_EQ(panel->accessibleName(), u"Enviada"_s);
}

TEST_F(SmallSheetTest, theRightSideScrollsAboveTheFooter)
{
    change([](PublishShown& s) {
        for (int i = 0; i < 12; ++i)
            s.report.checks.found.append(checkWith(u"Aviso"_s, u"Ver %1"_s.arg(i)));
    });
    PushButton* primary = button(u"Publicar en Feed (150 créditos)"_s);
    PushButton* last = button(u"Ver 11: Aviso"_s);
    auto* area = sheet.findChild<QScrollArea*>();
    const auto isSeen = [&](QWidget* widget) {
        return widget->visibleRegion().boundingRect() == widget->rect();
    };
    EXPECT_TRUE(isSeen(primary));
    EXPECT_FALSE(isSeen(last));
    last->setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(isSeen(last));
    EXPECT_LE(area->mapTo(&sheet, area->rect().bottomLeft()).y(),
              primary->mapTo(&sheet, QPoint()).y());
    EXPECT_TRUE(isSeen(strip())) << "the preview gives way";
}

TEST_F(PublishSheetTest, theHistoryIsSearchedAndListedInParts)
{
    QList<PublishHistoryEntry> entries;
    for (int i = 0; i < 70; ++i) {
        const auto network = i % 2 ? facebook : instagram;
        entries.append({.id = QUuid::createUuid(),
                        .network = network,
                        .title = PublishTexts::place(network, SocialPublishPlacement::feed),
                        .line = u"Post %1"_s.arg(i),
                        .searched = i == 60 ? u"Otoño en los Picos"_s : u"Post %1"_s.arg(i),
                        .hasPage = i != 60});
    }
    entries[60].isUnknown = true;
    entries[0].pictures = {redPicture({62, 78}, "WEBP")};
    entries[1].pictures = {redPicture({62, 79}, "WEBP")};
    entries[2].pictures = {redPicture({62, 78}, "PNG")};
    sheet.setHistory(entries);
    sheet.setPage(PublishSheet::Page::history);
    settle();
    EXPECT_EQ(unclearControls(window), "");
    const auto openers = [&] {
        int count = 0;
        for (PushButton* each : sheet.history()->findChildren<PushButton*>())
            count += each->text() == u"Abrir"_s && each->isVisible();
        return count;
    };
    EXPECT_EQ(openers(), 30);
    QList<bool> areRed;
    for (PushButton* each : sheet.history()->findChildren<PushButton*>()) {
        if (each->text() == u"Abrir"_s && areRed.size() < 3)
            areRed.append(hasRed(each->parentWidget()->grab().toImage()));
    }
    EXPECT_EQ(areRed, (QList<bool>{true, false, false})) << "only small WebP pictures are decoded";
    button(u"Mostrar más"_s)->click();
    settle();
    EXPECT_EQ(openers(), 60);
    auto* search = sheet.history()->findChild<LineField*>();
    search->setText(u"otoño"_s);
    EXPECT_EQ(openers(), 0) << "an unknown post has no page";
    search->setText(u"Post 1"_s);
    settle();
    EXPECT_EQ(openers(), 11);

    QUuid copied;
    QObject::connect(sheet.history(), &HistoryPage::linkCopyRequested, [&](QUuid id) {
        copied = id;
        sheet.history()->tellCopied(id);
    });
    IconButton* copy = nullptr;
    for (auto* each : sheet.history()->findChildren<IconButton*>()) {
        if (!copy && each->isVisible() && each->toolTip() == u"Copiar enlace"_s)
            copy = each;
    }
    ASSERT_TRUE(copy);
    copy->click();
    EXPECT_EQ(copied, entries[1].id);
    EXPECT_EQ(copy->toolTip(), u"Enlace copiado"_s);
    EXPECT_EQ(unclearControls(window), "");
}

TEST(PublishTextsTest, amountsAndDatesReadAsInSpanish)
{
    using namespace PublishTexts;
    EXPECT_EQ(paidNote(0, 4), QString());
    EXPECT_EQ(paidNote(1, 4), u"1 de las 4 ya está pagada y no vuelve a descontar créditos."_s);
    EXPECT_EQ(paidNote(1, 1), u"Ya está pagada y no vuelve a descontar créditos."_s);
    EXPECT_EQ(paidNote(3, 3), u"Las 3 ya están pagadas y no vuelven a descontar créditos."_s);
    EXPECT_EQ(cost(facebook, 0, 0),
              u"Estas imágenes ya están pagadas. Publicar aquí no descontará créditos."_s);
    EXPECT_EQ(cost(facebook, 150, 149), u"Necesitas 150 créditos para publicar estas imágenes."_s);
    EXPECT_EQ(cost(facebook, 150, 150),
              u"Publicar las imágenes que se enviarán a Facebook descontará 150 créditos."_s);
    EXPECT_EQ(account(u"Casa\n\u202eLiébana"_s), u"Casa Liébana"_s);
    EXPECT_EQ(account(QString(10'000, u'a')), QString(79, u'a') + u'…');
    EXPECT_EQ(amount(4'130'000, 12'400'000), u"4,1 MB de 12,4 MB"_s);
    const QDateTime time(QDate(2026, 11, 6), QTime(9, 30));
    EXPECT_EQ(date(time, QDate(2026, 12, 31)), u"6 nov, 9:30"_s);
    EXPECT_EQ(date(time, QDate(2027, 1, 1)), u"6 nov 2026, 9:30"_s);
}
