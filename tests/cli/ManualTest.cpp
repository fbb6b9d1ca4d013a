#include "model/SocialFormat.h"
#include "model/SocialPublishNetwork.h"
#include "tests/cli/CommandTest.h"

#include <QDirIterator>
#include <QMimeDatabase>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace {

const QString serviceName = u"moltiva-service"_s;

// What a text says of a command: its options and exit statuses. The program itself is the command
// without a name.
struct Told {
    QSet<QString> options;    // in their long form
    QSet<int> statuses;
};
using ToldOfCommands = QMap<QString, Told>;

// Words or numbers in a fixed order, readable where a test fails.
template <typename T>
std::string listed(const QSet<T>& set)
{
    QStringList words;
    for (const T& each : set)
        words.append(QVariant(each).toString());
    words.sort();
    return words.join(u' ').toStdString();
}

QSet<QString> optionsIn(const QString& text)
{
    static const QRegularExpression pattern(u"--[a-z][a-z-]*"_s);
    QSet<QString> found;
    for (const auto& match : pattern.globalMatch(text))
        found.insert(match.captured());
    return found;
}

QSet<int> numbersIn(const QString& text)
{
    static const QRegularExpression pattern(u"\\d+"_s);
    QSet<int> found;
    for (const auto& match : pattern.globalMatch(text))
        found.insert(match.captured().toInt());
    return found;
}

