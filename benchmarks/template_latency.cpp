// Measures how long templates occupy the interface thread: applying one to all items, and opening
// the tab that shows forty of them.
//
//     template_latency PHOTOS     a folder; use 500 photos to compare figures

#include "app/layers/SidePanel.h"
#include "app/presets/GalleryPictures.h"
#include "app/presets/PresetPictures.h"
#include "app/presets/TemplatesBinding.h"
#include "app/theme/StudioStyle.h"
#include "app/theme/Theme.h"
#include "app/window/MainWindow.h"
#include "app/window/StudioShell.h"
#include "benchmarks/Measuring.h"
#include "platform/Memory.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "tests/support/ScriptedAccount.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr int clicks = 40, designs = 40;

// Applies the next design of the gallery at each call, as a separate step of the history.
struct Apply {
    StudioSession& session;
    QList<JSONVisualTemplateDefinition> gallery =
        BuiltInTemplateLibrary().definitions(session.batch().format);
    qsizetype count = 0;

    void operator()()
    {
        const JSONVisualTemplateDefinition& design = gallery[count++ % gallery.size()];
        session.applyTemplate(design.name, design.application());
    }
};

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    TimedApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    dress(application, darkTheme(), Motion::reduced);
    if (argc != 2) {
        std::fprintf(stderr, "template_latency PHOTOS\n");
        return 2;
    }
    const QUrl folder = QUrl::fromLocalFile(QDir(QString::fromLocal8Bit(argv[1])).absolutePath());
    const QTemporaryDir own;
    const auto photos = std::make_shared<PhotoCache>(own.filePath(u"thumbnails"_s));

    // The second store cannot be opened and refuses at once, so its round measures the click
    // without the write.
    for (const QString& store : {own.filePath(u"a.sqlite"_s), u"/proc/nowhere/b.sqlite"_s}) {
        PreferencesStore preferences(store);
        StudioSession session(photos, preferences);
        session.restoreWorkspaceIfNeeded();
        session.load({folder});
        turnUntil([&] { return !session.isImporting(); });
        std::printf("%lld photos%s\n", qlonglong(session.batch().items.size()),
                    preferences.isOpen() ? "" : ", without the write");
        Apply apply{session};
        report("session, one selected", timed(clicks, 30, [&] { apply(); }));
        session.selectAll();
        turnFor(200);
        report("session, all selected", timed(clicks, 60, [&] { apply(); }));
    }
    {
        PreferencesStore preferences(own.filePath(u"c.sqlite"_s));
        StudioSession session(photos, preferences);
        ScriptedAccount account(preferences, Scripted::signedIn);
        MainWindow window(session, account.session(), photos, preferences);
        window.resize(1440, 900);
        window.show();
        session.restoreWorkspaceIfNeeded();
        session.load({folder});
        turnUntil([&] { return !session.isImporting() && window.isIdle(); });
        Apply apply{session};
        // Saves templates of the user until the tab has forty designs.
        const auto missing = designs - apply.gallery.size();
        for (qsizetype i = 0; i < missing; ++i) {
            apply();
            window.templates().saved().saveTemplate(*session.batch().currentItem(),
                                                    session.batch().format);
        }
        turnUntil([&] { return window.isIdle(); });
        turnFor(1000);

        SavedTemplates& saved = window.templates().saved();
        int name = 0;
        report("renaming one of them", timed(clicks, 30, [&] {
                   saved.renameTemplate(saved.templates().entries().last().id,
                                        QString::number(++name));
               }));
        application.milliseconds.clear();
        QElapsedTimer watch;
        watch.start();
        qint64 lastDrawn = 0;
        int drawn = 0;
        QObject::connect(
            window.templates().findChild<GalleryPictures*>()->findChild<PresetPictures*>(),
            &PresetPictures::ready, &window, [&] {
                ++drawn;
                lastDrawn = watch.elapsed();
            });
        // Measures setTab() and adds its time to those of the events.
        const double press =
            timeOf([&] { window.shell()->sidePanel()->setTab(SideTab::templates); });
        application.milliseconds.push_back(press);
        turnFor(1000);
        std::printf("%d designs, the %d that are seen drawn after %lld ms\n", designs, drawn,
                    qlonglong(lastDrawn));
        report("opening the tab, events", application.milliseconds);

        session.selectAll();
        turnFor(1000);
        application.milliseconds.clear();
        report("window, all selected, the click itself", timed(clicks, 200, [&] { apply(); }));
        report("window, all selected, events after it", application.milliseconds);
    }
    std::printf("peak memory %.0f MB\n", double(peakMemory()) / 1e6);
    return 0;
}
