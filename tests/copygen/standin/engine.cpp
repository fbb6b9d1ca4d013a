// Stands in for the programs that run the model: python3 with mlx_vlm, or llama-mtmd-cli, by the
// name it is started under. Refuses, with status 9 and a sentence on standard error, whatever
// differs from what the real one is to be given. What it does otherwise is in the environment:
//   MOLTIVA_STANDIN      "probe=WORD generation=WORD", the words being those of `behaviours`
//   MOLTIVA_STANDIN_LOG  a file to which each run adds its process number and a line

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

[[noreturn]] void refuse(const QString& what)
{
    std::fprintf(stderr, "standin: %s\n", qPrintable(what));
    std::exit(9);
}

void expect(bool condition, const QString& what)
{
    if (!condition)
        refuse(what);
}

void note(const QString& line)
{
    QFile log(qEnvironmentVariable("MOLTIVA_STANDIN_LOG"));
    if (!log.fileName().isEmpty() && log.open(QIODevice::WriteOnly | QIODevice::Append))
        log.write((line + u'\n').toUtf8());
}

void print(const QByteArray& bytes)
{
    std::fwrite(bytes.constData(), 1, std::size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

const QByteArray answer =
    R"({"title": "Luz de la mañana", "subtitle": "Un rincón para empezar bien el día.", )"
    R"("tagline": "Cada detalle de esta imagen invita a parar, respirar y quedarse un rato más.", )"
    R"("callToAction": "Reserva ahora", "publicationCaption": "Hay mañanas que se quedan. #Calma"})";

void hang()
{
    while (true)
        ::pause();
}

void ignoreSignals()
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE})
        std::signal(signal, SIG_IGN);
}

// Leaves a process behind that holds standard output open and ignores signals.
void fork()
{
    if (::fork() == 0) {
        ignoreSignals();
        note(QString::number(::getpid()));
        hang();
    }
}

struct Behaviour {
    QString name;
    std::function<void()> act;    // afterwards the program ends with status 0
};
const Behaviour behaviours[]{
    {u"answer"_s, [] { print('\n' + answer + "\n\n\n"); }},
    {u"fail"_s,
     [] {
         print(answer);
         std::exit(1);
     }},
    {u"crash"_s,
     [] {
         print(answer);
         ::raise(SIGKILL);
     }},
    {u"silence"_s, [] {}},
    {u"lines"_s, [] { print("\n\n\n"); }},
    {u"hang"_s,
     [] {
         print(answer.left(60));
         hang();
     }},
    {u"interruptible"_s,    // ends well with half an answer, as llama-mtmd-cli does
     [] {
         for (const int signal : {SIGTERM, SIGINT})
             std::signal(signal, [](int) { std::_Exit(0); });
         print(answer);
         hang();
     }},
    {u"deaf"_s,
     [] {
         ignoreSignals();
         hang();
     }},
    {u"garbage"_s, [] { print("}{ ]] \x01\x02 no {\"title\": "); }},
    {u"invalid"_s, [] { print("{\"title\": \"\xff\xfe\xc3\x28\"}\n"); }},
    {u"half"_s, [] { print(answer.left(answer.indexOf("ma\xc3\xb1") + 3) + "\n\n"); }},
    {u"flood"_s,
     [] {
         for (int i = 0; i < 10; ++i)
             print(QByteArray(1 << 20, 'x'));
     }},
    {u"fork"_s,
     [] {
         fork();
         print(answer);
     }},
    {u"forkandhang"_s,
     [] {
         fork();
         hang();
     }},
};

void actAs(const QString& step)
{
    const QRegularExpression named(step + u"=(\\w+)"_s);
    const auto match = named.match(qEnvironmentVariable("MOLTIVA_STANDIN"));
    const QString name = match.hasMatch() ? match.captured(1) : u"answer"_s;
    for (const Behaviour& behaviour : behaviours) {
        if (behaviour.name == name)
            return behaviour.act();
    }
    refuse(u"no such behaviour: "_s + name);
}

void checkSurroundings()
{
    struct stat input = {}, null = {};
    ::fstat(STDIN_FILENO, &input);
    ::stat("/dev/null", &null);
    expect(input.st_rdev == null.st_rdev, u"standard input is not the null device"_s);
    expect(::getpgrp() != ::getpgid(::getppid()), u"not in a process group of its own"_s);
}

void checkPrompt(const QString& prompt)
{
    expect(prompt.startsWith(u"Eres un director creativo senior, copywriter"_s) &&
               prompt.contains(u"\nObjetivo estratégico: "_s) &&
               prompt.endsWith(u"etiquetas, puntos suspensivos ni frases genéricas."_s),
           u"prompt: "_s + prompt);
}