QString sourceText(const QString& path)
{
    QFile file(QStringLiteral(MOLTIVA_SOURCE_DIR "/packaging/") + path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

QSet<QString> variablesIn(const QString& text, const QString& pattern)
{
    QSet<QString> found;
    for (const auto& match : QRegularExpression(pattern).globalMatch(text))
        found.insert(match.captured(1));
    return found;
}

// The environment variables of ours that the sources in these folders name as texts.
QSet<QString> variablesOfSources(const QStringList& folders)
{
    QSet<QString> found;
    for (const QString& folder : folders) {
        QDirIterator files(QStringLiteral(MOLTIVA_SOURCE_DIR "/") + folder, {u"*.cpp"_s},
                           QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
            found += variablesIn(QString::fromUtf8(file.readAll()), u"\"(MOLTIVA_[A-Z_]+)\""_s);
        }
    }
    return found;
}

// Reads the help of one command. An option stands at the beginning of its line, before its meaning.
Told toldByHelp(const QString& help)
{
    static const QRegularExpression option(u"^  (-.*?)(  |$)"_s);
    static const QRegularExpression status(u"^  (\\d+) "_s);
    Told told;
    for (const QString& line : help.split(u'\n')) {
        if (const auto match = option.match(line); match.hasMatch())
            told.options += optionsIn(match.captured(1));
        if (const auto match = status.match(line); match.hasMatch())
            told.statuses.insert(match.captured(1).toInt());
    }
    return told;
}

// Reads a page of the manual. A section of a command begins with .SS, an option follows on .TP, and
// a line after "Exit status:" lists the statuses of a command.
ToldOfCommands toldByManual(const QString& path)
{
    QString page = sourceText(path);
    page.replace(u"\\-"_s, u"-"_s);
    ToldOfCommands told;
    QString command, before;
    for (const QString& line : page.split(u'\n')) {
        const QString name = line.mid(4).remove(u'"');
        if (line.startsWith(u".SH"))
            command = QString();
        else if (line.startsWith(u".SS"))
            command = name;
        else if (line.startsWith(u"Exit status:") || line.startsWith(u"Estado de salida:"))
            told[command].statuses = numbersIn(line);
        else if (before == u".TP" && (line.startsWith(u".B -") || line.startsWith(u".BI -") ||
                                      line.startsWith(u".BR -")))
            told[command].options += optionsIn(line);
        else if (before == u".TP" && QRegularExpression(u"^\\.B \\d+$"_s).match(line).hasMatch())
            told[command].statuses += numbersIn(line);
        before = line;
    }
    return told;
}

// The arguments with which a command gets all options that its help lists.
QStringList allOptions(const QString& help)
{
    static const QRegularExpression option(u"^  (?:-\\w, )?(--[a-z-]+)( [<A-Z][^ ]*)?"_s);
    QStringList arguments;
    for (const QString& line : help.split(u'\n')) {
        const auto match = option.match(line);
        if (!match.hasMatch() || match.captured(1) == u"--help" ||
            match.captured(1) == u"--version")
            continue;
        arguments.append(match.captured(1));
        if (!match.captured(2).isEmpty())
            arguments.append(u"1"_s);
    }
    return arguments;
}

class ManualTest : public CommandTest {
protected:
    void SetUp() override
    {
        static const QRegularExpression command(u"^  ([a-z]+)  "_s);
        m_help[QString()] = run({u"--help"_s}).out;
        for (const QString& line : m_help[QString()].split(u'\n')) {
            if (const auto match = command.match(line);
                match.hasMatch() && match.captured(1) != u"moltiva")
                m_help[match.captured(1)] = QString();
        }
        m_help[u"--self-test"_s] = QString();
        for (auto each = m_help.begin(); each != m_help.end(); ++each) {
            if (!each.key().isEmpty())
                each.value() = run({each.key(), u"--help"_s}).out;
            m_told[each.key()] = toldByHelp(each.value());
        }
    }
    static QString serviceProgram()
    {
        return QFileInfo(QStringLiteral(MOLTIVA_PROGRAM)).dir().filePath(serviceName);
    }
    static std::pair<int, QString> runOther(const QString& program, const QStringList& arguments,
                                            const QString& folder = {})
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s);
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(folder);
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished(60'000)) << program.toStdString();
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput())};
    }
    // What bash proposes after these words, in an empty folder.
    QSet<QString> proposed(const QStringList& words, const QString& program = u"moltiva"_s)
    {
        const QString file =
            QStringLiteral(MOLTIVA_SOURCE_DIR "/packaging/completion/%1.bash").arg(program);
        const QString script =
            u"source \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); "
            "$(complete -p \"$1\" | sed 's/.*-F //; s/ .*//'); printf '%s\\n' \"${COMPREPLY[@]}\""_s;
        QDir().mkpath(path(u"empty"_s));
        const QStringList lines =
            runOther(u"bash"_s, QStringList{u"-c"_s, script, u"bash"_s, file, program} + words,
                     path(u"empty"_s))
                .second.split(u'\n', Qt::SkipEmptyParts);
        return {lines.begin(), lines.end()};
    }
    // The options that zsh is told of after this command; empty: after the program.
    static QSet<QString> toldToZsh(const QString& command, const QString& program)
    {
        const QString script =
            u"service=$2 words=($2 $3 '') CURRENT=$#words\n"
            "_arguments() { print -rl -- \"$@\" }\n_describe() { print -rl -- ${(P)4} }\n"
            "complete() { source $1 }\ncomplete $1"_s;
        const QString file = QStringLiteral(MOLTIVA_SOURCE_DIR "/packaging/completion/_moltiva");
        QStringList arguments{u"-fc"_s, script, u"zsh"_s, file, program};
        if (!command.isEmpty())
            arguments.append(command);
        QSet<QString> found;
        static const QRegularExpression option(u"^(?:\\(.*\\))?(--[a-z-]+)\\["_s);
        static const QRegularExpression word(u"^([a-z]+):"_s);
        for (const QString& line : runOther(u"zsh"_s, arguments).second.split(u'\n')) {
            if (const auto match = option.match(line); match.hasMatch())
                found.insert(match.captured(1));
            else if (const auto other = word.match(line); other.hasMatch())
                found.insert(other.captured(1));
        }
        return found;
    }

    QMap<QString, QString> m_help;    // by command
    ToldOfCommands m_told;
};

QSet<QString> keysOfFormats()
{
    QSet<QString> keys;
    for (const SocialFormatRow& row : Vocabulary<SocialFormat>::rows)
        keys.insert(row.templateKey.toString());
    return keys;
}

QSet<QString> namesOf(const ToldOfCommands& told)
{
    return QSet<QString>(told.keyBegin(), told.keyEnd());
}

const QSet<QString> everywhere{u"--help"_s}, addresses{u"--service"_s, u"--site"_s, u"--verbose"_s};

}    // namespace

TEST_F(ManualTest, ThePagesNameTheOptionsAndExitStatusesOfEveryHelp)
{
    for (const QString& page : {u"man/moltiva.1"_s, u"man/es/moltiva.1"_s}) {
        SCOPED_TRACE(page.toStdString());
        const ToldOfCommands told = toldByManual(page);
        EXPECT_EQ(listed(namesOf(told)), listed(namesOf(m_told)));
        QSet<int> statuses;
        for (auto each = m_told.cbegin(); each != m_told.cend(); ++each) {
            SCOPED_TRACE(each.key().toStdString());
            const QSet<QString> common = each.key().isEmpty() ? QSet<QString>() : everywhere;
            EXPECT_EQ(listed(told[each.key()].options), listed(each.value().options - common));
            if (!each.key().isEmpty()) {
                EXPECT_EQ(listed(told[each.key()].statuses), listed(each.value().statuses));
            }
            statuses += each.value().statuses;
        }
        EXPECT_EQ(listed(told[QString()].statuses), listed(statuses));
    }
    const Told help = toldByHelp(runOther(serviceProgram(), {u"--help"_s}).second);
    for (const QString& page : {u"man/moltiva-service.1"_s, u"man/es/moltiva-service.1"_s}) {
        const Told told = toldByManual(page)[QString()];
        EXPECT_EQ(listed(told.options), listed(help.options));
        EXPECT_EQ(listed(told.statuses), listed(help.statuses));
    }
    EXPECT_EQ(listed(help.statuses), "0 1 2 3");
}

