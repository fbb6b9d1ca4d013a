#include "account/ConnectedAccount.h"
#include "account/ServiceConfiguration.h"
#include "app/theme/StudioStyle.h"
#include "app/theme/Theme.h"
#include "app/window/MainWindow.h"
#include "app/window/SingleInstance.h"
#include "cli/CommandLine.h"
#include "cli/ExitStatus.h"
#include "platform/EndingSignals.h"
#include "platform/Memory.h"
#include "platform/PreferencesStore.h"
#include "platform/UserFolders.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"

#include <QApplication>
#include <QDesktopServices>
#include <QLibraryInfo>
#include <QScopeGuard>
#include <QTranslator>

#include <cstdio>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

// Drops messages of Qt and its codecs about broken files, which would mix with a command's output
// and its progress line.
void quietMessages(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    static const bool wanted = qEnvironmentVariableIsSet("MOLTIVA_DEBUG");
    if (wanted || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}

// Names of keys as Spanish keyboards print them; Qt's catalogue writes "Control+Mayúsculas".
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
        new KeyNames(&application));    // the last one is asked first
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

// Runs before the window's application exists, so that a later start ends at once.
InstanceClaim claim(int& argc, char** argv, const QList<QUrl>& toOpen)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(programName());
    return claimInstance(userDataFolder(), toOpen);
}

// Opens the window with the photos and folders that the command line names; for a later start, in
// the window of the first.
int runWindow(int& argc, char** argv, const QStringList& arguments,
              const ServiceConfiguration& configuration)
{
    if (!configuration.problem.isEmpty()) {
        std::fprintf(stderr, "moltiva: %s\n", configuration.problem.toUtf8().constData());
        return exitWrongUse;
    }
    const QList<QUrl> toOpen = addressesOf(arguments);
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
    // Static, so that it is released even when Qt calls exit() because the display is gone.
    static const std::unique_ptr<SystemLock> lock = std::move(claimed.lock);
    QApplication application(argc, argv);
    // Waits for the workers: drawing without an application would crash.
    const auto finish = qScopeGuard(&finishWorkers);
    prepare(application);
    const SingleInstance instance(userDataFolder());
    dress(application, darkTheme());
    PreferencesStore preferences(userDataFolder() + u"/moltiva.sqlite"_s);
    const auto photos = std::make_shared<PhotoCache>(thumbnailFolder());
    ConnectedAccount account(configuration, preferences, userDataFolder(),
                             {.openInBrowser = &QDesktopServices::openUrl});
    StudioSession session(photos, preferences);
    session.setAccountSession(account.session());
    session.setCreditJournal(account.journal(), stagingPlace());
    MainWindow window(session, account.session(), photos, preferences);
    QObject::connect(&instance, &SingleInstance::handedOver, &window, [&window](const auto& urls) {
        window.comeForward();
        window.open(urls);
    });
    onEndingSignals(application, &QCoreApplication::quit);
    window.show();
    session.restoreWorkspaceIfNeeded();
    window.open(toOpen);
    return QApplication::exec();
}

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    ignoreRelativeFolders();
    qInstallMessageHandler(quietMessages);
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));

    QCoreApplication::setApplicationName(programName());
    const ServiceConfiguration configuration = takenConfiguration(arguments, configurationFile());
    if (isCommandLine(arguments)) {
        // Qt ends a process that asks for a display and finds none.
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
    return runWindow(argc, argv, arguments, configuration);
}
