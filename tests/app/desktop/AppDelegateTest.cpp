#include "app/desktop/AppDelegate.h"
#include "app/desktop/LinkRegistration.h"
#include "app/desktop/ResourceCheck.h"
#include "app/desktop/ShortcutView.h"
#include "platform/NotificationCenter.h"

#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class CountedRegistration : public LinkRegistration {
public:
    void registerCurrentApp() override { ++count; }
    int count = 0;
};

class AppDelegateTest : public testing::Test {
protected:
    AppDelegateTest()
    {
        for (const QString& name : {Notification::undoRequested, Notification::redoRequested,
                                    Notification::deepLinkReceived}) {
            notificationCenter().subscribe(name, &delegate, [this, name](const QVariant& object) {
                log.append(name + object.toUrl().toString());
            });
        }
        window.show();
        field.setFocus();
    }
    QStringList taken() { return std::exchange(log, {}); }

    QWidget window;
    QLineEdit field{&window};
    CountedRegistration links;
    AppDelegate delegate{window, links};
    QStringList log;
};

}    // namespace

TEST_F(AppDelegateTest, undoAndRedoAreAskedForFromEverywhereUntilTheEnd)
{
    QTest::keyClicks(&field, u"zZ"_s);
    QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(taken().isEmpty());
    field.setText(u"a"_s);

    delegate.applicationDidFinishLaunching();
    EXPECT_EQ(links.count, 1);
    QTest::keyClicks(&field, u"zZ"_s);
    EXPECT_EQ(field.text(), u"azZ"_s);
    EXPECT_TRUE(taken().isEmpty());
    const auto press = [this](Qt::KeyboardModifiers modifiers, const QString& text) {
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Z, modifiers, text);
        QCoreApplication::sendEvent(&field, &key);
    };
    const Qt::KeyboardModifiers ctrl = Qt::ControlModifier;
    press(ctrl, u"z"_s);
    press(ctrl, u"Z"_s);    // Caps Lock
    press(ctrl | Qt::ShiftModifier, u"Z"_s);
    press(ctrl | Qt::ShiftModifier, u"z"_s);    // Caps Lock
    EXPECT_EQ(taken(), (QStringList{u"moltivaUndoRequested"_s, u"moltivaUndoRequested"_s,
                                    u"moltivaRedoRequested"_s, u"moltivaRedoRequested"_s}));
    QTest::keyClick(&field, Qt::Key_Z, ctrl);
    EXPECT_EQ(taken().size(), 1) << "neither twice nor as a shortcut";
    EXPECT_EQ(field.text(), u"azZ"_s) << "the field has not seen the key";

    delegate.applicationWillTerminate();
    QTest::keyClick(&field, Qt::Key_Z, ctrl);
    EXPECT_TRUE(taken().isEmpty());
}

TEST_F(AppDelegateTest, eachLinkIsPostedInItsPlaceAndFilesGoTogether)
{
    QList<QUrl> files;
    QObject::connect(&delegate, &AppDelegate::filesReceived,
                     [&](const QList<QUrl>& received) { files += received; });
    delegate.applicationOpen({QUrl(u"moltiva://auth?token=1"_s), QUrl(u"file:///a.jpg"_s),
                              QUrl(u"otro:cosa"_s), QUrl(u"file://localhost/b.jpg"_s),
                              QUrl(u"moltiva://auth?token=1"_s), QUrl(u"/c#1?.jpg"_s),
                              QUrl(u"/d?e#f.jpg"_s)});
    EXPECT_EQ(taken(), (QStringList{u"moltivaDeepLinkReceivedmoltiva://auth?token=1"_s,
                                    u"moltivaDeepLinkReceivedotro:cosa"_s,
                                    u"moltivaDeepLinkReceivedmoltiva://auth?token=1"_s}));
    EXPECT_EQ(files, (QList<QUrl>{QUrl(u"file:///a.jpg"_s), QUrl(u"file:///b.jpg"_s),
                                  QUrl::fromLocalFile(u"/c#1?.jpg"_s),
                                  QUrl::fromLocalFile(u"/d?e#f.jpg"_s)}));
}

TEST(ResourceCheck, aProgramWithoutItsFilesEndsAndNamesThem)
{
    requireResources();
    EXPECT_DEATH(requireResources({u":/icons"_s, u":/nada"_s, u":/nunca"_s}),
                 "could not load resource bundle: from :/nada or :/nunca");
}

TEST(ShortcutView, usesItsKeysAndPassesTheOthersOn)
{
    QWidget window;
    ShortcutView view(&window);
    QStringList log;
    const auto writes = [&log](const QString& word) { return [&log, word] { log.append(word); }; };
    view.setShortcuts({writes(u"left"_s), writes(u"right"_s), writes(u"delete"_s),
                       writes(u"undo"_s), writes(u"redo"_s)});
    window.show();
    EXPECT_EQ(window.focusWidget(), &view);
    for (const auto& [key, isUsed] :
         {std::pair(Qt::Key_Left, true), std::pair(Qt::Key_Right, true),
          std::pair(Qt::Key_Backspace, true), std::pair(Qt::Key_Delete, true),
          std::pair(Qt::Key_Up, false), std::pair(Qt::Key_Z, false)}) {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&view, &event);
        EXPECT_EQ(event.isAccepted(), isUsed) << key;
    }
    EXPECT_EQ(log, (QStringList{u"left"_s, u"right"_s, u"delete"_s, u"delete"_s}));
}
