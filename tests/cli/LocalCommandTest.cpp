#include "copygen/InstallChecks.h"
#include "tests/copygen/Installing.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <csignal>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Runs the program in a home folder of its own, with two small files as the model.
class LocalCommandTest : public ::testing::Test {
protected:
    struct Outcome {
        int status = -1;
        QByteArray out, err;
        QJsonObject object() const { return QJsonDocument::fromJson(out).object(); }
    };

    void SetUp() override
    {
        if (!whyNotInstallable(Machine::thisOne(m_home.path()), 0).isEmpty())
            GTEST_SKIP() << "this machine cannot install the engine";
        m_server.files = {{"model.gguf", someBytes(300'000, "model")},
                          {"mmproj.gguf", someBytes(50'000, "projector")}};
        writeFile(m_home.filePath(u"llama-mtmd-cli"_s), "#!/bin/sh\nexit 0\n", true);
        QByteArray configuration =
            "[localEngine]\nprogram=" + m_home.filePath(u"llama-mtmd-cli"_s).toUtf8() + '\n';
        const std::pair<QByteArray, QByteArray> files[] = {{"model", "model.gguf"},
                                                           {"projector", "mmproj.gguf"}};
        for (const auto& [key, name] : files) {
            const PinnedFile pin = pinOf(m_server, name);
            configuration += key + "Url=" + pin.url.toUtf8() + '\n' + key +
                             "Bytes=" + QByteArray::number(pin.bytes) + '\n' + key +
                             "Sha256=" + pin.sha256.toUtf8() + '\n';
        }
        writeFile(m_home.filePath(u"config/moltiva/moltiva.conf"_s), configuration);
    }

    std::unique_ptr<QProcess> started(const QStringList& arguments)
    {
        auto process = std::make_unique<QProcess>();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const QString& name : {u"data"_s, u"cache"_s, u"config"_s}) {
            environment.insert(u"XDG_%1_HOME"_s.arg(name.toUpper()), m_home.filePath(name));
        }
        // As in the tests of other commands: Qt's threads may be ending.
        environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s);
        process->setProcessEnvironment(environment);
        process->start(QStringLiteral(MOLTIVA_PROGRAM), QStringList(u"local"_s) + arguments);
        return process;
    }
    static Outcome ended(QProcess& process)
    {
        EXPECT_TRUE(happens([&] { return process.state() == QProcess::NotRunning; }));
        return {process.exitCode(), process.readAllStandardOutput(),
                process.readAllStandardError()};
    }
    Outcome run(const QStringList& arguments) { return ended(*started(arguments)); }

    QTemporaryDir m_home;
    FileServer m_server;
};

TEST_F(LocalCommandTest, aStoppedInstallationGoesOnAndIsRemovedAgain)
{
    EXPECT_EQ(run({u"status"_s}).status, 1);
    m_server.stopAfter(200'000, FileServer::Stop::holdsConnection);
    const auto first = started({u"install"_s});
    const auto stored = [&] {
        return run({u"status"_s, u"--json"_s}).object()[u"storedBytes"_s].toInt();
    };
    ASSERT_TRUE(happens([&] { return m_server.sent == 200'000 && stored() > 200'000; }));
    const Outcome meanwhile = run({u"status"_s, u"--json"_s});
    EXPECT_TRUE(meanwhile.object()[u"isInstalling"_s].toBool());
    EXPECT_EQ(meanwhile.object()[u"detail"_s].toString(), u"Descargando Gemma... 0 MB de 0 MB"_s);
    EXPECT_EQ(run({u"uninstall"_s}).err, "moltiva local: Espera a que termine la instalación.\n");

    ::kill(pid_t(first->processId()), SIGINT);
    const Outcome stopped = ended(*first);
    EXPECT_EQ(stopped.status, 130);
    EXPECT_EQ(stopped.out, "");
    EXPECT_TRUE(stopped.err.endsWith("moltiva local: Instalación cancelada. «moltiva local "
                                     "install» sigue donde se quedó.\n"))
        << stopped.err.constData();
    EXPECT_TRUE(run({u"status"_s, u"--json"_s}).object()[u"canResume"_s].toBool());

    m_server.letGo();
    const Outcome installed = run({u"install"_s});
    EXPECT_EQ(installed.status, 0);
    EXPECT_EQ(installed.out, "Instalado en este equipo. 0 créditos.\n");
    EXPECT_TRUE(installed.err.contains("Licencia: https://"));
    EXPECT_EQ(m_server.sent, 350'000);
    EXPECT_EQ(run({u"status"_s}).status, 0);

    const Outcome removed = run({u"uninstall"_s, u"--json"_s});
    EXPECT_EQ(removed.status, 0);
    EXPECT_GT(removed.object()[u"freedBytes"_s].toInt(), 350'000);
    EXPECT_FALSE(removed.object()[u"isInstalled"_s].toBool());
    EXPECT_FALSE(QFile::exists(m_home.filePath(u"data/Moltiva/LocalAI/gemma-4-e2b"_s)));
}

TEST_F(LocalCommandTest, aConfiguredEngineIsNeitherInstalledNorRemoved)
{
    const QByteArray nothingToRemove =
        "moltiva local: El modelo está configurado en otro programa; "
        "aquí no hay nada que desinstalar.\n";
    qputenv("MOLTIVA_LOCAL_COPY_URL", "http://127.0.0.1:8080/v1");
    const Outcome ready = run({u"install"_s}), removed = run({u"uninstall"_s});
    qputenv("MOLTIVA_LOCAL_COPY_URL", "http://192.0.2.1:8080/v1");
    const Outcome unusable = run({u"install"_s});
    qunsetenv("MOLTIVA_LOCAL_COPY_URL");
    EXPECT_EQ(ready.status, 0);
    EXPECT_EQ(ready.out, "En 127.0.0.1:8080. 0 créditos. No hay nada que instalar.\n");
    EXPECT_EQ(ready.err, "");
    EXPECT_EQ(removed.status, 1);
    EXPECT_EQ(removed.out, "");
    EXPECT_EQ(removed.err, nothingToRemove);
    EXPECT_EQ(unusable.status, 1);
    EXPECT_EQ(unusable.out, "");
    EXPECT_TRUE(
        unusable.err.startsWith("moltiva local: La dirección de MOLTIVA_LOCAL_COPY_URL no sirve: "))
        << unusable.err.constData();
    EXPECT_EQ(m_server.requests, 0);
}

TEST_F(LocalCommandTest, aFailureIsToldWithItsCause)
{
    m_server.replies["mmproj.gguf"] = "HTTP/1.1 404 X\r\nContent-Length: 0\r\n\r\n";
    const Outcome failed = run({u"install"_s, u"--json"_s});
    EXPECT_EQ(failed.status, 1);
    const QString error = failed.object()[u"error"_s].toString();
    EXPECT_TRUE(error.startsWith(u"No se ha podido instalar Gemma: El servidor de descargas ha "
                                 "respondido 404."_s))
        << qPrintable(error);
    QFile::remove(error.section(u"Log: "_s, 1));

    for (const QStringList& wrong :
         {QStringList{}, QStringList{u"instal"_s}, QStringList{u"status"_s, u"x"_s},
          QStringList{u"status"_s, u"--x"_s}, QStringList{u"fetch"_s, u"x"_s}})
        EXPECT_EQ(run(wrong).status, 2);
}

}    // namespace
