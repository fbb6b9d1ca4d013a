// Publishes ten stories of noisy photos in the real window, without a display, at a service of its
// own: once stopped in the middle of sending, once to the end. Then opens the publish sheet over
// five hundred selected images. Measures each event on the interface thread.
//
//     publish_events SERVICE_PROGRAM

#include "app/account/AuthGateView.h"
#include "app/publish/PublishSheet.h"
#include "app/theme/StudioStyle.h"
#include "app/theme/Theme.h"
#include "app/window/CommandText.h"
#include "app/window/MainWindow.h"
#include "app/window/StudioMenu.h"
#include "benchmarks/Measuring.h"
#include "platform/Memory.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "tools/Storm.h"

#include <QAction>
#include <QScopeGuard>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr int sentPhotos = 10, manyPhotos = 500;

// Noise does not compress, so that the request is as large as it can be.
QImage noisy(QSize size, quint32 seed)
{
    QImage image(size, QImage::Format_RGB32);
    QRandomGenerator random(seed);
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<quint32*>(image.scanLine(y));
        random.fillRange(line, size.width());
    }
    return image;
}

QUrl paintedPhotos(const QDir& folder, const QString& name, int count, QSize size)
{
    folder.mkpath(name);
    for (int i = 0; i < count; ++i)
        noisy(size, quint32(i)).save(folder.filePath(u"%1/%2.png"_s.arg(name).arg(i)));
    return QUrl::fromLocalFile(folder.filePath(name));
}

class Publishing {
public:
    Publishing(StudioSession& session, MainWindow& window) : m_session(session), m_window(window) {}

    bool load(const QUrl& photos, int count)
    {
        m_session.load({photos});
        const bool isLoaded = wait([&] { return m_session.batch().items.size() == count; });
        m_session.setFormat(SocialFormat::storyReel);
        m_session.selectAll();
        return isLoaded &&
               wait([this] { return m_window.isIdle() && m_session.exports().areCostsUpToDate(); });
    }
    bool openSheet()
    {
        m_window.menu()->action(CommandText::publish)->trigger();
        publish().choose(SocialPublishPlacement::story);
        return wait([this] {
            return m_window.isIdle() && publish().connection(SocialPublishNetwork::instagram);
        });
    }
    void press()
    {
        Q_EMIT m_window.findChild<PublishSheet*>()->publishRequested(
            SocialPublishNetwork::instagram);
    }
    bool stopWhileSending()
    {
        const bool isSending = wait([this] {
            const std::optional<PublishProgress>& progress = publish().progress();
            return progress && progress->stage == PublishProgress::Stage::sending &&
                   progress->done > progress->total / 3;
        });
        if (isSending)
            std::printf("stopped at %.1f of %.1f MB\n", double(publish().progress()->done) / 1e6,
                        double(publish().progress()->total) / 1e6);
        publish().stop();
        return isSending && waitForEnd();
    }
    bool waitForEnd()
    {
        const bool isEnded = wait([this] { return !publish().isPublishing(); });
        std::printf("%s\n", qPrintable(publish().publishStatus()));
        return isEnded;
    }
    StudioPublish& publish() { return m_session.publish(); }

private:
    template <typename Done>
    static bool wait(Done done)
    {
        return turnUntil(done, std::chrono::minutes(3));
    }

    StudioSession& m_session;
    MainWindow& m_window;
};

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    NamingApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    dress(application, darkTheme());
    if (argc != 2) {
        std::fprintf(stderr, "publish_events SERVICE_PROGRAM\n");
        return 2;
    }
    const QTemporaryDir own;
    const QDir folder(own.path());
    const StormService service(QString::fromLocal8Bit(argv[1]), folder);
    if (!service.isReady() || !connectNetworks(service.ledgerFile()))
        return 1;
    const QUrl few = paintedPhotos(folder, u"few"_s, sentPhotos, {1080, 1920});
    const QUrl many = paintedPhotos(folder, u"many"_s, manyPhotos, {108, 192});
    PreferencesStore preferences(folder.filePath(u"moltiva.sqlite"_s));
    AccountAPI api(configurationOf(QUrl(service.address())), preferences);
    AccountSession account(api, withoutBrowser());
    CreditJournal journal(account, preferences, folder.filePath(u"runs"_s));
    const auto photos = std::make_shared<PhotoCache>(folder.filePath(u"thumbnails"_s));
    StudioSession session(photos, preferences);
    session.setAccountSession(account);
    session.setCreditJournal(journal, folder.filePath(u"staging"_s));
    session.setPublishService(api);
    MainWindow window(session, account, photos, preferences);
    window.resize(1440, 900);
    window.show();
    session.restoreWorkspaceIfNeeded();
    Publishing publishing(session, window);
    if (!turnUntil([&] { return window.gate()->state() == Gate::open; }, longestWait) ||
        !publishing.load(few, sentPhotos))
        return int(!complain("no batch:", session.status()));

    application.milliseconds.clear();
    if (!publishing.openSheet())
        return int(!complain("no sheet:", publishing.publish().publishStatus()));
    turnFor(500);
    tellEvents("sheet with ten images", application.milliseconds);
    publishing.press();
    if (!publishing.stopWhileSending())
        return int(!complain("not stopped"));
    tellEvents("stopped in the middle of sending", application.milliseconds);
    publishing.press();
    publishing.waitForEnd();
    if (publishing.publish().isConfirming()) {
        publishing.press();
        publishing.waitForEnd();
    }
    tellEvents("published", application.milliseconds);
    std::printf("peak memory %.0f MB\n", double(peakMemory()) / 1e6);

    publishing.publish().closePublishWindow();
    publishing.load(many, manyPhotos);
    turnFor(1000);
    application.milliseconds.clear();
    publishing.openSheet();
    turnFor(500);
    tellEvents("sheet with many images", application.milliseconds);
    publishing.publish().closePublishWindow();
    turnFor(500);
    tellEvents("sheet closed", application.milliseconds);
    return 0;
}
