#include "account/ServiceRendezvous.h"
#include "service/Rendezvous.h"
#include "tests/RuntimeFolder.h"

#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

bool hasEnded(QProcess& program)
{
    return program.state() == QProcess::NotRunning || program.waitForFinished(10'000);
}

// Runs the service with a data folder and a runtime folder of the test's own. Qt creates local
// sockets in the runtime folder.
class ProgramTest : public testing::Test {
protected:
    void start(QProcess& program, const QStringList& more = {})
    {
        program.start(QStringLiteral(MOLTIVA_SERVICE), QStringList{u"--data"_s, data()} + more);
        program.waitForReadyRead(10'000);
    }
    QString data() const { return m_data.filePath(u"datos"_s); }

    QTemporaryDir m_runtime, m_data;
    const RuntimeFolder m_runtimeFolder{m_runtime.path()};
};

}    // namespace

TEST_F(ProgramTest, oneServesAFolderAndOthersFindItThere)
{
    QProcess first, second, third;
    start(first);
    const QByteArray address = first.readLine();
    ASSERT_TRUE(address.startsWith("http://127.0.0.1:")) << address.constData();
    QLocalSocket visitor;
    visitor.connectToServer(serviceSocketPath(data() + u"/../datos/"_s));
    ASSERT_TRUE(visitor.waitForReadyRead(5000));
    EXPECT_EQ(visitor.readAll(), address);

    start(second);
    EXPECT_TRUE(hasEnded(second));
    EXPECT_EQ(second.exitCode(), 3);
    EXPECT_FALSE(second.readAllStandardError().isEmpty());

    first.kill();
    first.waitForFinished();
    QFile lock(data() + u"/servicio.lock"_s);
    EXPECT_TRUE(lock.open(QIODevice::WriteOnly) && lock.write("1\nmoltiva-service\n") > 0)
        << "as an older version left it, with a number that lives again";
    start(third);
    EXPECT_EQ(third.readLine(), address) << "open pages stay of use after a crash";
    third.terminate();
    EXPECT_TRUE(hasEnded(third));
    EXPECT_EQ(third.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(third.exitCode(), 0);
    EXPECT_LE(QFile(data() + u"/servicio.sqlite-wal"_s).size(), 0) << "the log is in the file";
    EXPECT_FALSE(lock.exists());
}

TEST_F(ProgramTest, endsSoonAfterTheLastVisitorWent)
{
    QProcess program;
    start(program, {u"--until-unused"_s});
    auto one = std::make_unique<QLocalSocket>(), other = std::make_unique<QLocalSocket>();
    for (const auto& visitor : {one.get(), other.get()}) {
        visitor->connectToServer(serviceSocketPath(data()));
        ASSERT_TRUE(visitor->waitForReadyRead(5000));
    }
    one.reset();
    EXPECT_FALSE(program.waitForFinished(4000)) << "somebody is still there";
    other.reset();
    EXPECT_TRUE(hasEnded(program));
    EXPECT_EQ(program.exitCode(), 0);
}

TEST_F(ProgramTest, endsWhenNobodyEverComes)
{
    Rendezvous rendezvous(m_runtime.filePath(u"punto"_s), "x\n", {.first = 10, .after = 10});
    QSignalSpy unused(&rendezvous, &Rendezvous::unused);
    EXPECT_TRUE(unused.wait(5000));
}

TEST_F(ProgramTest, whoVanishesAtOnceIsCountedOnce)
{
    const QString path = m_runtime.filePath(u"punto"_s);
    Rendezvous rendezvous(path, "x\n", {.first = 60'000, .after = 50});
    QSignalSpy unused(&rendezvous, &Rendezvous::unused);
    const auto visit = [&](QLocalSocket& visitor) {
        visitor.connectToServer(path);
        EXPECT_TRUE(visitor.waitForConnected());
    };
    for (int round = 0; round < 2; ++round) {
        QLocalSocket held;
        visit(held);
        for (int i = 0; i < 10; ++i) {
            QLocalSocket vanishing;
            visit(vanishing);
            vanishing.abort();
            if (i % 2 == 0)
                QTest::qWait(5);
        }
        EXPECT_FALSE(unused.wait(500)) << "somebody is still there";
        held.abort();
        EXPECT_TRUE(unused.wait(5000));
        unused.clear();
    }
}

TEST_F(ProgramTest, refusesWrongUseAndFoldersItCannotUse)
{
    for (const QStringList& wrong : {QStringList{u"--port"_s, u"70000"_s},
                                     {u"--port"_s, u"x"_s},
                                     {u"más"_s},
                                     {u"--nada"_s},
                                     {u"--administrator"_s, u"a@b.es"_s},
                                     {u"--name-administrator"_s, QString()}}) {
        QProcess program;
        start(program, wrong);
        EXPECT_TRUE(hasEnded(program));
        EXPECT_EQ(program.exitCode(), 2) << qPrintable(wrong.join(u' '));
    }
    QDir().mkpath(data());
    const auto shared = QFile::permissions(data()) | QFile::ReadGroup | QFile::ExeGroup;
    QFile::setPermissions(data(), shared);
    QProcess program;
    start(program);
    program.kill();
    EXPECT_TRUE(hasEnded(program));
    EXPECT_EQ(QFile::permissions(data()), shared) << "a folder of the user's stays as it was";
}

TEST_F(ProgramTest, aLostLedgerIsToldBeforeAnotherBegins)
{
    const QString file = data() + u"/servicio.sqlite"_s;
    // Starts the service and ends it if it runs. Returns what it wrote to standard error.
    const auto startAndEnd = [&] {
        QProcess program;
        start(program);
        if (!program.readAllStandardOutput().isEmpty())
            program.terminate();
        EXPECT_TRUE(hasEnded(program));
        const QString told = QString::fromUtf8(program.readAllStandardError());
        EXPECT_EQ(program.exitCode(), told.isEmpty() ? 0 : 1);
        return told;
    };
    EXPECT_EQ(startAndEnd(), QString());
    QFile ledger(file);
    // Damages the middle of the file, but not its header.
    EXPECT_TRUE(ledger.open(QIODevice::ReadWrite) && ledger.seek(ledger.size() / 2) &&
                ledger.write(QByteArray(5000, 'x')) == 5000);
    ledger.close();
    const QString told = startAndEnd();
    const QString aside =
        QDir(data()).entryList({u"servicio.sqlite.apartada-*"_s}, QDir::Files).value(0);
    EXPECT_TRUE(!aside.isEmpty() && told.contains(u"dañada. Se ha apartado como «%1»"_s.arg(aside)))
        << qPrintable(told);
    EXPECT_EQ(startAndEnd(), QString()) << "the user knows";
    for (const bool isEmpty : {false, true}) {
        ASSERT_TRUE(QFile::remove(file));
        if (isEmpty) {
            EXPECT_TRUE(QFile(file).open(QIODevice::WriteOnly));
        }
        EXPECT_TRUE(startAndEnd().contains(u"ha desaparecido"_s));
        EXPECT_EQ(startAndEnd(), QString());
    }
    QProcess naming;
    start(naming, {u"--name-administrator"_s, u"nadie@ejemplo.es"_s});
    EXPECT_TRUE(hasEnded(naming));
    EXPECT_EQ(naming.exitCode(), 1) << "there is no such account";
}
