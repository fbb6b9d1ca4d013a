#include "app/desktop/DesktopNotices.h"

#include "copygen/LocalAIManager.h"
#include "platform/PreferencesStore.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "tests/app/FakeDesktop.h"

#include <QTemporaryDir>

#include <QtTest/QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class DesktopNoticesTest : public ::testing::Test {
protected:
    // The sentences of the notices that `work` leads to.
    template <typename Work>
    QStringList noticesOf(const Work& work)
    {
        desktop.notices.clear();
        work();
        QStringList told;
        for (const DesktopNotice& notice : std::as_const(desktop.notices))
            told.append(notice.title + u": "_s + notice.sentence);
        return told;
    }

    QTemporaryDir m_folder;
    PreferencesStore preferences{m_folder.filePath(u"p.sqlite"_s)};
    StudioSession session{std::make_shared<PhotoCache>(m_folder.filePath(u"cache"_s)), preferences};
    FakeDesktop desktop;
    bool isInFront = false;
    std::chrono::steady_clock::time_point now;
    DesktopNotices notices{desktop, [this] { return isInFront; }, [this] { return now; }};
};

}    // namespace

TEST_F(DesktopNoticesTest, howLongWorkEndedBehindOtherWindowsIsTold)
{
    notices.follow(session);
    const auto exported = [this](StatusKind kind, const QString& sentence) {
        return [this, kind, sentence] { Q_EMIT session.exports().told(sentence, kind, {}); };
    };
    const auto published = [this](StatusKind kind, const QString& sentence) {
        return [this, kind, sentence] { Q_EMIT session.publish().told(sentence, kind, {}); };
    };
    const auto generated = [this](const CopyOutcome& outcome) {
        return [this, outcome] { Q_EMIT session.copy().ended(outcome); };
    };
    using Kind = Activity::Kind;
    struct Case {
        const char* label;
        Kind kind;
        int time;    // seconds
        std::function<void()> tellEnd;
        QStringList told;
        bool isInFront = false;
    };
    const CopyOutcome unpaid{.state = CopyOutcome::State::failing, .images = 1, .reason = u"No."_s};
    for (const Case& c :
         {Case{"export",
               Kind::exporting,
               11,
               exported(StatusKind::done, u"Hecho."_s),
               {u"Exportación: Hecho."_s}},
          Case{"failed export",
               Kind::exporting,
               11,
               exported(StatusKind::error, u"Mal."_s),
               {u"Exportación: Mal."_s}},
          Case{"stopped export", Kind::exporting, 11, exported(StatusKind::note, u"Alto."_s), {}},
          Case{"generation",
               Kind::generating,
               40,
               generated(unpaid),
               {u"Generación de textos: No."_s}},
          Case{"stopped generation",
               Kind::generating,
               40,
               generated({.state = CopyOutcome::State::cancelled}),
               {}},
          Case{"publication",
               Kind::publishing,
               11,
               published(StatusKind::warning, u"Quizá."_s),
               {u"Publicación: Quizá."_s}},
          Case{"stopped publication",
               Kind::publishing,
               11,
               published(StatusKind::note, u"Alto."_s),
               {}},
          Case{"short", Kind::exporting, 10, exported(StatusKind::done, u"Hecho."_s), {}},
          Case{"seen", Kind::exporting, 60, exported(StatusKind::done, u"Hecho."_s), {}, true},
          Case{"import", Kind::importing, 60, exported(StatusKind::done, u"De otro."_s), {}}}) {
        isInFront = c.isInFront;
        const auto work = [&] {
            const std::chrono::seconds time(c.time);
            session.setActivity({.kind = c.kind});
            now += time / 2;
            session.setActivity({.kind = c.kind, .done = 1, .total = 2});
            now += time - time / 2;
            session.endActivity(c.kind);
            c.tellEnd();
        };
        EXPECT_EQ(noticesOf(work), c.told) << c.label;
    }
}

TEST_F(DesktopNoticesTest, howAnInstallationEndedIsTold)
{
    struct Case {
        const char* label;
        QString root;
        bool isCancelled;
        QStringList told;
    };
    const QString noFolder = m_folder.filePath(u"p.sqlite/ia"_s);    // below a file
    for (const Case& c :
         {Case{"failed",
               noFolder,
               false,
               {u"Instalación de la IA local: No se ha podido instalar Gemma: no se ha podido "
                "crear la carpeta «%1»."_s.arg(noFolder)}},
          Case{"cancelled", m_folder.filePath(u"ia"_s), true, {}}}) {
        EngineProfile profile = llamaProfile({c.root}, {});
        profile.installScript = [] { return u"sleep 60"_s; };
        LocalAIManager manager(profile, nullptr, [](const QString&) {
            return Machine{.processor = u"x86_64"_s, .free = 100'000'000'000};
        });
        notices.follow(manager);
        QObject::connect(&manager, &LocalAIManager::changed, &manager, [this] { now += 11s; });
        const auto work = [&] {
            manager.installGemma();
            if (c.isCancelled) {
                manager.cancelInstall();
                EXPECT_TRUE(QTest::qWaitFor([&] { return !manager.isInstallingGemma(); }));
                EXPECT_EQ(manager.installMessage(), u"Instalación cancelada."_s);
            }
        };
        EXPECT_EQ(noticesOf(work), c.told) << c.label;
    }
}
