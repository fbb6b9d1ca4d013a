#include "platform/ChildProcess.h"
#include "platform/SerialThread.h"
#include "tests/Processes.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Kind = ChildOutcome::Kind;

namespace {

ChildCommand shell(const QString& script)
{
    ChildCommand command;
    command.program = u"/bin/sh"_s;
    command.arguments = {u"-c"_s, script};
    command.mostOutput = 1000;
    return command;
}

// Children end quickly enough for a test.
constexpr ChildEnding hasty{30ms, 60ms};

}    // namespace

TEST(ChildProcess, EndsInOneOfTheseWays)
{
    struct Row {
        const char* label;
        QString script;
        Kind kind;
        int status;
        QByteArray output;
        std::chrono::milliseconds timeout = 1min;
    };
    const QString stubborn = u"trap '' TERM INT; while :; do sleep 0.01; done"_s;
    const Row rows[]{
        {"output", u"printf 'a\\0b'; echo hidden >&2"_s, Kind::exited, 0, QByteArray("a\0b", 3)},
        {"status", u"echo words; exit 43"_s, Kind::exited, 43, "words\n"},
        {"input is empty", u"cat; echo end"_s, Kind::exited, 0, "end\n"},
        {"signals are as usual", u"kill -PIPE $$; echo ignored"_s, Kind::crashed, SIGPIPE, ""},
        {"all of it", u"head -c 1000 /dev/zero | tr '\\0' x"_s, Kind::exited, 0,
         QByteArray(1000, 'x')},
        {"too much", u"yes"_s, Kind::tooMuchOutput, 0, ""},
        {"too much at the end", u"head -c 1001 /dev/zero"_s, Kind::tooMuchOutput, 0, ""},
        {"hangs", u"sleep 1000"_s, Kind::timedOut, 0, "", 20ms},
        {"ignores signals", stubborn, Kind::timedOut, 0, "", 20ms},
        {"stops itself", u"kill -STOP $$"_s, Kind::timedOut, 0, "", 20ms},
        {"floods, deaf", u"trap '' TERM INT PIPE; while :; do echo flood; done"_s,
         Kind::tooMuchOutput, 0, ""},
    };
    for (const Row& row : rows) {
        ChildCommand command = shell(row.script);
        command.timeout = row.timeout;
        ChildProcess child(command, {}, hasty);
        const ChildOutcome outcome = child.wait();
        EXPECT_EQ(outcome.kind, row.kind) << row.label;
        EXPECT_EQ(outcome.status, row.status) << row.label;
        EXPECT_EQ(outcome.output, row.output) << row.label;
        EXPECT_EQ(outcome.isSuccess(), row.kind == Kind::exited && row.status == 0) << row.label;
    }
    for (const auto& [program, error] :
         {std::pair{u"/nowhere/at/all"_s, ENOENT}, {u"/etc"_s, EACCES}}) {
        ChildCommand command = shell({});
        command.program = program;
        const ChildOutcome outcome = ChildProcess(command).wait();
        EXPECT_EQ(outcome.kind, Kind::notStarted);
        EXPECT_EQ(outcome.status, error);
    }
}

TEST(ChildProcess, RunsWhereAndWithWhatItIsGiven)
{
    const QTemporaryDir folder;
    ChildCommand command =
        shell(u"echo \"$(pwd) $WORD\"; echo err >&2; ls /proc/self/fd | wc -l"_s);
    command.folder = QDir(folder.path()).canonicalPath();
    command.environment.insert(u"WORD"_s, u"ñandú 'x' \"$HOME\""_s);
    // Another child, whose pipes this process holds open while `command` starts. They must not
    // be inherited by it.
    const ChildProcess other(shell(u"sleep 1000"_s), {}, hasty);
    const std::string begin = (command.folder + u" ñandú 'x' \"$HOME\"\n"_s).toStdString();
    EXPECT_EQ(ChildProcess(command).wait().output.toStdString(),
              begin + "4\n");    // with that of ls itself

    command.log = folder.filePath(u"log"_s);
    command.mostOutput = 0;
    EXPECT_EQ(ChildProcess(command).wait().output, "");
    QFile log(command.log);
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_EQ(log.readAll().toStdString(), begin + "err\n4\n");
    EXPECT_FALSE(log.permissions() & (QFile::ReadGroup | QFile::ReadOther));
}

