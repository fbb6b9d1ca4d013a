#include "account/ConnectedAccount.h"
#include "account/ServiceConfiguration.h"
#include "app/desktop/AppDelegate.h"
#include "app/desktop/AppVersion.h"
#include "app/desktop/LinkRegistration.h"
#include "app/desktop/ResourceCheck.h"
#include "app/desktop/SingleInstance.h"
#include "app/desktop/UpdateController.h"
#include "app/desktop/WindowActivation.h"
#include "app/theme/StudioStyle.h"
#include "app/theme/Theme.h"
#include "app/window/MainWindow.h"
#include "app/window/StartUpNotes.h"
#include "cli/CommandLine.h"
#include "cli/shared/ExitStatus.h"
#include "copygen/LocalEngine.h"
#include "platform/EndingSignals.h"
#include "platform/Log.h"
#include "platform/Memory.h"
#include "platform/PreferencesStore.h"
#include "platform/SessionDesktop.h"
#include "platform/UserFolders.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"
#include "studio/templates/SharedTemplates.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QScopeGuard>
#include <QSessionManager>
#include <QTranslator>

#include <cstdio>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

// Names the keys as Spanish keyboards do. Qt's own translation of Ctrl+Shift is
// "Control+Mayúsculas".
class KeyNames : public QTranslator {
public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        static const QHash<QByteArray, QString> names{
            {"Ctrl", u"Ctrl"_s},    {"Shift", u"Mayús"_s},   {"Alt", u"Alt"_s},
            {"PgUp", u"Re Pág"_s},  {"PgDown", u"Av Pág"_s}, {"Del", u"Supr"_s},
            {"Return", u"Intro"_s},
        };
        return qstrcmp(context, "QShortcut") == 0 ? names.value(source) : QString();
    }
};

// Names the plug-in that adapts Qt to the desktop.
constexpr const char* platformTheme = "QT_QPA_PLATFORMTHEME";

QString programName()
{
    return u"moltiva"_s;
}

