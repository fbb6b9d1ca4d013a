#include "cli/CommandLine.h"

#include "account/ServiceConfiguration.h"
#include "cli/AccountCommands.h"
#include "cli/ExportCommand.h"
#include "cli/GenerateCommand.h"
#include "cli/LocalCommand.h"
#include "cli/NetworkCommands.h"
#include "cli/PublishCommand.h"
#include "cli/SelfTest.h"
#include "cli/TemplatesCommand.h"
#include "cli/shared/CommandHelp.h"
#include "cli/shared/Terminal.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

struct Command {
    QStringView name, summary;
    int (*run)(const QStringList& arguments, const ServiceConfiguration& configuration);
};

constexpr std::array commands{
    Command{u"export", u"exporta fotos como publicaciones PNG", &runExport},
    Command{u"generate", u"escribe los textos de las fotos con una IA", &runGenerate},
    Command{u"publish", u"publica fotos en una red social", &runPublish},
    Command{u"networks", u"las redes y su conexión", &runNetworks},
    Command{u"connect", u"conecta una red en el navegador", &runConnect},
    Command{u"templates", u"las plantillas que comparte el equipo", &runTemplates},
    Command{u"local", u"instala o quita la IA que escribe textos en este equipo", &runLocal},
    Command{u"login", u"inicia sesión con un email y su contraseña", &runLogin},
    Command{u"register", u"crea una cuenta", &runRegister},
    Command{u"logout", u"cierra la sesión", &runLogout},
    Command{u"account", u"nombre y créditos de la cuenta", &runAccount},
    Command{u"history", u"las compras de la cuenta", &runHistory},
};

const Command* commandNamed(const QString& name)
{
    const auto found = std::ranges::find(commands, name, &Command::name);
    return found == commands.end() ? nullptr : &*found;
}

int printProgramHelp(const QStringList& arguments);
int printVersion(const QStringList& arguments);

// An option of the program itself, which is the first argument.
struct ProgramOption {
    QStringView shortName, name, shown, summary;
    int (*run)(const QStringList& arguments);
};

constexpr std::array programOptions{
    ProgramOption{u"-h", u"--help", u"-h, --help", u"muestra esta ayuda; con una orden, la suya",
                  &printProgramHelp},
    ProgramOption{u"-v", u"--version", u"-v, --version", u"muestra la versión", &printVersion},
    ProgramOption{u"", u"--self-test", u"--self-test", u"comprueba que no falta nada para trabajar",
                  &runSelfTest},
};

int printProgramHelp(const QStringList&)
{
    QString text = u"Moltiva, el estudio para preparar publicaciones por lotes.\n\n"
                   "Uso:\n"
                   "  moltiva                      abre la ventana\n"
                   "  moltiva FOTO|CARPETA…        abre la ventana con esas fotos\n"
                   "  moltiva ENLACE               abre en la ventana un enlace moltiva:\n"
                   "  moltiva ORDEN [opciones]     trabaja sin ventana\n\n"
                   "Órdenes:\n"_s;
    for (const Command& command : commands)
        text += u"  %1  %2\n"_s.arg(command.name, -27).arg(command.summary);
    text += u"\nOpciones:\n"_s;
    for (const ProgramOption& option : programOptions)
        text += u"  %1  %2\n"_s.arg(option.shown, -27).arg(option.summary);
    text += u"  --verbose                    cuenta en la salida de errores lo que hace\n"
            "  --service URL, --site URL    el servicio de cuentas y el sitio web, si no son los "
            "de este equipo\n"_s;
    text += exitStatusHelp({{exitDone, u"la ventana se ha cerrado, o estaba abierta y ha recibido "
                                       "lo que había que abrir"_s},
                            {exitSomeFailed, u"la ventana que ya está abierta no responde"_s},
                            {exitWrongUse, u"mal uso, o no hay pantalla"_s}});
    std::fputs(text.toUtf8().constData(), stdout);
    return exitDone;
}

int printVersion(const QStringList&)
{
    std::printf("moltiva %s\n", qPrintable(QCoreApplication::applicationVersion()));
    return exitDone;
}

}    // namespace

bool isCommandLine(const QStringList& arguments)
{
    if (arguments.isEmpty())
        return false;
    // An argument that is neither a file nor an address is taken for a misspelt command.
    static const QRegularExpression address(u"^[A-Za-z][A-Za-z0-9+.-]+:"_s);
    const QString& first = arguments.first();
    return commandNamed(first) || (!QFileInfo::exists(first) && !address.match(first).hasMatch());
}

namespace {

int runNamed(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    const QString first = arguments.value(0);
    if (const Command* command = commandNamed(first))
        return command->run(arguments.mid(1), configuration);
    const auto option = std::ranges::find_if(programOptions, [&first](const ProgramOption& each) {
        return first == each.name || (!first.isEmpty() && first == each.shortName);
    });
    if (option != programOptions.end())
        return option->run(arguments.mid(1));
    print(stderr, u"moltiva: no conozco «%1». Prueba «moltiva --help»."_s.arg(first));
    return exitWrongUse;
}

}    // namespace

int runCommandLine(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    const int status = runNamed(arguments, configuration);
    // Checks whether any line could not be written to standard output, on a full disk for instance.
    if (std::fflush(stdout) == 0 && !std::ferror(stdout))
        return status;
    print(stderr, u"moltiva: no se pudo escribir el resultado en la salida estándar."_s);
    return status == exitDone ? exitSomeFailed : status;
}
