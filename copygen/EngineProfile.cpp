#include "copygen/EngineProfile.h"

#include "account/ServiceConfiguration.h"
#include "copygen/AnswerShape.h"
#include "copygen/InstallScripts.h"
#include "copygen/MlxRuntime.h"
#include "copygen/text/CopyPrompt.h"
#include "model/CopyGenerationMode.h"

#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

const QString mostTokens = QString::number(mostAnswerTokens);

// The page of a model, which names its licence.
QString modelPage(const QString& repository)
{
    return u"https://huggingface.co/"_s + repository;
}

// Texts of a missing answer; see isOfMissingAnswer().
constexpr QStringView gemmaIsSilent = u"Gemma no respondió";
constexpr QStringView modelIsSilent = u"El modelo no respondió";
constexpr QStringView gemmaDidNotStart = u"No se ha podido iniciar Gemma 4 E2B local desde la app.";
constexpr QStringView gaveNoAnswer = u" no ha dado una respuesta en ";
constexpr QStringView checkEngine = u"Revisar IA local", tryAgain = u"Reintentar";
constexpr QStringView noCaption =
    u"No se ha podido generar el texto completo de la publicación porque ";

EngineProfile gemma(EngineKind kind, const LocalAIInstallation& installation)
{
    EngineProfile profile;
    profile.kind = kind;
    profile.installation = installation;
    profile.modelName = row(LocalAIEngine::gemma4E2B).title.toString();
#ifdef Q_OS_MACOS
    profile.readyDetail = u"Instalado en este Mac. 0 créditos."_s;
#else
    profile.readyDetail = u"Instalado en este equipo. 0 créditos."_s;
#endif
    profile.noAnswer =
        GeneratedCopy(gemmaIsSilent.toString(), gemmaDidNotStart.toString(), checkEngine.toString(),
                      tryAgain.toString(),
                      noCaption.toString() +
                          u"Gemma 4 E2B local no respondió. Revisa la instalación local y vuelve a "
                          "intentarlo."_s,
                      u"La generación local usa solo Gemma 4 E2B."_s);
    return profile;
}

// The environment without what would change the answer or print something else with it.
QProcessEnvironment llamaEnvironment()
{
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const QString& name : environment.keys()) {
        if (name.startsWith(u"LLAMA_ARG_"_s))
            environment.remove(name);
    }
    environment.remove(u"MTMD_TEST_RESPONSE_MARKER"_s);
    environment.insert(u"GGML_NO_BACKTRACE"_s, u"1"_s);
    return environment;
}

QString promptForLlama(const QString& objective, SocialFormat format)
{
    return CopyPromptBuilder::marketing(CopyPromptBuilder::withoutControlWords(objective), format);
}

QStringList samplingArguments(const Sampling& sampling)
{
    if (sampling.temperature == 0)
        return {u"--temp"_s, u"0"_s};
    return {u"--temp"_s, QString::number(sampling.temperature), u"--seed"_s,
            QString::number(sampling.seed)};
}

}    // namespace

EngineProfile mlxProfile(const LocalAIInstallation& installation)
{
    EngineProfile profile = gemma(EngineKind::mlx, installation);
    profile.subtitle = row(LocalAIEngine::gemma4E2B).subtitle.toString();
    profile.licenceURL = modelPage(LocalAIInstallation::gemmaRepository.toString());
    profile.isRuntimeInstalled = [installation] { return installation.gemmaRuntimeIsInstalled(); };
    profile.isModelInstalled = [installation] { return installation.gemmaModelIsInstalled(); };
    profile.installScript = [installation] { return mlxInstallScript(installation); };

    const auto python = [installation](const QStringList& arguments) {
        const MlxRuntime::Interpreter interpreter = MlxRuntime::pythonExecutable(installation);
        ChildCommand command;
        command.program = interpreter.executable;
        command.arguments = interpreter.prefix + arguments;
        command.environment = MlxRuntime::gemmaEnvironment(installation);
        command.folder = MlxRuntime::projectDirectory(MlxRuntime::pythonSearchDirectories(
            QDir::currentPath(), QCoreApplication::applicationDirPath()));
        return command;
    };
    profile.probe = [python] { return python({u"-c"_s, u"import mlx_vlm"_s}); };
    profile.generation = [installation, python](const EngineQuestion& question) {
        return python({u"-m"_s, u"mlx_vlm.generate"_s, u"--model"_s,
                       installation.gemmaModelReference(), u"--image"_s, question.imagePath,
                       u"--prompt"_s, question.prompt, u"--max-tokens"_s, mostTokens,
                       u"--no-verbose"_s});
    };
    profile.prompt = CopyPromptBuilder::marketing;
    profile.wording = CopyWording::mlx();
    return profile;
}

