#include "copygen/LocalAIManager.h"

#include "platform/SystemLock.h"
#include "tests/Nobody.h"
#include "tests/copygen/LlamaTrial.h"

#include <gtest/gtest.h>

#include <QRandomGenerator>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QString failed = u"No se ha podido instalar Gemma: "_s;

class Manager : public LocalAIManager {
public:
    explicit Manager(const LlamaTrial& trial)
        : LocalAIManager(trial.profile(), nullptr, &LlamaTrial::goodMachine)
    {
    }
    void install() { QCoro::waitFor(installGemma()); }
    void uninstall() { QCoro::waitFor(uninstallGemma()); }
};

QString lockOf(const LlamaTrial& trial)
{
    return trial.installation.rootDirectory + u"/install.lock"_s;
}

// What the interface shows agrees with the disk.
void expectTruth(const Manager& manager, const LlamaTrial& trial)
{
    const LocalAIEngineStatus status = manager.gemmaStatus();
    const bool isThere = llamaModelIsInstalled(trial.installation, trial.pins);
    EXPECT_EQ(status.isInstalled, isThere && !status.isInstalling);
    EXPECT_EQ(status.isAvailable, status.isInstalled);
    EXPECT_EQ(manager.canGenerate(), status.isInstalled);
    EXPECT_EQ(status.isInstalling, manager.isInstallingGemma());
    EXPECT_EQ(status.progress, manager.installProgress());
    if (status.isInstalling || isThere)
        return;
    const qint64 stored = trial.storedBytes();
    EXPECT_EQ(status.detail,
              stored == 0
                  ? u"Runtime instalado, falta descargar el modelo. Pulsa Instalar para "
                    "continuar."_s
                  : u"Modelo incompleto: %1 descargados. Pulsa Instalar para continuar."_s.arg(
                        formatBytes(stored)));
    EXPECT_EQ(manager.canResume(),
              stored > 0 || QFile::exists(trial.installation.gemmaProgressFile()));
}

