#include "cli/TemplatesCommand.h"

#include "cli/shared/AccountCommand.h"
#include "cli/shared/AccountConnection.h"
#include "model/JsonMapping.h"
#include "platform/Workers.h"
#include "studio/templates/SharedTemplates.h"
#include "templates/TemplateName.h"

#include <array>

using namespace Qt::StringLiterals;

namespace {

struct SharedDesignLine {
    QString fileName, name;
    std::optional<QString> format;
    int versions = 0;
};

struct CatalogueLine {
    int templates = 0, withdrawn = 0;
    QString copied;
    std::optional<QString> problem;
};

// What became of one file or design of the catalogue.
struct SharedChangeLine {
    QString action, fileName;
    std::optional<QString> file, error;
};

}    // namespace

template <>
struct json::JsonFields<SharedDesignLine> {
    using Line = SharedDesignLine;
    static constexpr auto fields =
        std::tuple{required("fileName", &Line::fileName), required("name", &Line::name),
                   optional("format", &Line::format), required("versions", &Line::versions)};
};

template <>
struct json::JsonFields<CatalogueLine> {
    using Line = CatalogueLine;
    static constexpr auto fields =
        std::tuple{required("templates", &Line::templates), required("withdrawn", &Line::withdrawn),
                   required("copied", &Line::copied), optional("problem", &Line::problem)};
};

template <>
struct json::JsonFields<SharedChangeLine> {
    using Line = SharedChangeLine;
    static constexpr auto fields =
        std::tuple{required("action", &Line::action), optional("file", &Line::file),
                   required("fileName", &Line::fileName), optional("error", &Line::error)};
};

namespace {

class TemplatesRun {
public:
    TemplatesRun(AccountCommand& command, const ServiceConfiguration& configuration, bool isJson)
        : m_command(command), m_connection(configuration, &tellOfRefund), m_isJson(isJson),
          m_refusal(m_connection.signIn()),
          m_shared(m_connection.api(), m_connection.session(), userDataFolder())
    {
        QCoro::waitFor(m_shared.refreshed());
    }
    ~TemplatesRun() { workers().waitForDone(); }

    // Why the command can do nothing; nothing if it can.
    std::optional<int> refused(bool servesCopy) const
    {
        if (!m_refusal)
            return std::nullopt;
        const bool isUnreachable = m_refusal->refusal == ChargeResult::Refusal::unreachable;
        if (servesCopy && isUnreachable && m_shared.state() != CatalogueState::none)
            return std::nullopt;
        return m_command.failed(m_refusal->reason, statusOf(m_refusal->refusal));
    }

    int list(const QStringList&)
    {
        for (const SharedDesign& design : m_shared.designs()) {
            const SharedDesignLine line{design.fileName, design.definition.name,
                                        design.definition.format, design.keptVersions};
            if (m_isJson)
                print(stdout, QString::fromUtf8(json::written(line)));
            else
                print(stdout, u"%1  %2  %3"_s.arg(line.fileName,
                                                  row(design.definition.socialFormat()).templateKey,
                                                  printable(line.name)));
        }
        if (m_shared.designs().isEmpty() && !m_isJson)
            print(stdout, u"Sin plantillas del equipo"_s);
        if (m_shared.state() == CatalogueState::offline)
            m_command.failed(u"%1 Se muestra la copia del %2."_s.arg(m_shared.problem(), day()));
        else if (!m_shared.problem().isEmpty())
            return m_command.failed(m_shared.problem());
        return exitDone;
    }

    int pull(const QStringList&)
    {
        if (m_shared.state() == CatalogueState::none)
            return m_command.failed(m_shared.problem().isEmpty()
                                        ? u"El servicio no tiene catálogo de plantillas."_s
                                        : m_shared.problem(),
                                    failureStatus());
        const auto count = m_shared.designs().size();
        if (m_isJson) {
            CatalogueLine line{int(count), int(m_shared.withdrawn().size()),
                               m_shared.copied().toUTC().toString(Qt::ISODate), std::nullopt};
            if (!m_shared.problem().isEmpty())
                line.problem = m_shared.problem();
            print(stdout, QString::fromUtf8(json::written(line)));
        } else {
            print(stdout, count == 1
                              ? u"1 plantilla del equipo, copia del %1"_s.arg(day())
                              : u"%1 plantillas del equipo, copia del %2"_s.arg(count).arg(day()));
        }
        return m_shared.problem().isEmpty() ? exitDone
                                            : m_command.failed(m_shared.problem(), failureStatus());
    }

    int push(const QStringList& files)
    {
        int status = exitDone;
        for (const QString& path : files) {
            const DefinitionFile read = readDefinitionFile(path);
            SharedChangeLine line{u"push"_s, {}, path, std::nullopt};
            QString sentence;
            if (!read.definition) {
                sentence = u"«%1» %2."_s.arg(printable(path), read.error);
                status = exitSomeFailed;
            } else {
                line.fileName = catalogueFileName(read.definition->id);
                sentence = QCoro::waitFor(m_shared.share(*read.definition));
                if (!sentence.isEmpty())
                    status = failureStatus();
            }
            report(line, sentence,
                   read.definition
                       ? u"«%1» se comparte con el equipo."_s.arg(printable(read.definition->name))
                       : QString());
        }
        return status;
    }

    int rename(const QStringList& names)
    {
        return change(u"rename"_s, names[0], [&](const QString& fileName) {
            return std::pair(QCoro::waitFor(m_shared.rename(fileName, names[1])),
                             u"Ahora se llama «%1»."_s.arg(printable(templateName(names[1]))));
        });
    }

