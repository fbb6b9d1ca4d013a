#include "platform/Log.h"

#include "platform/SystemLock.h"

#include <QDateTime>
#include <QFile>
#include <QRegularExpression>

#include <cstdio>
#include <mutex>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

Q_LOGGING_CATEGORY(logProgram, "moltiva.program", QtInfoMsg)
Q_LOGGING_CATEGORY(logWork, "moltiva.work", QtInfoMsg)
Q_LOGGING_CATEGORY(logNetwork, "moltiva.network", QtInfoMsg)

namespace {

constexpr qint64 longestFile = 1 << 20;    // bytes
constexpr qsizetype longestMessage = 2000;

struct LogTarget {
    QByteArray file;
    bool isVerbose = false;
};

LogTarget& logTarget()
{
    static LogTarget target;
    return target;
}

QString older(const QString& file, int age)
{
    return file + u'.' + QString::number(age);
}

// Another program may have renamed the file since, so its length is read again under the lock.
void rotateLog(const QString& file)
{
    const SystemLock lock(file + u".lock"_s);
    struct ::stat status = {};
    if (!lock.isOurs() || ::lstat(QFile::encodeName(file), &status) != 0 ||
        status.st_size < longestFile)
        return;
    for (const int age : {1, 0}) {
        const QString from = age == 0 ? file : older(file, age);
        ::rename(QFile::encodeName(from), QFile::encodeName(older(file, age + 1)));
    }
}

// Opens the file for each line, because another program may rename it at any time. One write in
// append mode keeps the lines of several programs whole.
void appendLine(const QByteArray& file, const QByteArray& line)
{
    const int descriptor =
        ::open(file, O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0600);
    if (descriptor < 0)
        return;
    struct ::stat status = {};
    const bool isFile = ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
    if (isFile) [[maybe_unused]]
        const auto written = ::write(descriptor, line, std::size_t(line.size()));
    ::close(descriptor);
    if (isFile && status.st_size + line.size() >= longestFile)
        rotateLog(QFile::decodeName(file));
}

QStringView levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return u"debug";
    case QtInfoMsg:
        return u"info";
    case QtWarningMsg:
        return u"warning";
    case QtCriticalMsg:
        return u"critical";
    case QtFatalMsg:
        break;
    }
    return u"fatal";
}

void writeMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    static std::mutex writing;
    const LogTarget& target = logTarget();
    QString message = withoutPersonalData(text.left(longestMessage));
    for (QChar& character : message) {
        if (character.category() == QChar::Other_Control)
            character = u' ';    // among them those that command a terminal
    }
    const QString line =
        u"%1 %2 %3 %4: %5\n"_s.arg(QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs))
            .arg(::getpid())
            .arg(levelName(type), QString::fromLatin1(context.category), message);
    const std::scoped_lock lock(writing);
    if (target.isVerbose || type == QtFatalMsg)
        std::fputs(line.toLocal8Bit(), stderr);
    appendLine(target.file, line.toUtf8());
}

}    // namespace

void startLog(const QString& file, bool isVerbose)
{
    logTarget() = {QFile::encodeName(file), isVerbose};
    QLoggingCategory::setFilterRules(isVerbose ? u"moltiva.*=true"_s : u"*.debug=false"_s);
    qInstallMessageHandler(&writeMessage);
}

QStringList lastLogLines(const QString& file, int most)
{
    constexpr qint64 enough = 64 << 10;    // bytes
    QStringList lines;
    for (const QString& name : {older(file, 1), file}) {
        QFile source(name);
        if (!source.open(QIODevice::ReadOnly))
            continue;
        const bool isCut = source.size() > enough && source.seek(source.size() - enough);
        QStringList read = QString::fromUtf8(source.read(enough)).split(u'\n', Qt::SkipEmptyParts);
        if (isCut && !read.isEmpty())
            read.removeFirst();    // begins in the middle
        lines += read;
    }
    return lines.mid(qMax<qsizetype>(0, lines.size() - most));
}

QString withoutPersonalData(QString text)
{
    static const QRegularExpression email(u"[^\\s<>\"'=:;,()]+@[^\\s<>\"',;()]+"_s),
        query(u"([?#])[^\\s\"'<>]+"_s),
        // The rest of the line, because such a header may hold several words or cookies.
        header(u"((?:cookie|authorization)\"?\\s*[:=]).*"_s,
               QRegularExpression::CaseInsensitiveOption),
        secret(u"(session|token|password|contraseña|key|secret)"
               "(\"?\\s*[:=]\\s*\"?)[^\\s\",;]+"_s,
               QRegularExpression::CaseInsensitiveOption),
        // Up to the end of the quotation or line, because names of files may contain spaces. The
        // two slashes after a scheme begin no path, but for file:.
        path(u"(?:file://|(?<![\\w/.]))/(?!/)[^\"\\n]*"_s);
    text.replace(email, u"<email>"_s);
    text.replace(header, u"\\1 <secret>"_s);
    text.replace(secret, u"\\1\\2<secret>"_s);
    text.replace(query, u"\\1…"_s);
    text.replace(path, u"<path>"_s);
    return text;
}
