// Measures each event on the interface thread while a gallery of two thousand
// designs is opened, scrolled and searched, without a display.
//
//     gallery_events PHOTO     an image file, over which the designs are shown

#include "app/controls/fields/LineField.h"
#include "app/layers/SidePanel.h"
#include "app/presets/TemplateGallery.h"
#include "app/presets/TemplatesBinding.h"
#include "app/presets/TemplatesPanel.h"
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
#include "studio/templates/TemplateLibrary.h"
#include "tests/support/ScriptedAccount.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace {

constexpr int designs = 1990;

// A pack of designs like those of the program, under other names and ids.
void writePack(const QDir& folder)
{
    const QList<JSONVisualTemplateDefinition> gallery =
        BuiltInTemplateLibrary().definitions(SocialFormat::carouselPortrait);
    for (int i = 0; i < designs; ++i) {
        JSONVisualTemplateDefinition design = gallery[i % gallery.size()];
        design.id = QUuid::createUuid();
        design.name = u"%1 %2"_s.arg(design.name).arg(i);
        QFile file(folder.filePath(u"%1.json"_s.arg(i)));
        if (file.open(QIODevice::WriteOnly))
            file.write(definitionBytes(design));
    }
}

void turnWheel(QWidget& widget, int degrees)
{
    const QPointF middle = widget.rect().center();
    QWheelEvent event(middle, widget.mapToGlobal(middle), {}, {0, degrees}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    NamingApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    dress(application, darkTheme());
    if (argc != 2) {
        std::fprintf(stderr, "gallery_events PHOTO\n");
        return 2;
    }
    const QTemporaryDir own;
    const QDir folder(own.path());
    folder.mkpath(u"pack"_s);
    writePack(QDir(folder.filePath(u"pack"_s)));
    // The window keeps its packs where the environment says.
    qputenv("XDG_DATA_HOME", QFile::encodeName(folder.filePath(u"data"_s)));
    PreferencesStore preferences(folder.filePath(u"moltiva.sqlite"_s));
    const auto photos = std::make_shared<PhotoCache>(folder.filePath(u"thumbnails"_s));
    StudioSession session(photos, preferences);
    ScriptedAccount account(preferences, Scripted::signedIn);
    MainWindow window(session, account.session(), photos, preferences);
    window.resize(1920, 1080);
    window.show();
    session.restoreWorkspaceIfNeeded();
    session.load({QUrl::fromLocalFile(QString::fromLocal8Bit(argv[1]))});
    turnUntil([&] { return !session.isImporting() && window.isIdle(); });
    TemplateLibrary& library = window.templates().library();
    library.installPack(folder.filePath(u"pack"_s));
    SidePanel* panel = window.shell()->sidePanel();
    TemplateGallery* gallery = panel->templatesPanel()->gallery();
    const auto isInstalled = [&] {
        return library.sections(session.batch().format).last().designs.size() == designs;
    };
    turnUntil(isInstalled);
    panel->setTab(SideTab::text);
    turnUntil([&] { return window.isIdle(); });
    turnFor(500);

    application.milliseconds.clear();
    std::vector<double> openings;
    for (int i = 0; i < 10; ++i) {
        openings.push_back(timeOf([&] { panel->setTab(SideTab::templates); }));
        turnUntil([&] { return window.isIdle(); });
        panel->setTab(SideTab::text);
        turnFor(100);
    }
    report("opening the tab", openings);
    tellEvents("opening and leaving it ten times", application.milliseconds);

    panel->setTab(SideTab::templates);
    turnUntil([&] { return window.isIdle(); });
    application.milliseconds.clear();
    for (int i = 0; i < 400; ++i) {
        application.milliseconds.push_back(timeOf([&] { turnWheel(*gallery->viewport(), -240); }));
        turnFor(8);
    }
    for (int i = 0; i <= 20; ++i) {
        QScrollBar* bar = gallery->verticalScrollBar();
        application.milliseconds.push_back(timeOf([&] { bar->setValue(bar->maximum() * i / 20); }));
        turnFor(50);
    }
    turnUntil([&] { return window.isIdle(); });
    tellEvents("scrolling to the end", application.milliseconds);
    std::printf("%lld pictures kept\n", qlonglong(gallery->keptPictures()));

    auto* search = panel->templatesPanel()->findChild<LineField*>();
    std::vector<double> lookups, keys;
    for (const QString& text : {u"a"_s, u"ar"_s, u"arc"_s, u"arco"_s, u"arco 1"_s, u"arco 19"_s,
                                u"zzz"_s, u"19"_s, u""_s}) {
        lookups.push_back(
            timeOf([&] { (void)library.found(text, {}, false, session.batch().format); }));
        keys.push_back(timeOf([&] { search->setText(text); }));
        turnUntil([&] { return window.isIdle(); });
    }
    report("finding in the library", lookups);
    report("a letter in the search field", keys);
    tellEvents("searching", application.milliseconds);
    std::printf("peak memory %.0f MB\n", double(peakMemory()) / 1e6);
    return 0;
}
