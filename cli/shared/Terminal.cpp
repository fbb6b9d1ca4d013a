#include "cli/shared/Terminal.h"

#include "model/PlainText.h"

#include <QByteArray>
#include <QScopeGuard>

#include <array>
#include <csignal>

#ifdef Q_OS_UNIX
#include <termios.h>
#include <unistd.h>
#endif

namespace {

constexpr qsizetype longestLine = 4096;

// Returns nothing at the end of the input, or if the line is longer than any password.
std::optional<QByteArray> readLine(std::FILE* stream)
{
    QByteArray line;
    int c = std::fgetc(stream);
    if (c == EOF)
        return std::nullopt;
    for (; c != EOF && c != '\n' && line.size() < longestLine; c = std::fgetc(stream))
        line.append(char(c));
    if (line.size() == longestLine)
        return std::nullopt;
    while (line.endsWith('\r'))
        line.chop(1);
    return line;
}

#ifdef Q_OS_UNIX
termios shown;    // the terminal's settings before readUnseen()

extern "C" void showAgain(int signal)
{
    tcsetattr(STDIN_FILENO, TCSANOW, &shown);
    std::signal(signal, SIG_DFL);
    raise(signal);
}

// Reads a line without echo; backspace and other editing keys still work. Restores the terminal's
// settings even if a signal ends the program.
std::optional<QByteArray> readUnseen()
{
    if (tcgetattr(STDIN_FILENO, &shown) != 0)
        return readLine(stdin);
    constexpr std::array endings{SIGINT, SIGTERM, SIGHUP, SIGQUIT};
    for (const int ending : endings)
        std::signal(ending, showAgain);
    termios unseen = shown;
    unseen.c_lflag &= ~tcflag_t(ECHO);
    unseen.c_lflag |= ECHONL;
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &unseen);
    const auto restore = qScopeGuard([&endings] {
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown);
        for (const int ending : endings)
            std::signal(ending, SIG_DFL);
    });
    return readLine(stdin);
}
#endif

bool steers(QChar c)
{
    return c.category() == QChar::Other_Control || turnsDirection(c);
}

// Replaces control characters, which names of files and sentences of servers may contain. Does not
// remove them: a file name must not turn into that of another file.
QString tamed(QString line)
{
    constexpr qsizetype most = 8192;    // characters: the longest path and a sentence about it
    for (QChar& c : line) {
        if (steers(c))
            c = QChar::ReplacementCharacter;
    }
    return line.size() > most ? line.first(most - 1) + u'…' : line;
}

}    // namespace

void print(std::FILE* stream, const QString& line)
{
    const bool isRead = stream == stderr || isTerminal(stream);
    std::fputs(((isRead ? tamed(line) : line) + u'\n').toUtf8().constData(), stream);
    std::fflush(stream);
}

QString printable(const QString& text)
{
    constexpr qsizetype most = 80;
    QString line = text.simplified();
    line.removeIf(&steers);
    return line.size() > most ? line.first(most - 1) + u'…' : line;
}

bool isTerminal(std::FILE* stream)
{
#ifdef Q_OS_UNIX
    return isatty(fileno(stream)) != 0;
#else
    Q_UNUSED(stream);
    return false;
#endif
}

std::optional<QByteArray> readSecret(const QString& prompt)
{
#ifdef Q_OS_UNIX
    if (isTerminal(stdin)) {
        std::fputs(prompt.toUtf8().constData(), stderr);
        return readUnseen();
    }
#endif
    return readLine(stdin);
}
