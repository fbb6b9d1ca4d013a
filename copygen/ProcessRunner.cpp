#include "copygen/ProcessRunner.h"

#include "platform/ChildProcess.h"

#include <QCoroFuture>
#include <QDir>
#include <QFile>
#include <QTemporaryFile>

using namespace Qt::StringLiterals;

namespace {

// The path of an empty file that only this user may read; empty when there is none.
QString newLogFile()
{
    QTemporaryFile file(QDir::temp().filePath(u"moltiva-local-ai-XXXXXX.log"_s));
    file.setAutoRemove(false);
    return file.open() ? file.fileName() : QString();
}

QByteArray endOf(const QString& path)
{
    constexpr qint64 most = 16 * 1024;    // bytes
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    file.seek(std::max<qint64>(0, file.size() - most));
    return file.readAll();
}

QString failureOf(const ChildOutcome& outcome, const QString& logFile)
{
    switch (outcome.kind) {
    case ChildOutcome::Kind::notStarted:
        return processFailure(qt_error_string(outcome.status).toUtf8(), logFile);
    case ChildOutcome::Kind::timedOut:
        return processFailure("Se ha agotado el tiempo.", logFile);
    case ChildOutcome::Kind::crashed:
        return processFailure(
            u"El instalador se ha interrumpido (señal %1)."_s.arg(outcome.status).toUtf8(),
            logFile);
    case ChildOutcome::Kind::exited:
    case ChildOutcome::Kind::stopped:
    case ChildOutcome::Kind::tooMuchOutput:
        break;
    }
    return processFailure(endOf(logFile), logFile);
}

}    // namespace

QString processFailure(const QByteArray& log, const QString& logFile)
{
    constexpr qsizetype longest = 300;
    const QList<QByteArray> lines = log.trimmed().split('\n');
    QString reason = QString::fromUtf8(lines.last()).simplified();
    reason.removeIf([](QChar c) { return c.category() == QChar::Other_Control; });
    if (reason.isEmpty())
        return u"Proceso local fallido. Log: "_s + logFile;
    return reason.left(longest) + u"\n\nLog: "_s + logFile;
}

QCoro::Task<> ProcessRunner::run(QString executable, QStringList arguments,
                                 std::chrono::seconds timeout)
{
    ChildCommand command;
    command.program = executable;
    command.arguments = arguments;
    command.timeout = timeout;
    command.log = newLogFile();
    const QString logFile = command.log;
    if (logFile.isEmpty()) {
        throw LocalAIProcessError{u"No se ha podido preparar el registro local de instalación."_s};
    }
    m_stop = std::stop_source();
    const std::stop_token stop = m_stop.get_token();
    const auto runChild = [command, stop] {
        ChildProcess child(command);
        const ChildOutcome outcome = child.wait(stop);
        // The log is removed on this thread: the coroutine does not resume if the program ends
        // first.
        if (outcome.isSuccess() || outcome.kind == ChildOutcome::Kind::stopped)
            QFile::remove(command.log);
        return outcome;
    };
    auto ended = m_thread.run(runChild);
    const ChildOutcome outcome = co_await ended;
    if (!outcome.isSuccess() && outcome.kind != ChildOutcome::Kind::stopped)
        throw LocalAIProcessError{failureOf(outcome, logFile)};
    if (outcome.kind == ChildOutcome::Kind::stopped)
        throw LocalAIProcessError{u"Instalación cancelada."_s};
}
