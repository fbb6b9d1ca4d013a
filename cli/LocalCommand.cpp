#include "cli/LocalCommand.h"

#include "cli/shared/CommandHelp.h"
#include "cli/shared/Interrupt.h"
#include "cli/shared/Terminal.h"
#include "copygen/LocalAIManager.h"
#include "copygen/PinnedDownload.h"
#include "model/JsonMapping.h"

#include <QEventLoop>

#include <array>

using namespace Qt::StringLiterals;

namespace {

struct LocalEngineLine {
    QString engine, title, detail;
    bool isAvailable = false, isInstalled = false, isInstalling = false, canResume = false;
    std::optional<double> progress;
    qint64 storedBytes = 0, downloadSize = 0;
    QString licence;
    std::optional<QString> error;
    std::optional<qint64> freedBytes;
};

}    // namespace

template <>
struct json::JsonFields<LocalEngineLine> {
    static constexpr auto fields =
        std::tuple{required("engine", &LocalEngineLine::engine),
                   required("title", &LocalEngineLine::title),
                   required("detail", &LocalEngineLine::detail),
                   required("isAvailable", &LocalEngineLine::isAvailable),
                   required("isInstalled", &LocalEngineLine::isInstalled),
                   required("isInstalling", &LocalEngineLine::isInstalling),
                   required("canResume", &LocalEngineLine::canResume),
                   optional("progress", &LocalEngineLine::progress),
                   required("storedBytes", &LocalEngineLine::storedBytes),
                   required("downloadSize", &LocalEngineLine::downloadSize),
                   required("licence", &LocalEngineLine::licence),
                   optional("error", &LocalEngineLine::error),
                   optional("freedBytes", &LocalEngineLine::freedBytes)};
};

namespace {

void tellOfEngine(const QString& sentence)
{
    print(stderr, u"moltiva local: "_s + sentence);
}

// How an installation goes, on standard error: one line that is drawn over on a terminal, else a
// line for each stage.
class InstallLine {
public:
    void show(const LocalAIManager& manager)
    {
        const QString message = manager.installMessage();
        if (!isTerminal(stderr)) {
            if (manager.installStage() != std::exchange(m_shown, manager.installStage()))
                tellOfEngine(message);
            return;
        }
        const QString percentage = manager.installProgress()
                                       ? u"%1 % "_s.arg(int(*manager.installProgress() * 100), 3)
                                       : QString();
        draw(percentage + printable(message));
    }
    void end()
    {
        if (isTerminal(stderr))
            draw({});
    }

private:
    void draw(const QString& line)
    {
        if (line == m_shown)
            return;
        std::fprintf(stderr, "\r\033[K%s", line.toUtf8().constData());
        std::fflush(stderr);
        m_shown = line;
    }

    QString m_shown;
};

class LocalRun {
public:
    explicit LocalRun(bool isJson) : m_isJson(isJson) {}

    int status()
    {
        report(m_manager.gemmaStatus().detail, true);
        return m_manager.canGenerate() ? exitDone : exitSomeFailed;
    }

    int install()
    {
        if (!m_manager.needsInstallation())
            return installConfigured();
        if (m_manager.canGenerate())
            return status();
        if (m_manager.isInstallingElsewhere())
            tellOfEngine(u"ya se está instalando; espero a que termine."_s);
        else
            announce();
        QObject::connect(&m_manager, &LocalAIManager::changed, &m_manager, [this] {
            if (m_manager.isInstallingGemma())
                m_line.show(m_manager);
        });
        const Interrupt interrupt;
        QTimer look;
        look.callOnTimeout([this, &interrupt] { lookAt(interrupt); });
        look.start(latency);
        QCoro::waitFor(m_manager.installGemma());
        waitForOthers();
        m_line.end();
        return concluded();
    }

    int uninstall()
    {
        if (!m_manager.needsInstallation()) {
            report(u"El modelo está configurado en otro programa; aquí no hay nada que "
                   "desinstalar."_s,
                   false);
            return exitSomeFailed;
        }
        QCoro::waitFor(m_manager.uninstallGemma());
        if (m_manager.isInstallingElsewhere()) {
            report(u"Espera a que termine la instalación."_s, false);
            return exitSomeFailed;
        }
        const bool isDone = !m_manager.hasFailed();
        QString sentence = m_manager.installMessage();
        if (isDone && m_manager.freedBytes() > 0)
            sentence += u" Se han liberado %1."_s.arg(formatBytes(m_manager.freedBytes()));
        report(sentence, isDone, m_manager.freedBytes());
        return isDone ? exitDone : exitSomeFailed;
    }

private:
    static constexpr std::chrono::milliseconds latency{100};

    // An engine that runs in another program is ready, or its configuration is wrong.
    int installConfigured()
    {
        const bool isReady = m_manager.canGenerate();
        const QString detail = m_manager.gemmaStatus().detail;
        report(isReady ? detail + u" No hay nada que instalar."_s : detail, isReady);
        return isReady ? exitDone : exitSomeFailed;
    }

    void announce()
    {
        tellOfEngine(u"descarga de %1 (%2). Licencia: %3"_s.arg(
            formatBytes(m_manager.downloadSize()), m_manager.engineTitle(),
            m_manager.licenceURL().toString()));
        if (const QString note = m_manager.machineNote(); !note.isEmpty())
            tellOfEngine(note);
    }

    void lookAt(const Interrupt& interrupt)
    {
        if (!interrupt.flag() || m_isInterrupted)
            return;
        m_isInterrupted = true;
        m_manager.cancelInstall();
        m_others.quit();
    }