// Returns its size in pixels.
QString checkedPicture(const QString& path)
{
    static const QRegularExpression name(
        u"^moltiva-local-analysis-[0-9a-fA-F]{8}(-[0-9a-fA-F]{4}){3}-[0-9a-fA-F]{12}\\.png$"_s);
    const QFileInfo file(path);
    expect(file.isAbsolute() && name.match(file.fileName()).hasMatch() && !path.contains(u','),
           u"picture: "_s + path);
    struct stat status = {};
    expect(::stat(QFile::encodeName(path).constData(), &status) == 0 &&
               (status.st_mode & 0777) == 0600,
           u"permissions of the picture"_s);
    const QImage picture(path, "png");
    expect(!picture.isNull(), u"the picture cannot be read"_s);
    return u"%1x%2"_s.arg(picture.width()).arg(picture.height());
}

void expectArguments(const QStringList& given, const QStringList& expected)
{
    expect(given == expected, u"arguments: "_s + given.join(u" | "_s));
}

void runAsPython(const QStringList& given)
{
    const QString gemma = QDir::cleanPath(given[0] + u"/../../.."_s);
    expect(QFileInfo(qEnvironmentVariable("HF_HOME")).path() == gemma &&
               QFileInfo(qEnvironmentVariable("HF_HOME")).fileName() == u"huggingface-cache"_s,
           u"HF_HOME"_s);
    expect(qEnvironmentVariable("TOKENIZERS_PARALLELISM") == u"false"_s,
           u"TOKENIZERS_PARALLELISM"_s);
    const QStringList arguments = given.mid(1);
    if (arguments == QStringList{u"-c"_s, u"import mlx_vlm"_s}) {
        note(u"%1 probe"_s.arg(::getpid()));
        return actAs(u"probe"_s);
    }
    const QString picture = arguments.value(5), prompt = arguments.value(7);
    expectArguments(arguments, {u"-m"_s, u"mlx_vlm.generate"_s, u"--model"_s, gemma + u"/model"_s,
                                u"--image"_s, picture, u"--prompt"_s, prompt, u"--max-tokens"_s,
                                u"220"_s, u"--no-verbose"_s});
    checkPrompt(prompt);
    note(u"%1 generation %2"_s.arg(::getpid()).arg(checkedPicture(picture)));
    actAs(u"generation"_s);
}

void runAsLlama(const QStringList& given)
{
    for (const char* name : {"LLAMA_ARG_LOG_JSONL", "MTMD_TEST_RESPONSE_MARKER"})
        expect(!qEnvironmentVariableIsSet(name), QString::fromLatin1(name));
    expect(qEnvironmentVariable("GGML_NO_BACKTRACE") == u"1"_s, u"GGML_NO_BACKTRACE"_s);
    QStringList arguments = given.mid(1);
    if (arguments == QStringList{u"--version"_s}) {
        note(u"%1 probe"_s.arg(::getpid()));
        return actAs(u"probe"_s);
    }
    const QString model = arguments.value(1), projector = arguments.value(3);
    const QString picture = arguments.value(5), prompt = arguments.value(7);
    const QString temperature = arguments.value(11);
    QString seed;
    if (temperature != u"0"_s) {
        expect(temperature == u"0.7"_s && arguments.value(12) == u"--seed"_s, u"sampling"_s);
        seed = arguments.value(13);
        arguments.remove(12, 2);
    }
    const QString schema =
        uR"({"type":"object","properties":{"title":{"type":"string","maxLength":42},)"
        R"("subtitle":{"type":"string","maxLength":90},"tagline":{"type":"string","maxLength":220},)"
        R"("callToAction":{"type":"string","maxLength":24},)"
        R"("publicationCaption":{"type":"string","maxLength":300}},)"
        R"("required":["title","subtitle","tagline","callToAction","publicationCaption"],)"
        R"("additionalProperties":false})"_s;
    expectArguments(arguments, {u"-m"_s,
                                model,
                                u"--mmproj"_s,
                                projector,
                                u"--image"_s,
                                picture,
                                u"-p"_s,
                                prompt,
                                u"-n"_s,
                                u"220"_s,
                                u"--temp"_s,
                                temperature,
                                u"--jinja"_s,
                                u"--no-escape"_s,
                                u"-c"_s,
                                u"4096"_s,
                                u"--image-max-tokens"_s,
                                u"280"_s,
                                u"-j"_s,
                                schema});
    expect(QFileInfo(model).isFile() && QFileInfo(projector).isFile() && model != projector,
           u"model files"_s);
    checkPrompt(prompt);
    expect(!prompt.contains(u"<__media__>"_s) && !prompt.contains(u"<turn|>"_s),
           u"control words"_s);
    note(u"%1 generation %2 %3 %4"_s.arg(::getpid())
             .arg(checkedPicture(picture), temperature, seed.isEmpty() ? u"-"_s : seed));
    actAs(u"generation"_s);
}

}    // namespace

int main(int count, char** words)
{
    QStringList given;
    for (int i = 0; i < count; ++i)
        given.append(QString::fromUtf8(words[i]));
    checkSurroundings();
    if (QFileInfo(given[0]).fileName() == u"python3"_s)
        runAsPython(given);
    else
        runAsLlama(given);
    return 0;
}