TEST(LocalAIManager, installsAndRemovesAndTellsTheTruthAtEveryChange)
{
    LlamaTrial trial;
    Manager manager(trial);
    QStringList stages;
    double last = 0;
    QObject::connect(&manager, &LocalAIManager::changed, &manager, [&] {
        expectTruth(manager, trial);
        if (!stages.contains(manager.installStage()))
            stages.append(manager.installStage());
        if (manager.installProgress()) {
            EXPECT_GE(*manager.installProgress(), last);
            last = *manager.installProgress();
        }
    });
    expectTruth(manager, trial);
    EXPECT_EQ(manager.downloadSize(), 350'000);
    manager.install();
    EXPECT_EQ(manager.installMessage(), u"Gemma 4 E2B instalado."_s);
    EXPECT_FALSE(manager.hasFailed());
    EXPECT_EQ(manager.gemmaStatus().detail, u"Instalado en este equipo. 0 créditos."_s);
    EXPECT_EQ(contentOf(trial.modelFile()), trial.server.files["model.gguf"]);
    EXPECT_EQ(trial.server.sent, 350'000);
    EXPECT_FALSE(QFile::exists(lockOf(trial)));

    manager.uninstall();
    EXPECT_EQ(manager.installMessage(), u"Gemma 4 E2B desinstalado."_s);
    EXPECT_GE(manager.freedBytes(), 350'000);
    EXPECT_FALSE(QFile::exists(trial.installation.gemmaDirectory()));
    EXPECT_FALSE(manager.canResume());
}

TEST(LocalAIManager, interruptedAtTwentyPlacesItFetchesNoByteTwice)
{
    LlamaTrial trial;
    QRandomGenerator random(7);
    qint64 stored = 0;
    for (int round = 0; round < 20; ++round) {
        // Sends this much, then nothing: all of it is stored when the installation is stopped.
        const qint64 more = 1 + random.bounded(2 * (349'000 - int(stored)) / (21 - round));
        trial.server.stopAfter(more, FileServer::Stop::holdsConnection);
        stored += more;
        auto manager = std::make_unique<Manager>(trial);
        const QCoro::Task<> task = manager->installGemma();
        ASSERT_TRUE(happens([&] { return trial.storedBytes() == stored; })) << round;
        // As cancelled, or as the end of the program.
        if (round % 2 == 0) {
            manager->cancelInstall();
            ASSERT_TRUE(happens([&] { return !manager->isInstallingGemma(); }));
            EXPECT_EQ(manager->installMessage(), u"Instalación cancelada."_s);
            EXPECT_FALSE(manager->hasFailed());
        } else {
            manager.reset();
            manager = std::make_unique<Manager>(trial);
        }
        expectTruth(*manager, trial);
        EXPECT_TRUE(manager->canResume());
        EXPECT_FALSE(manager->gemmaStatus().isInstalled);
    }
    trial.server.letGo();
    Manager manager(trial);
    manager.install();
    EXPECT_TRUE(manager.canGenerate());
    EXPECT_EQ(contentOf(trial.modelFile()), trial.server.files["model.gguf"]);
    EXPECT_EQ(trial.server.sent, 350'000);
}

TEST(LocalAIManager, aFailureIsToldAndLeavesTheTruth)
{
    struct Row {
        std::function<void(LlamaTrial&)> spoil;
        QString message;
    };
    const Row rows[] = {
        {[](LlamaTrial& trial) { trial.pins.projector.sha256 = QString(64, u'0'); },
         u"El archivo descargado no es el esperado: mmproj.gguf. Inténtalo otra vez."_s},
        {[](LlamaTrial& trial) {
             trial.server.replies["model.gguf"] = "HTTP/1.1 404 X\r\nContent-Length: 0\r\n\r\n";
         },
         u"El servidor de descargas ha respondido 404."_s},
        {[](LlamaTrial& trial) { writeFile(trial.pins.program, "#!/bin/sh\nexit 1\n", true); },
         u"El motor configurado no arranca: "_s},
    };
    for (const Row& row : rows) {
        LlamaTrial trial;
        row.spoil(trial);
        Manager manager(trial);
        manager.install();
        EXPECT_TRUE(manager.hasFailed());
        EXPECT_TRUE(manager.installMessage().startsWith(failed + row.message))
            << qPrintable(manager.installMessage());
        EXPECT_TRUE(manager.installMessage().contains(u"\n\nLog: "_s));
        QFile::remove(manager.installMessage().section(u"Log: "_s, 1));
        EXPECT_TRUE(manager.canResume());
        EXPECT_FALSE(manager.canGenerate());
    }
}

TEST(LocalAIManager, anInstallerThatIsKilledNamesTheSignal)
{
    const LlamaTrial trial;
    EngineProfile profile = trial.profile();
    profile.installScript = [] { return u"echo x; kill -KILL $$"_s; };
    LocalAIManager manager(profile, nullptr, &LlamaTrial::goodMachine);
    QCoro::waitFor(manager.installGemma());
    EXPECT_TRUE(manager.hasFailed());
    EXPECT_FALSE(manager.isInstallingGemma());
    EXPECT_TRUE(manager.installMessage().startsWith(
        failed + u"El instalador se ha interrumpido (señal 9).\n\nLog: "_s))
        << qPrintable(manager.installMessage());
    QFile::remove(manager.installMessage().section(u"Log: "_s, 1));
}

TEST(LocalAIManager, aFolderThatIsRemovedMeanwhileTakesNoOtherWithIt)
{
    LlamaTrial trial;
    writeFile(trial.modelFile(), "half");
    Manager manager(trial);
    QObject::connect(&manager, &LocalAIManager::changed, &manager, [&] {
        if (manager.isUninstalling())
            QDir(trial.installation.gemmaDirectory()).removeRecursively();
    });
    const QTemporaryDir current;
    const QString other = current.filePath(u"other"_s);
    writeFile(other, "stays");
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(current.path()));
    manager.uninstall();
    QDir::setCurrent(before);
    EXPECT_EQ(contentOf(other), "stays");
    EXPECT_EQ(manager.installMessage(), u"Gemma 4 E2B desinstalado."_s);
    EXPECT_FALSE(manager.hasFailed());
    EXPECT_EQ(manager.freedBytes(), 0);
}

TEST(LocalAIManager, onlyThePinnedFilesCountAsDownloaded)
{
    LlamaTrial trial;
    writeFile(trial.installation.gemmaModelDirectory() + u"/older.gguf"_s,
              QByteArray(400'000, 'x'));
    Manager manager(trial);
    EXPECT_EQ(manager.gemmaStatus().detail,
              u"Runtime instalado, falta descargar el modelo. Pulsa Instalar para continuar."_s);
    EXPECT_FALSE(manager.canResume());
    EXPECT_GE(manager.installedSize().result(), 400'000);    // all of it goes
    writeFile(trial.modelFile() + u".part"_s, "half");
    manager.refresh();
    EXPECT_EQ(manager.gemmaStatus().detail,
              u"Modelo incompleto: 0 MB descargados. Pulsa Instalar para continuar."_s);
    EXPECT_TRUE(manager.canResume());
}

TEST(LocalAIManager, aMachineThatCannotDoItDownloadsNothing)
{
    LlamaTrial trial;
    LocalAIManager manager(trial.profile(), nullptr, [](const QString&) {
        return Machine{.processor = u"x86_64"_s, .memory = 4'000'000'000};
    });
    QCoro::waitFor(manager.installGemma());
    EXPECT_EQ(manager.installMessage(),
              failed + u"Este equipo tiene 4 GB de memoria; Gemma 4 E2B necesita 8 GB."_s);
    EXPECT_TRUE(manager.hasFailed());
    EXPECT_EQ(trial.server.requests, 0);
}

TEST(LocalAIManager, whatIsMissingIsNamed)
{
    LlamaTrial trial;
    const QString program = std::exchange(trial.pins.program, u"/nowhere/llama-mtmd-cli"_s);
    const auto detail = [&] { return Manager(trial).gemmaStatus().detail; };
    EXPECT_EQ(detail(), u"No instalado. Descarga el motor local antes de usarlo."_s);
    writeFile(trial.modelFile(), trial.server.files["model.gguf"]);
    const QString projector = trial.installation.gemmaModelDirectory() + u"/mmproj.gguf"_s;
    writeFile(projector, trial.server.files["mmproj.gguf"]);
    EXPECT_EQ(detail(), u"Falta el motor llama.cpp. Instala el paquete llama.cpp-tools-extra o "
                        "pulsa Instalar para descargarlo."_s);
    trial.pins.program = program;
    EXPECT_EQ(detail(), u"Instalado en este equipo. 0 créditos."_s);
    writeFile(projector, QByteArray(60'000, 'x'));
    EXPECT_EQ(detail(), u"El motor local está incompleto. Pulsa Instalar para repararlo."_s);
    Manager manager(trial);
    manager.install();
    EXPECT_TRUE(manager.canGenerate());
}

TEST(LocalAIManager, aSecondOneShowsTheInstallationOfTheFirst)
{
    LlamaTrial trial;
    trial.server.stopAfter(200'000, FileServer::Stop::holdsConnection);
    auto first = std::make_unique<Manager>(trial);
    Manager second(trial);
    const QCoro::Task<> task = first->installGemma();
    ASSERT_TRUE(happens([&] { return second.installDownloadedBytes() == 200'000; }));
    EXPECT_TRUE(second.isInstallingElsewhere());
    EXPECT_TRUE(second.gemmaStatus().isInstalling);
    EXPECT_EQ(second.installStage(), u"Descargando Gemma"_s);
    EXPECT_NEAR(*second.installProgress(), 0.62, 0.001);
    EXPECT_EQ(second.gemmaStatus().detail, second.installMessage());

    EXPECT_EQ(Manager(trial).installMessage(), u"Descargando Gemma... 0 MB de 0 MB"_s);
    // Neither starts one of its own, nor ends or removes the other's.
    const int requests = trial.server.requests;
    second.install();
    second.cancelInstall();
    second.uninstall();
    EXPECT_TRUE(first->isInstallingGemma());
    EXPECT_EQ(trial.server.requests, requests);

    first.reset();
    ASSERT_TRUE(happens([&] { return !second.isInstallingGemma(); }));
    expectTruth(second, trial);
    EXPECT_TRUE(second.canResume());
    trial.server.letGo();
    second.install();
    EXPECT_TRUE(second.canGenerate());
    EXPECT_EQ(trial.server.sent, 350'000);
}

TEST(LocalAIManager, whatADeadOrStrangeInstallerLeftLocksNobodyOut)
{
    LlamaTrial trial;
    QDir().mkpath(trial.installation.rootDirectory);
    writeFile(lockOf(trial), {});
    writeFile(trial.installation.gemmaProgressFile(),
              R"({"stage":"Descargando Gemma","fraction":0.14,"totalBytes":350000})");
    Manager manager(trial);
    EXPECT_FALSE(manager.isInstallingGemma());
    EXPECT_TRUE(manager.canResume());

    // A file of another user, which cannot be opened.
    writeFile(lockOf(trial), {});
    if (canBeNobody()) {
        ASSERT_EQ(::chown(QFile::encodeName(lockOf(trial)).constData(), 65534, 65534), 0);
    }
    ASSERT_EQ(::chmod(QFile::encodeName(lockOf(trial)).constData(), 0), 0);
    manager.install();
    EXPECT_TRUE(manager.canGenerate());
}

TEST(LocalAIManager, aFolderThatCannotBeMadeIsTold)
{
    LlamaTrial trial;
    writeFile(trial.installation.rootDirectory, "a file in its place");
    Manager manager(trial);
    manager.install();
    EXPECT_EQ(manager.installMessage(), failed + u"no se ha podido crear la carpeta «%1»."_s.arg(
                                                     trial.installation.rootDirectory));
    EXPECT_EQ(trial.server.requests, 0);
}

TEST(LocalAIManager, anEngineThatRunsAlreadyNeedsNothing)
{
    CopyEndpoint endpoint;
    endpoint.url = QUrl(u"http://127.0.0.1:8080/v1"_s);
    LocalAIManager manager(configuredProfile(endpoint));
    EXPECT_TRUE(manager.canGenerate());
    EXPECT_EQ(manager.gemmaStatus().detail, u"En 127.0.0.1:8080. 0 créditos."_s);
    QCoro::waitFor(manager.installGemma());
    EXPECT_FALSE(manager.canResume());

    endpoint.problem = u"La dirección no sirve."_s;
    const LocalAIManager unusable(configuredProfile(endpoint));
    EXPECT_FALSE(unusable.canGenerate());
    EXPECT_EQ(unusable.gemmaStatus().detail, endpoint.problem);
}

}    // namespace