TEST_F(ManualTest, ThePagesNameTheVariablesThatTheProgramsRead)
{
    const QStringList ofProgram{u"account"_s, u"app"_s,      u"cli"_s,
                                u"copygen"_s, u"platform"_s, u"studio"_s};
    const std::string program = listed(variablesOfSources(ofProgram));
    const std::string service = listed(variablesOfSources({u"service"_s}));
    for (const QString& folder : {u"man/"_s, u"man/es/"_s}) {
        const auto named = [&folder](const QString& page) {
            return listed(variablesIn(sourceText(folder + page), u"\\b(MOLTIVA_[A-Z_]+)"_s));
        };
        EXPECT_EQ(named(u"moltiva.1"_s), program);
        EXPECT_EQ(named(u"moltiva-service.1"_s), service);
    }
    EXPECT_FALSE(program.empty() || service.empty());
}

TEST_F(ManualTest, CompletionProposesTheOptionsOfEveryHelp)
{
    const bool hasZsh = !QStandardPaths::findExecutable(u"zsh"_s).isEmpty();
    for (auto each = m_told.cbegin(); each != m_told.cend(); ++each) {
        SCOPED_TRACE(each.key().toStdString());
        const bool isProgram = each.key().isEmpty();
        const bool isSelfTest = each.key() == u"--self-test";
        const QSet<QString> options =
            each.value().options + (isSelfTest ? QSet<QString>() : addresses);
        const QStringList command = isProgram ? QStringList() : QStringList{each.key()};
        EXPECT_EQ(listed(proposed(command + QStringList{u"--"_s})), listed(options));
        const QSet<QString> commands = namesOf(m_told) - QSet{QString(), u"--self-test"_s};
        if (isProgram) {
            EXPECT_EQ(listed(proposed({QString()})), listed(commands));
        }
        if (hasZsh) {
            EXPECT_EQ(listed(toldToZsh(each.key(), u"moltiva"_s)),
                      listed(options + (isProgram ? commands : QSet<QString>())));
        }
    }
    const QSet<QString> service =
        toldByHelp(runOther(serviceProgram(), {u"--help"_s}).second).options;
    EXPECT_EQ(listed(proposed({u"--"_s}, serviceName)), listed(service));
    if (hasZsh) {
        EXPECT_EQ(listed(toldToZsh({}, serviceName)), listed(service));
    }

    QSet<QString> networks;
    for (const auto& row : Vocabulary<SocialPublishNetwork>::rows)
        networks.insert(row.rawValue.toString());
    EXPECT_EQ(listed(proposed({u"export"_s, u"--format"_s, QString()})), listed(keysOfFormats()));
    EXPECT_EQ(listed(proposed({u"publish"_s, u"--network"_s, QString()})), listed(networks));
    EXPECT_EQ(listed(proposed({u"connect"_s, QString()})), listed(networks));
    EXPECT_EQ(listed(proposed({u"--verbose"_s, u"--service"_s, u"http"_s, u":"_s, u"//a.es"_s,
                               u"connect"_s, QString()})),
              listed(networks));
    for (const QString& action : proposed({u"local"_s, QString()}))
        EXPECT_TRUE(m_help[u"local"_s].contains(u"\n  %1 "_s.arg(action))) << action.toStdString();
    EXPECT_EQ(proposed({u"local"_s, QString()}).size(), 3);
    for (const QString& action : proposed({u"templates"_s, QString()}))
        EXPECT_TRUE(m_help[u"templates"_s].contains(u"\n  %1 "_s.arg(action)));
    EXPECT_EQ(proposed({u"templates"_s, QString()}).size(), 6);
    photo(u"empty/una foto.JPG"_s);
    textFile(u"empty/una plantilla.json"_s);
    textFile(u"empty/textos.csv"_s);
    EXPECT_EQ(listed(proposed({u"export"_s, QString()})), "una foto.JPG");
    EXPECT_EQ(listed(proposed({u"export"_s, u"--texts"_s, QString()})), "textos.csv");
    EXPECT_EQ(listed(proposed({u"templates"_s, u"push"_s, QString()})), "una plantilla.json");
}