TEST(ChildProcess, LeavesNoProcessBehind)
{
    const QTemporaryDir folder;
    const QString pids = folder.filePath(u"pids"_s);
    const QString note = u"echo $$ >> '%1'; "_s.arg(pids);
    const QString heir =
        u"sh -c 'trap \"\" TERM INT HUP; echo $$ >> \"%1\"; sleep 1000' & "_s.arg(pids);
    const QString untilBoth = u"while [ $(wc -l < '%1') -lt 2 ]; do sleep 0.01; done; "_s.arg(pids);
    struct Row {
        const char* label;
        QString end;
        Kind kind;
        std::chrono::milliseconds timeout = 1min;
    };
    for (const Row& row : {Row{"ends, its heir holds the output", u"echo done"_s, Kind::exited},
                           Row{"crashes", u"kill -KILL $$"_s, Kind::crashed},
                           Row{"hangs", u"sleep 1000"_s, Kind::stopped}}) {
        QFile::remove(pids);
        std::stop_source stop;
        QFuture<ChildOutcome> outcome;
        {
            const ChildCommand command = shell(note + heir + untilBoth + row.end);
            SerialThread thread;
            outcome =
                thread.run([&] { return ChildProcess(command, {}, hasty).wait(stop.get_token()); });
            if (row.kind == Kind::stopped) {
                EXPECT_TRUE(waitForLines(pids, 2));
                stop.request_stop();
            }
        }
        EXPECT_EQ(outcome.result().kind, row.kind) << row.label;
        for (const pid_t process : processesIn(pids))
            EXPECT_TRUE(waitUntilGone(process)) << row.label;
    }
}

TEST(ChildProcess, StopsAtOnceAndNeverGivesAnAnswerAfterIt)
{
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(ChildProcess(shell(u"echo answer"_s), {}, hasty).wait(stop.get_token()).kind,
              Kind::stopped);
    // Interrupted, it ends well with half an answer.
    const QTemporaryDir folder;
    const QString pids = folder.filePath(u"pids"_s);
    const QString script =
        u"trap 'echo half; exit 0' TERM; echo $$ > '%1'; while :; do sleep 0.01; done"_s.arg(pids);
    std::stop_source later, abandon;
    SerialThread thread;
    const auto outcome =
        thread.run([&] { return ChildProcess(shell(script), {}, hasty).wait(later.get_token()); });
    EXPECT_TRUE(waitForLines(pids, 1));
    later.request_stop();
    EXPECT_EQ(outcome.result().kind, Kind::stopped);
    EXPECT_EQ(outcome.result().output, "");

    // Abandoned, it is not given the minutes that it would have had.
    QFile::remove(pids);
    const QString deaf =
        u"trap '' TERM INT; echo $$ > '%1'; while :; do sleep 0.01; done"_s.arg(pids);
    const auto abandoned = thread.run([&] {
        return ChildProcess(shell(deaf), abandon.get_token(), {10min, 20min}).wait();
    });
    EXPECT_TRUE(waitForLines(pids, 1));
    abandon.request_stop();
    EXPECT_EQ(abandoned.result().kind, Kind::stopped);
    EXPECT_TRUE(isGone(processesIn(pids).front()));
}

TEST(ChildProcessDeathTest, EndsWithAProgramThatIsKilled)
{
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    // The program is started again for its death, so the file's name must be the same then.
    const QString pids = QDir::temp().filePath(u"moltiva-child-process-test.pids"_s);
    const auto runAndDie = [&] {
        QFile::remove(pids);
        const QString script =
            u"trap '' TERM INT HUP; echo $$ >> '%1'; sleep 1000 & echo $! >> '%1'; wait"_s.arg(
                pids);
        const ChildProcess first(shell(script)), second(shell(script));
        waitForLines(pids, 4);
        ::raise(SIGKILL);
    };
    EXPECT_EXIT(runAndDie(), ::testing::KilledBySignal(SIGKILL), "");
    const QList<pid_t> children = processesIn(pids);
    EXPECT_EQ(children.size(), 4);
    for (const pid_t child : children)
        EXPECT_TRUE(waitUntilGone(child));
    QFile::remove(pids);
}
