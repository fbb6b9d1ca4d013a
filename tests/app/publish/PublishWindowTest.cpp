#include "app/account/AuthGateView.h"
#include "app/controls/Button.h"
#include "app/controls/Caption.h"
#include "app/controls/fields/SlotEditor.h"
#include "app/publish/HistoryPage.h"
#include "app/publish/NetworkCard.h"
#include "app/publish/PostStrip.h"
#include "app/publish/PublishSheet.h"
#include "app/window/CommandText.h"
#include "app/window/MainWindow.h"
#include "app/window/StudioMenu.h"
#include "app/window/StudioShell.h"
#include "platform/PreferencesStore.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "studio/TextTransfer.h"
#include "tests/app/Events.h"
#include "tests/app/Spoken.h"
#include "tests/support/ScriptedAccount.h"

#include <QAction>
#include <QClipboard>
#include <QMenu>
#include <QTemporaryDir>

#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr auto reserving = "POST /api/credits/social-copy/reserve";
constexpr auto publishing = "POST /api/social/publish";

// A window with photos and a service on which Instagram and Facebook are connected.
struct PublishWindow : ::testing::Test {
    PublishWindow()
    {
        session.setAccountSession(account.session());
        session.setCreditJournal(account.journal(), data.filePath(u"espera"_s));
        session.setPublishService(account.api());
        const auto network = [](const QByteArray& name) {
            return R"({"network":")" + name +
                   R"(","name":"N","provider":"p","isConnected":true,"connectURL":"https://c.es"})";
        };
        account.answer("GET /api/social/status", R"({"ok":true,"networks":[)" +
                                                     network("instagram") + ',' +
                                                     network("facebook") + "]}");
        session.restoreWorkspaceIfNeeded();
        window.resize(1440, 900);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(waitFor([this] { return window.gate()->state() == Gate::open; }));
    }

    static bool waitFor(const std::function<bool()>& reached)
    {
        return QTest::qWaitFor(reached, 30'000);
    }
    void load(int count)
    {
        for (int i = 0; i < count; ++i) {
            QImage image(60, 40, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(i * 30 % 360, 200, 200));
            EXPECT_TRUE(image.save(photoFolder.filePath(u"f%1.png"_s.arg(i))));
        }
        session.load({QUrl::fromLocalFile(photoFolder.path())});
        EXPECT_TRUE(waitFor([&] { return session.batch().items.size() == count; }));
        session.selectAll();
        EXPECT_TRUE(waitFor([this] { return session.exports().areCostsUpToDate(); }));
    }
    void open()
    {
        window.menu()->action(CommandText::publish)->trigger();
        EXPECT_TRUE(
            waitFor([this] { return publish().connection(SocialPublishNetwork::facebook); }));
        EXPECT_TRUE(waitFor([this] { return publish().publishStatusKind() == StatusKind::note; }));
    }
    // Imports texts from a spreadsheet.
    void writeTexts(const QByteArray& csv)
    {
        QFile file(data.filePath(u"textos.csv"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(csv);
        file.close();
        importTexts(&session, file.fileName());
    }
    PublishSheet* sheet() { return window.findChild<PublishSheet*>(); }
    StudioPublish& publish() { return session.publish(); }
    // The one that is seen, if there is one.
    PushButton* button(const QString& name)
    {
        PushButton* found = nullptr;
        for (auto* each : sheet()->findChildren<PushButton*>()) {
            const bool isIt = each->accessibleName() == name || each->text() == name;
            if (isIt && (!found || each->isVisible()))
                found = each;
        }
        EXPECT_TRUE(found) << qPrintable(name);
        return found;
    }

    // Sees to it that every image costs 50 credits and is published.
    void acceptPosts()
    {
        account.answer(reserving, R"({"ok":true,"balance":4230,"cost":50})");
        account.answer("GET /api/auth/me", ScriptedAccount::summary("Lucía Ferrer", 4230));
        account.answer(publishing, R"({"ok":true,"url":"https://posts.es/1"})");
    }

    QTemporaryDir photoFolder, data;
    std::shared_ptr<PhotoCache> photos = std::make_shared<PhotoCache>(data.filePath(u"cache"_s));
    PreferencesStore preferences{data.filePath(u"p.sqlite"_s)};
    StudioSession session{photos, preferences};
    ScriptedAccount account{preferences, Scripted::signedIn};
    MainWindow window{session, account.session(), photos, preferences};
};

}    // namespace

TEST_F(PublishWindow, theSheetOpensWithImagesAloneAndLocksTheStudio)
{
    QAction* command = window.menu()->action(CommandText::publish);
    EXPECT_EQ(command->shortcut(), QKeySequence(u"Ctrl+P"_s));
    auto* inTopBar = named<PushButton>(window.shell()->topBar(), u"Publicar"_s);
    EXPECT_FALSE(inTopBar->isEnabled());
    command->trigger();
    EXPECT_FALSE(sheet());
    EXPECT_EQ(session.status(), u"Importa una imagen para exportarla o publicarla."_s);

    load(3);
    EXPECT_TRUE(inTopBar->isEnabled());
    inTopBar->click();
    ASSERT_TRUE(sheet() && sheet()->isPresented());
    EXPECT_TRUE(window.shell()->isCovered());
    EXPECT_FALSE(window.menu()->action(CommandText::undo)->isEnabled());
    ASSERT_TRUE(waitFor([this] { return publish().publishStatusKind() == StatusKind::note; }));
    EXPECT_TRUE(button(u"Publicar en Feed (150 créditos)"_s)->isEnabled());
    EXPECT_EQ(sheet()->findChild<SlotEditor*>()->text(),
              session.batch().items[0].analysis.publicationCaption);
    ASSERT_TRUE(waitFor([this] { return window.isIdle(); }));
    EXPECT_EQ(unclearControls(window), "");
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_FALSE(sheet()->isPresented());
    EXPECT_FALSE(window.shell()->isCovered());
    EXPECT_TRUE(window.menu()->action(CommandText::undo)->isEnabled());

    open();
    account.answer("POST /api/auth/logout", R"({"ok":true})");
    account.session().logout();
    EXPECT_TRUE(waitFor([this] { return window.gate()->state() == Gate::signedOut; }));
    EXPECT_FALSE(sheet()->isPresented()) << "it would lie over the sign-in";
}

TEST_F(PublishWindow, aLinkOfACheckGoesToWhatItSpeaksOf)
{
    load(3);
    open();
    PublishCheck check;
    check.kind = PublishCheckKind::captionLength;
    Q_EMIT sheet()->followRequested(check);
    EXPECT_EQ(window.focusWidget(), sheet()->findChild<SlotEditor*>());
    check.kind = PublishCheckKind::published;
    Q_EMIT sheet()->followRequested(check);
    EXPECT_EQ(sheet()->page(), PublishSheet::Page::history);

    Q_EMIT sheet()->placementChosen(SocialPublishPlacement::story);
    button(u"Adaptar a 9:16"_s)->click();
    EXPECT_EQ(session.batch().format, SocialFormat::storyReel);
    EXPECT_TRUE(sheet()->isPresented());

    const PublicationItem third = session.batch().items[2];
    check.kind = PublishCheckKind::contrast;
    check.item = third.id;
    check.layer = third.layers[1].id;
    Q_EMIT sheet()->followRequested(check);
    EXPECT_FALSE(sheet()->isPresented());
    EXPECT_EQ(session.batch().selectedIndex, 2);
    EXPECT_EQ(session.batch().selectedLayerID, third.layers[1].id);
    EXPECT_EQ(session.batch().selectedItemIDs.size(), 3) << "they are still to be published";
}

TEST_F(PublishWindow, anotherNetworkIsShownFirstWhenItsCaptionIsAnother)
{
    load(1);
    open();
    auto* caption = sheet()->findChild<SlotEditor*>();
    const auto networks = sheet()->findChildren<NetworkCard*>();
    networks[1]->click();
    QTest::keyClicks(caption, u"x"_s);
    const QString ofFacebook = caption->text();
    networks[0]->click();
    ASSERT_NE(caption->text(), ofFacebook);
    button(u"Publicar en Facebook (50 créditos)"_s)->click();
    EXPECT_EQ(publish().network(), SocialPublishNetwork::facebook);
    EXPECT_EQ(caption->text(), ofFacebook);
    EXPECT_FALSE(publish().isPublishing()) << "the user has not seen this text";

    const QString ofImage = session.batch().items[0].analysis.publicationCaption;
    named<Control>(sheet(), u"Texto de la imagen"_s)->click();
    auto* menu = sheet()->findChild<QMenu*>();
    ASSERT_TRUE(menu);
    ASSERT_EQ(menu->actions().size(), 1);
    menu->actions()[0]->trigger();
    EXPECT_EQ(publish().publishCaption(), ofImage);
    EXPECT_EQ(caption->text(), ofImage);
    menu->close();
    QTest::keyClick(caption, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(caption->text(), ofFacebook);
    EXPECT_EQ(publish().publishCaption(), ofFacebook) << "the typed text is lost";
}

TEST_F(PublishWindow, aPressWaitsUntilTheTextsAreJudgedAndTellsTheirWarningsFirst)
{
    load(40);
    session.selectSingleIndex(39);    // so that the first ones, which are sent, are out of view
    session.selectAll();
    open();
    const auto sees = [this](const QString& text) {
        const auto captions = sheet()->findChildren<Caption*>();
        return std::ranges::any_of(captions, [&](const Caption* caption) {
            return caption->isVisible() && caption->text().contains(text);
        });
    };
    const QString checking = u"Comprobando las imágenes…"_s, passed = u"correctas"_s;
    const auto isChecked = [&] { return sees(passed) && !sees(checking); };
    ASSERT_TRUE(waitFor(isChecked));
    account.answer(reserving, R"({"ok":false,"error":"No."})", 500);
    session.setFormat(SocialFormat::square);
    EXPECT_TRUE(sees(checking) && !sees(passed)) << "nothing is known of the new shape";
    button(u"Publicar en Feed (500 créditos)"_s)->click();
    EXPECT_FALSE(publish().isPublishing());
    ASSERT_TRUE(waitFor(isChecked));
    const QString refused = u"No se ha podido completar la operación."_s;
    // On a busy machine texts are judged before their photos are there, and anew with them. The
    // press then wants to be confirmed, because there are warnings that it had not seen.
    if (!publish().isPublishing() && !publish().publishStatus().startsWith(refused))
        button(u"Publicar en Feed (500 créditos)"_s)->click();
    EXPECT_TRUE(waitFor([&] { return publish().publishStatus().startsWith(refused); }))
        << qPrintable(publish().publishStatus());
    ASSERT_TRUE(waitFor(isChecked));

    const QByteArray text = QByteArray("Palabra ").repeated(200);
    writeTexts("archivo,subtitulo\nf0.png," + text + '\n');
    EXPECT_TRUE(waitFor([&] { return sees(checking); }));
    const qsizetype sent = account.log().size();
    button(u"Publicar en Feed (500 créditos)"_s)->click();
    ASSERT_TRUE(waitFor(isChecked)) << "nobody has the changed image judged";
    EXPECT_TRUE(std::ranges::count(publish().checks().found, PublishCheckKind::overflow,
                                   &PublishCheck::kind));
    EXPECT_FALSE(publish().isPublishing());
    EXPECT_EQ(account.log().size(), sent);
}

TEST_F(PublishWindow, aPressWaitsUntilItIsKnownWhetherTheSameWasPublished)
{
    load(2);
    acceptPosts();
    open();
    const auto select = [this](int index) {
        session.selectSingleIndex(index);
        EXPECT_TRUE(waitFor([&] {
            const QList<PublicationItem> sent = publish().sentItems();
            return sent.size() == 1 && sent[0].id == session.batch().items[index].id &&
                   !publish().isComparing() && window.isIdle();
        }));
    };
    const auto press = [this] {
        Q_EMIT sheet()->publishRequested(SocialPublishNetwork::instagram);
    };
    select(0);
    press();
    ASSERT_TRUE(waitFor([this] { return publish().publishedPost().has_value(); }));
    select(1);    // its renders are named in place of those of the first image
    bool isPressed = false;
    QObject::connect(&publish(), &StudioPublish::changed, sheet(), [&] {
        if (!publish().isComparing() || std::exchange(isPressed, true))
            return;
        press();
        EXPECT_FALSE(publish().isPublishing()) << "it may have been published before";
    });
    select(0);
    EXPECT_TRUE(isPressed);
    EXPECT_TRUE(waitFor([this] { return publish().isConfirming(); }));
    EXPECT_TRUE(publish().publishStatus().startsWith(u"Ya se publicó el "_s))
        << qPrintable(publish().publishStatus());
    EXPECT_EQ(publish().history().size(), 1);
    press();
    EXPECT_TRUE(waitFor([this] { return publish().history().size() == 2; }));
}

TEST_F(PublishWindow, aPostIsPublishedToldAndKeptAndAHostilePageIsNeverOpened)
{
    load(1);
    acceptPosts();
    open();
    const auto isSent = [this] {
        return std::ranges::any_of(account.log(), [](const QByteArray& request) {
            return request.startsWith(publishing);
        });
    };
    account.hold(reserving);
    button(u"Publicar en Feed (50 créditos)"_s)->click();
    ASSERT_TRUE(waitFor([this] { return publish().isPublishing(); }));
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_TRUE(sheet()->isPresented()) << "it can still be stopped";
    account.release();
    account.hold(publishing);
    ASSERT_TRUE(waitFor(isSent));
    ASSERT_TRUE(waitFor([this] { return button(u"Cerrar"_s)->isEnabled(); }));
    QTest::keyClick(sheet(), Qt::Key_Escape);
    EXPECT_FALSE(sheet()->isPresented()) << "only the answer is missing";
    EXPECT_TRUE(publish().isPublishing());
    window.menu()->action(CommandText::publish)->trigger();
    EXPECT_TRUE(sheet()->isPresented());
    account.release();
    ASSERT_TRUE(waitFor([this] { return !publish().isPublishing(); }));
    EXPECT_EQ(session.status(), u"Publicación enviada a Instagram. Coste: 50 créditos."_s);
    ASSERT_TRUE(publish().publishedPost()) << qPrintable(publish().publishStatus());
    button(u"Abrir la publicación"_s)->click();
    EXPECT_EQ(account.opened(), QList<QUrl>{QUrl(u"https://posts.es/1"_s)});

    sheet()->setPage(PublishSheet::Page::history);
    settle();
    sheet()->history()->findChild<IconButton*>()->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), u"https://posts.es/1"_s);

    sheet()->setPage(PublishSheet::Page::publish);
    for (const QByteArray url : {"javascript:alert(1)", "file:///etc/passwd", "ftp://a.es/1"}) {
        account.answer(publishing, R"({"ok":true,"url":")" + url + R"("})");
        session.setText(CopySlot::title, QString::fromLatin1(url));
        ASSERT_TRUE(waitFor([this] { return session.exports().areCostsUpToDate(); }));
        publish().preparePublish(SocialPublishNetwork::instagram, SocialPublishPlacement::feed);
        ASSERT_TRUE(waitFor([this] { return !publish().isPublishing(); }));
        EXPECT_TRUE(publish().publishedPost()) << qPrintable(publish().publishStatus());
        EXPECT_FALSE(button(u"Abrir la publicación"_s)->isVisible()) << url.constData();
    }
    EXPECT_EQ(account.opened().size(), 1);
    EXPECT_EQ(publish().history().size(), 4);
}