    // Waits for an installation by another program.
    void waitForOthers()
    {
        const auto endWhenDone = [this] {
            if (!m_manager.isInstallingGemma())
                m_others.quit();
        };
        QObject::connect(&m_manager, &LocalAIManager::changed, &m_others, endWhenDone);
        if (m_manager.isInstallingElsewhere() && !m_isInterrupted)
            m_others.exec();
    }

    int concluded()
    {
        const bool isReady = m_manager.canGenerate();
        QString sentence = m_manager.installMessage();
        if (isReady)
            sentence = m_manager.gemmaStatus().detail;
        else if (sentence.isEmpty() || m_isInterrupted)
            sentence = m_isInterrupted ? u"Instalación cancelada. %1"_s.arg(whatNow()) : whatNow();
        report(sentence, isReady);
        if (isReady)
            return exitDone;
        return m_isInterrupted ? exitInterrupted : exitSomeFailed;
    }

    QString whatNow() const
    {
        if (m_manager.isInstallingElsewhere())
            return u"La instalación sigue en el otro programa."_s;
        return m_manager.canResume() ? u"«moltiva local install» sigue donde se quedó."_s
                                     : m_manager.gemmaStatus().detail;
    }

    // The result: on standard output when it is one, else on standard error.
    void report(const QString& sentence, bool isResult, std::optional<qint64> freed = {})
    {
        if (!m_isJson) {
            if (isResult)
                print(stdout, sentence);
            else
                tellOfEngine(QString(sentence).replace(u"\n\n"_s, u" "_s));
            return;
        }
        const LocalAIEngineStatus gemma = m_manager.gemmaStatus();
        LocalEngineLine line;
        line.engine = rawValue(gemma.engine);
        line.title = m_manager.engineTitle();
        line.detail = gemma.detail;
        line.isAvailable = gemma.isAvailable;
        line.isInstalled = gemma.isInstalled;
        line.isInstalling = gemma.isInstalling;
        line.canResume = m_manager.canResume();
        line.progress = gemma.progress;
        line.storedBytes = m_manager.installedSize().result();
        line.downloadSize = m_manager.downloadSize();
        line.licence = m_manager.licenceURL().toString();
        line.freedBytes = freed;
        if (!isResult)
            line.error = sentence;
        print(stdout, QString::fromUtf8(json::written(line)));
    }

    const bool m_isJson;
    LocalAIManager m_manager{engineProfile()};
    InstallLine m_line;
    QEventLoop m_others;
    bool m_isInterrupted = false;
};

// What the installer's script calls: URL BYTES SHA256 PATH. Not in the help.
int runFetch(const QStringList& arguments)
{
    constexpr qsizetype expected = 4;
    if (arguments.size() != expected)
        return exitWrongUse;
    const PinnedFile pin{arguments[0], arguments[1].toLongLong(), arguments[2]};
    const FetchOutcome outcome = QCoro::waitFor(fetchPinned(pin, arguments[3]));
    if (outcome.status != 0)
        print(stderr, outcome.reason);
    return outcome.status;
}

struct LocalAction {
    QStringView name, summary;
    int (LocalRun::*run)();
};

constexpr std::array localActions{
    LocalAction{u"status", u"si la IA local está instalada", &LocalRun::status},
    LocalAction{u"install", u"la instala, o sigue donde se quedó", &LocalRun::install},
    LocalAction{u"uninstall", u"la borra de este equipo", &LocalRun::uninstall},
};

QString localDescription()
{
    QString text = u"La IA que escribe los textos en este equipo, sin créditos. Ctrl+C detiene la "
                   "instalación; la siguiente sigue donde se quedó.\n\nAcciones:"_s;
    for (const LocalAction& action : localActions)
        text += u"\n  %1  %2"_s.arg(action.name, -12).arg(action.summary);
    return text;
}

}    // namespace

int runLocal(const QStringList& arguments, const ServiceConfiguration&)
{
    if (arguments.value(0) == u"fetch"_s)
        return runFetch(arguments.mid(1));
    QCommandLineParser parser;
    parser.setApplicationDescription(localDescription());
    const QCommandLineOption help({u"h"_s, u"help"_s}, u"muestra esta ayuda"_s);
    const QCommandLineOption json(u"json"_s, u"un objeto JSON como resultado"_s);
    parser.addOptions({help, json});
    const auto wrongUse = [](const QString& sentence) {
        tellOfEngine(sentence);
        return exitWrongUse;
    };
    if (!parser.parse(QStringList{u"moltiva local"_s} + arguments))
        return wrongUse(parser.errorText());
    if (parser.isSet(help)) {
        printCommandHelp(parser, u"local ACCIÓN [--json]"_s,
                         {{exitDone, u"está instalada (o borrada)"_s},
                          {exitSomeFailed, u"no lo está"_s},
                          {exitWrongUse},
                          {exitInterrupted}});
        return exitDone;
    }
    const QStringList names = parser.positionalArguments();
    if (names.size() > 1)
        return wrongUse(u"no espero «%1»."_s.arg(printable(names[1])));
    const auto action = std::ranges::find(localActions, names.value(0), &LocalAction::name);
    if (action == localActions.end()) {
        return wrongUse(names.isEmpty() ? u"falta la acción: status, install o uninstall."_s
                                        : u"no conozco «%1». Prueba «moltiva local --help»."_s.arg(
                                              printable(names[0])));
    }
    LocalRun run(parser.isSet(json));
    return (run.*action->run)();
}