TEST_F(ManualTest, CommandsTakeTheirOptionsAndEndWithTheirStatuses)
{
    for (const QByteArray request : {"GET /api/auth/me", "GET /api/account/purchases"})
        m_account.answer(request, R"({"error":"unauthorized"})", 401);
    const QString picture = photo(u"foto.png"_s);
    const QStringList nowhere{u"--service"_s, u"http://127.0.0.1:1"_s};
    const QMap<QString, QStringList> uses{
        {u"export"_s, {picture}},
        {u"generate"_s, {u"--mode"_s, u"cloud"_s, picture}},
        {u"publish"_s, {u"--network"_s, u"instagram"_s, picture}},
        {u"connect"_s, {u"instagram"_s}},
        {u"templates"_s, {u"list"_s}},
    };
    for (auto each = m_told.cbegin(); each != m_told.cend(); ++each) {
        SCOPED_TRACE(each.key().toStdString());
        const QStringList command = each.key().isEmpty() ? QStringList() : QStringList{each.key()};
        const QStringList use = command + uses.value(each.key());
        EXPECT_TRUE(each.value().statuses.contains(0) && each.value().statuses.contains(2));
        EXPECT_EQ(run(command + QStringList{u"--nada"_s}).status, 2);
        if (command.isEmpty())
            continue;
        EXPECT_EQ(run(command + allOptions(m_help[each.key()]) + QStringList{u"--help"_s}).status,
                  0);
        if (each.value().statuses.contains(3)) {
            EXPECT_EQ(run(use).status, 3);
        }
        // The commands with an e-mail address would ask for a password first.
        if (each.value().statuses.contains(5) && !each.value().options.contains(u"--email"_s)) {
            EXPECT_EQ(run(use + nowhere).status, 5);
        }
    }
    const QString help = runOther(serviceProgram(), {u"--help"_s}).second;
    EXPECT_EQ(runOther(serviceProgram(), allOptions(help) + QStringList{u"--help"_s}).first, 0);
    EXPECT_EQ(runOther(serviceProgram(), {u"--nada"_s}).first, 2);
}

TEST_F(ManualTest, AHelpIsReadableOnATerminal)
{
    const QString command = QStringLiteral(MOLTIVA_PROGRAM " export --help");
    const QString shown =
        runOther(u"script"_s, {u"-qec"_s, command, u"/dev/null"_s}, m_folder.path()).second;
    EXPECT_TRUE(shown.contains(u"\n  --jobs"_s)) << shown.toStdString();
}

TEST_F(ManualTest, TheSelfTestTellsWhatIsMissingAndTouchesNothing)
{
    const Outcome whole = run({u"--self-test"_s, u"--json"_s});
    EXPECT_EQ(whole.status, 0) << whole.out.toStdString() << whole.err.toStdString();
    QSet<QString> formats;
    for (const QJsonObject& line : objectsIn(whole))
        formats.insert(line[u"check"].toString());
    EXPECT_TRUE(formats.contains((QSet{u"jpeg"_s, u"heic"_s, u"tls"_s, u"service"_s, u"emoji"_s})));
    EXPECT_FALSE(QDir(path(u"home/moltiva"_s)).exists());

    qputenv("PATH", "/nowhere");
    const Outcome poor = run({u"--self-test"_s});
    EXPECT_EQ(poor.status, 1);
    EXPECT_EQ(poor.out, u"Enlaces: falta el programa xdg-open, que abre el navegador.\n"_s);
}

TEST_F(ManualTest, TheDesktopEntryListsWhatTheProgramReads)
{
    const QString entry = sourceText(u"moltiva.desktop"_s);
    const QStringList types =
        entry.section(u"MimeType="_s, 1).section(u'\n', 0, 0).split(u';', Qt::SkipEmptyParts);
    const QDir samples(QStringLiteral(MOLTIVA_SOURCE_DIR "/cli/selftest"));
    const QStringList files = samples.entryList({u"photo.*"_s});
    EXPECT_EQ(files.size(), 7);
    for (const QString& file : files) {
        const QString type = QMimeDatabase().mimeTypeForFile(samples.filePath(file)).name();
        EXPECT_TRUE(types.contains(type)) << file.toStdString() << type.toStdString();
    }
    EXPECT_TRUE(types.contains(u"x-scheme-handler/moltiva"_s));
}