    int remove(const QStringList& names)
    {
        return change(u"remove"_s, names[0], [&](const QString& fileName) {
            return std::pair(
                QCoro::waitFor(m_shared.withdraw(fileName)),
                u"Retirada. «moltiva templates restore %1» la recupera."_s.arg(fileName));
        });
    }

    int restore(const QStringList& names)
    {
        return change(u"restore"_s, names[0], [&](const QString& fileName) {
            return std::pair(QCoro::waitFor(m_shared.restore(fileName)),
                             u"Recuperada la versión anterior."_s);
        });
    }

private:
    QString day() const
    {
        return QLocale(QLocale::Spanish).toString(m_shared.copied().toLocalTime(), u"d MMM"_s);
    }
    int failureStatus() const { return m_shared.isUnreachable() ? exitNoNetwork : exitSomeFailed; }

    void report(SharedChangeLine line, const QString& error, const QString& done) const
    {
        if (!error.isEmpty()) {
            line.error = error;
            m_command.failed(error);
        } else if (!m_isJson) {
            print(stdout, done);
        }
        if (m_isJson)
            print(stdout, QString::fromUtf8(json::written(line)));
    }

    // The file names of the designs with this name. A file name or an id stands for itself, because
    // the names of withdrawn designs are not known.
    QStringList named(const QString& name) const
    {
        const QUuid id = name.endsWith(u".json") ? catalogueId(name) : QUuid::fromString(name);
        QStringList found;
        for (const SharedDesign& each : m_shared.designs()) {
            const bool isMeant =
                id.isNull()
                    ? each.definition.name.compare(name.simplified(), Qt::CaseInsensitive) == 0
                    : each.definition.id == id;
            if (isMeant)
                found.append(each.fileName);
        }
        if (found.isEmpty() && !id.isNull())
            found.append(name.endsWith(u".json") ? name : catalogueFileName(id));
        return found;
    }

    template <typename Change>
    int change(const QString& action, const QString& name, const Change& make)
    {
        const QStringList files = named(name);
        if (files.isEmpty())
            return m_command.failed(
                u"no hay ninguna plantilla del equipo «%1»."_s.arg(printable(name)));
        if (files.size() > 1)
            return m_command.failed(
                u"hay varias plantillas con ese nombre; di cuál: %1."_s.arg(files.join(u", "_s)));
        const auto [error, done] = make(files.first());
        report({action, files.first(), std::nullopt, std::nullopt}, error, done);
        return error.isEmpty() ? int(exitDone) : failureStatus();
    }

    AccountCommand& m_command;
    AccountConnection m_connection;
    const bool m_isJson;
    std::optional<AccountConnection::SignInRefusal> m_refusal;
    SharedTemplates m_shared;
};

struct TemplatesAction {
    QStringView name, summary, missing;
    int arguments;      // their number; -1: one or more
    bool servesCopy;    // whether the copy alone is enough
    int (TemplatesRun::*run)(const QStringList& arguments);
};

constexpr std::array templatesActions{
    TemplatesAction{u"list", u"las que hay; sin conexión, las de la copia", u"", 0, true,
                    &TemplatesRun::list},
    TemplatesAction{u"pull", u"pone al día la copia de este equipo", u"", 0, false,
                    &TemplatesRun::pull},
    TemplatesAction{u"push", u"ARCHIVO…: comparte archivos de plantilla", u"faltan los archivos.",
                    -1, false, &TemplatesRun::push},
    TemplatesAction{u"rename", u"NOMBRE NUEVO: cambia el nombre", u"faltan el nombre y el nuevo.",
                    2, false, &TemplatesRun::rename},
    TemplatesAction{u"remove", u"NOMBRE: la retira para todos", u"falta el nombre.", 1, false,
                    &TemplatesRun::remove},
    TemplatesAction{u"restore", u"NOMBRE: recupera la versión anterior, también de una retirada",
                    u"falta el nombre.", 1, false, &TemplatesRun::restore},
};

QString templatesDescription()
{
    QString text = u"Las plantillas que comparte el equipo. Las cambia una cuenta administradora. "
                   "NOMBRE es el de la plantilla o el de su archivo.\n\nAcciones:"_s;
    for (const TemplatesAction& action : templatesActions)
        text += u"\n  %1  %2"_s.arg(action.name, -12).arg(action.summary);
    return text;
}

}    // namespace

int runTemplates(const QStringList& arguments, const ServiceConfiguration& configuration)
{
    AccountCommand command(u"templates"_s, templatesDescription(), configuration,
                           AccountCommand::Needs::signIn);
    const QCommandLineOption json(u"json"_s, u"un objeto JSON por plantilla"_s);
    command.parser().addOption(json);
    command.parser().addPositionalArgument(u"acción"_s, u"lo que se hace"_s);
    if (const auto status = command.parse(arguments, std::numeric_limits<qsizetype>::max()))
        return *status;
    QStringList given = command.parser().positionalArguments();
    if (given.isEmpty())
        return command.wrongUse(u"falta la acción: list, pull, push, rename, remove o restore."_s);
    const QString name = given.takeFirst();
    const auto action = std::ranges::find(templatesActions, name, &TemplatesAction::name);
    if (action == templatesActions.end())
        return command.wrongUse(
            u"no conozco «%1». Prueba «moltiva templates --help»."_s.arg(printable(name)));
    if (given.size() < std::abs(action->arguments))
        return command.wrongUse(action->missing.toString());
    if (action->arguments >= 0 && given.size() > action->arguments)
        return command.wrongUse(u"no espero «%1»."_s.arg(printable(given[action->arguments])));
    TemplatesRun run(command, configuration, command.parser().isSet(json));
    if (const auto status = run.refused(action->servesCopy))
        return *status;
    return (run.*action->run)(given);
}