EngineProfile llamaProfile(const LocalAIInstallation& installation, const LlamaPins& pins)
{
    EngineProfile profile = gemma(EngineKind::llama, installation);
    profile.pins = pins;
    profile.subtitle = u"Modelo visual local. Requiere instalación inicial y varios GB libres."_s;
    profile.licenceURL = modelPage(u"ggml-org/gemma-4-E2B-it-GGUF"_s);
    profile.isRuntimeInstalled = [=] { return !llamaProgram(installation, pins).isEmpty(); };
    profile.isModelInstalled = [=] { return llamaModelIsInstalled(installation, pins); };
    profile.installScript = [=] { return llamaInstallScript(installation, pins); };

    const auto llama = [=](const QStringList& arguments) {
        ChildCommand command;
        command.program = llamaProgram(installation, pins);
        command.arguments = arguments;
        command.environment = llamaEnvironment();
        return command;
    };
    profile.probe = [llama] { return llama({u"--version"_s}); };
    profile.generation = [=](const EngineQuestion& question) {
        const QDir folder(installation.gemmaModelDirectory());
        QStringList arguments{u"-m"_s,       folder.filePath(pins.model.fileName()),
                              u"--mmproj"_s, folder.filePath(pins.projector.fileName()),
                              u"--image"_s,  question.imagePath,
                              u"-p"_s,       question.prompt,
                              u"-n"_s,       mostTokens};
        arguments += samplingArguments(question.sampling);
        arguments += {u"--jinja"_s,
                      u"--no-escape"_s,
                      u"-c"_s,
                      u"4096"_s,
                      u"--image-max-tokens"_s,
                      u"280"_s,
                      u"-j"_s,
                      QString::fromLatin1(answerSchema)};
        return llama(arguments);
    };
    profile.prompt = promptForLlama;
    profile.variesAnswers = true;
    profile.wording = CopyWording::llamaCpp();
    return profile;
}

EngineProfile configuredProfile(const CopyEndpoint& endpoint)
{
    const QString place = endpoint.url.authority().section(u'@', -1);    // shows no password
    EngineProfile profile;
    profile.kind = EngineKind::configured;
    profile.endpoint = endpoint;
    profile.modelName = endpoint.model.isEmpty() ? place : endpoint.model;
    profile.readyDetail = u"En %1. 0 créditos."_s.arg(place);
    profile.isRuntimeInstalled = [usable = endpoint.problem.isEmpty()] { return usable; };
    profile.isModelInstalled = profile.isRuntimeInstalled;
    profile.prompt = promptForLlama;
    profile.variesAnswers = true;
    profile.wording = {.engine = profile.modelName + u" local"_s,
                       .imageNotes = u"Analizado con %1 local."_s.arg(profile.modelName),
                       .closesCutAnswers = true};
    profile.noAnswer = GeneratedCopy(
        modelIsSilent.toString(), profile.modelName + gaveNoAnswer.toString() + place + u'.',
        checkEngine.toString(), tryAgain.toString(),
        noCaption.toString() + u"%1 no respondió en %2. Revisa que siga en marcha y vuelve a "
                               "intentarlo."_s.arg(profile.modelName, place),
        u"La generación local usa solo %1."_s.arg(profile.modelName));
    return profile;
}

bool isOfMissingAnswer(const QString& text)
{
    constexpr std::array whole{gemmaIsSilent, modelIsSilent, gemmaDidNotStart, checkEngine,
                               tryAgain};
    return std::ranges::find(whole, QStringView(text).trimmed()) != whole.end() ||
           text.startsWith(noCaption) || text.contains(gaveNoAnswer);
}

EngineProfile engineProfile()
{
    if (const auto endpoint = configuredEndpoint(configurationFile()))
        return configuredProfile(*endpoint);
#ifdef Q_OS_MACOS
    return mlxProfile(LocalAIInstallation::ofThisUser());
#else
    return llamaProfile(LocalAIInstallation::ofThisUser(), llamaPins(configurationFile()));
#endif
}
