#include "cli/Terminal.h"

#include <QByteArray>
#include <QScopeGuard>

#ifdef Q_OS_UNIX
#include <termios.h>
#include <unistd.h>
#endif

namespace {

constexpr qsizetype longestLine = 4096;

std::optional<QString> readLine(std::FILE* stream)
{
    QByteArray line(longestLine, '\0');
    if (!std::fgets(line.data(), int(line.size()), stream))
        return std::nullopt;
    line.truncate(qsizetype(qstrlen(line.constData())));
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    return QString::fromLocal8Bit(line);
}

#ifdef Q_OS_UNIX
// The terminal passes each key on and shows none; Ctrl+C is a key then, or the terminal would be
// left as it is.
std::optional<QString> readUnseen()
{
    termios before{};
    if (tcgetattr(STDIN_FILENO, &before) != 0)
        return readLine(stdin);
    termios unseen = before;
    unseen.c_lflag &= ~tcflag_t(ECHO | ICANON | ISIG);
    unseen.c_cc[VMIN] = 1;
    unseen.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &unseen);
    const auto restore = qScopeGuard([&before] {
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
        std::fputc('\n', stderr);
    });
    constexpr char interrupt = 3, end = 4, backspace = 8, erase = 127;
    QByteArray typed;
    char key = 0;
    while (read(STDIN_FILENO, &key, 1) == 1 && typed.size() < longestLine) {
        if (key == interrupt || (key == end && typed.isEmpty()))
            return std::nullopt;
        if (key == '\n' || key == '\r')
            return QString::fromLocal8Bit(typed);
        if (key == backspace || key == erase)
            typed = QString::fromLocal8Bit(typed).chopped(typed.isEmpty() ? 0 : 1).toLocal8Bit();
        else
            typed.append(key);
    }
    return std::nullopt;
}
#endif

}    // namespace

void print(std::FILE* stream, const QString& line)
{
    std::fputs((line + u'\n').toUtf8().constData(), stream);
    std::fflush(stream);
}

QString printable(const QString& text)
{
    constexpr qsizetype most = 80;
    QString line = text.simplified();
    line.removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
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

std::optional<QString> readSecret(const QString& prompt)
{
#ifdef Q_OS_UNIX
    if (isTerminal(stdin)) {
        std::fputs(prompt.toUtf8().constData(), stderr);
        return readUnseen();
    }
#endif
    return readLine(stdin);
}
