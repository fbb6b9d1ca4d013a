#include "app/window/Diagnostics.h"

#include "app/desktop/AppVersion.h"
#include "platform/ChildProcess.h"
#include "platform/Log.h"

#include <QCoroFuture>
#include <QGuiApplication>
#include <QLocale>
#include <QPointer>
#include <QScreen>
#include <QSysInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr int logLines = 60;

QString platformLines()
{
    QStringList screens;
    const auto connected = QGuiApplication::screens();
    for (const QScreen* screen : connected) {
        screens.append(u"%1 × %2 a %3"_s.arg(screen->size().width())
                           .arg(screen->size().height())
                           .arg(QLocale().toString(screen->devicePixelRatio())));
    }
    return u"Moltiva %1\nQt %2, %3\n%4, %5\nPantallas: %6\n"_s.arg(
        AppVersion::display(), QString::fromLatin1(qVersion()), QGuiApplication::platformName(),
        QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture(), screens.join(u", "_s));
}

QString selfTestLines(const QString& program, const std::stop_token& ending)
{
    ChildCommand command;
    command.program = program;
    command.arguments = {u"--self-test"_s};
    command.mostOutput = 64 << 10;
    command.timeout = std::chrono::seconds(60);
    const ChildOutcome outcome = ChildProcess(command).wait(ending);
    const QString printed = QString::fromUtf8(outcome.output).trimmed();
    return printed.isEmpty() ? u"No ha respondido."_s : printed;
}

}    // namespace

Diagnostics::Diagnostics(const QString& program, const QString& logFile, QObject* parent)
    : QObject(parent), m_program(program), m_logFile(logFile)
{
}

Diagnostics::~Diagnostics()
{
    m_ending.request_stop();
}

void Diagnostics::gather()
{
    if (!std::exchange(m_isGathering, true))
        gatherText();
}

QCoro::Task<> Diagnostics::gatherText()
{
    const QPointer<Diagnostics> self = this;
    const auto collect = [platform = platformLines(), program = m_program, log = m_logFile,
                          ending = m_ending.get_token()] {
        const QString text = u"%1\nAutocomprobación\n%2\n\nRegistro\n%3\n"_s.arg(
            platform, selfTestLines(program, ending), lastLogLines(log, logLines).join(u'\n'));
        return withoutPersonalData(text);
    };
    QFuture<QString> collecting = m_thread.run(collect);
    const QString text = co_await collecting;
    if (!self)
        co_return;
    m_isGathering = false;
    Q_EMIT gathered(text);
}