void prepare(QCoreApplication& application)
{
    QCoreApplication::setApplicationName(programName());
    QCoreApplication::setApplicationVersion(QStringLiteral(MOLTIVA_VERSION));
    // Translates Qt's own dialogs, menus and errors.
    auto* translator = new QTranslator(&application);
    if (translator->load(u"qtbase_es"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(translator);
    QCoreApplication::installTranslator(
        new KeyNames(&application));    // the translator installed last is asked first
    QLocale::setDefault(QLocale(u"es"_s));
}

bool hasDisplay()
{
#if defined(Q_OS_LINUX)
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
#else
    return true;
#endif
}

// Lets Qt show the file dialogs of the desktop if there are any, unless the user chose something
// else for Qt. To be called while there is a QCoreApplication, before the QApplication.
void useDesktopFileDialogs()
{
    if (qEnvironmentVariableIsSet(platformTheme))
        return;
    const QString plugin = QLibraryInfo::path(QLibraryInfo::PluginsPath) +
                           u"/platformthemes/libqxdgdesktopportal.so"_s;
    if (QFileInfo::exists(plugin) && desktopOffersFileDialogs())
        qputenv(platformTheme, "xdgdesktopportal");
}

// Uses a short-lived QCoreApplication instead of the QApplication: if the user's window is already
// open, this process ends without connecting to the display.
InstanceClaim claim(int& argc, char** argv, const QList<QUrl>& toOpen)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(programName());
    InstanceClaim claimed = claimInstance(userDataFolder(), {toOpen, activationToken()});
    if (claimed.outcome == InstanceClaim::Outcome::first)
        useDesktopFileDialogs();
    return claimed;
}

// Opens the window with the files and folders that the command line names. If another process
// already shows the window, passes them on to that process.
int runWindow(int& argc, char** argv, const QStringList& arguments,
              const ServiceConfiguration& configuration, const QElapsedTimer& sinceStart)
{
    if (!configuration.problem.isEmpty()) {
        std::fprintf(stderr, "moltiva: %s\n", configuration.problem.toUtf8().constData());
        return exitWrongUse;
    }
    const QList<QUrl> toOpen = addressesOf(arguments);
    const bool isThemeOurs = !qEnvironmentVariableIsSet(platformTheme);
    InstanceClaim claimed = claim(argc, argv, toOpen);
    if (claimed.outcome == InstanceClaim::Outcome::handedOver)
        return exitDone;
    if (claimed.outcome == InstanceClaim::Outcome::unanswered) {
        std::fputs("moltiva: ya hay una ventana abierta, pero no responde.\n", stderr);
        return exitSomeFailed;
    }
    if (claimed.outcome == InstanceClaim::Outcome::unreachable) {
        std::fputs("moltiva: ya hay una ventana abierta, pero no se le puede pasar nada: ni "
                   "XDG_RUNTIME_DIR es una carpeta tuya y privada ni cabe un socket en la de los "
                   "datos.\n",
                   stderr);
        return exitSomeFailed;
    }
    // Static, so that the lock is released even when Qt calls exit() because the display is lost.
    static const std::unique_ptr<SystemLock> lock = std::move(claimed.lock);
    QApplication application(argc, argv);
    if (isThemeOurs)
        qunsetenv(platformTheme);    // of no concern to programs that are started from here
    // Waits for the workers before `application` is destroyed: drawing without it would crash.
    const auto finish = qScopeGuard(&finishWorkers);
    prepare(application);
    // The name of the desktop entry, by which the desktop knows the window's icon and title.
    QGuiApplication::setDesktopFileName(programName());
    const SingleInstance instance(userDataFolder());
    dress(application, darkTheme());
    PreferencesStore preferences(userDataFolder() + u"/moltiva.sqlite"_s);
    const auto photos = std::make_shared<PhotoCache>(thumbnailFolder());
    ConnectedAccount account(configuration, preferences, userDataFolder(),
                             {.openInBrowser = &QDesktopServices::openUrl});
    LocalEngine engine;
    SharedTemplates sharedTemplates(account.api(), account.session(), userDataFolder());
    StudioSession session(photos, preferences);
    session.setAccountSession(account.session());
    session.setCreditJournal(account.journal(), stagingPlace());
    session.setCloudCopyService({&account.api()});
    session.setPublishService(account.api());
    session.setLocalCopyWriter(localCopyWriter(engine.manager, engine.service));
    const std::unique_ptr<Desktop> desktop = sessionDesktop();
    MainWindow window(session, account.session(), photos, preferences);
    window.setDesktop(*desktop);
    window.setSharedTemplates(sharedTemplates);
    window.setLocalEngine(engine.manager, engine.service);
    const auto links = platformLinkRegistration();
    AppDelegate delegate(window, *links);
    QObject::connect(&delegate, &AppDelegate::filesReceived, &window, &MainWindow::open);
    QObject::connect(&instance, &SingleInstance::handedOver, &delegate,
                     [&delegate](const OpenRequest& request) {
                         delegate.applicationOpen(request.toOpen, request.activationToken);
                     });
    onEndingSignals(application, &QCoreApplication::quit);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &window,
                     &MainWindow::settleBeforeLogout);
    // Restarted by a session manager, the program would get arguments that it does not know.
    for (const auto request :
         {&QGuiApplication::commitDataRequest, &QGuiApplication::saveStateRequest}) {
        QObject::connect(&application, request, &window, [](QSessionManager& manager) {
            manager.setRestartHint(QSessionManager::RestartNever);
        });
    }
    qCInfo(logProgram).noquote() << "window of" << AppVersion::display() << "on"
                                 << QGuiApplication::platformName();
    const StartUpNotes notes(window, sinceStart);
    window.show();
    delegate.applicationDidFinishLaunching();
    window.updates().checkDaily();
    session.restoreWorkspaceIfNeeded();
    delegate.applicationOpen(toOpen);
    return QApplication::exec();
}

}    // namespace

int main(int argc, char** argv)
{
    QElapsedTimer sinceStart;
    sinceStart.start();
    fixAllocatorThresholds();
    ignoreRelativeFolders();
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));

    QCoreApplication::setApplicationName(programName());
    startLog(logFile(), arguments.removeAll(u"--verbose"_s) > 0);
    requireResources();
    const ServiceConfiguration configuration = takenConfiguration(arguments, configurationFile());
    if (isCommandLine(arguments)) {
        // Prevents Qt from ending the process when there is no display.
        qputenv("QT_QPA_PLATFORM", "offscreen");
        QGuiApplication application(argc, argv);
        prepare(application);
        return runCommandLine(arguments, configuration);
    }
    if (!hasDisplay()) {
        std::fputs("moltiva: no hay pantalla para abrir la ventana. Prueba «moltiva --help».\n",
                   stderr);
        return exitWrongUse;
    }
    return runWindow(argc, argv, arguments, configuration, sinceStart);
}
