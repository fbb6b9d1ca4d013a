#include "copygen/InstallScripts.h"

#include "tests/copygen/LlamaTrial.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

const QString hostile = u"a\"b'c $HOME `touch x` $(touch y) \\ \n; touch z; é: -rf *"_s;
const QString python = u"/usr/bin/python3"_s;

struct Ended {
    int status = 0;
    QByteArray output;
};

Ended runProgram(const QString& program, const QStringList& arguments, const QByteArray& input = {})
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(-1);
    return {process.exitCode(), process.readAll()};
}

// The event loop goes on meanwhile, for a server in this process.
Ended runScript(const QString& script)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(u"/bin/bash"_s, {u"-lc"_s, script});
    happens([&] { return process.state() == QProcess::NotRunning; });
    return {process.exitCode(), process.readAll()};
}

QStringList entriesBelow(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

TEST(InstallScripts, shellcheckFindsNothing)
{
    const QString shellcheck = QStandardPaths::findExecutable(u"shellcheck"_s);
    if (shellcheck.isEmpty())
        GTEST_SKIP() << "shellcheck is missing";
    const LlamaTrial trial(hostile);
    for (const QString& script : {mlxInstallScript(trial.installation),
                                  llamaInstallScript(trial.installation, trial.pins)}) {
        const Ended checked = runProgram(shellcheck, {u"-s"_s, u"bash"_s, u"-"_s}, script.toUtf8());
        EXPECT_EQ(checked.status, 0) << checked.output.constData();
    }
}

TEST(InstallScripts, quotedTextsStayTexts)
{
    for (const QString& text :
         {hostile, u""_s, u"\\"_s, u"\""_s, u"!!"_s, u"$"_s, u"\\$x\\"_s, u"${PATH}"_s}) {
        const Ended echoed =
            runProgram(u"/bin/bash"_s, {u"-c"_s, u"printf %s "_s + shellQuoted(text)});
        EXPECT_EQ(QString::fromUtf8(echoed.output), text);
    }
}

TEST(InstallScripts, hostilePathsStayPaths)
{
    LlamaTrial trial(hostile);
    const QString program = trial.home.filePath(hostile + u".sh"_s);
    ASSERT_TRUE(QFile::copy(trial.pins.program, program));
    trial.pins.program = program;
    const QStringList before = entriesBelow(QDir::currentPath()),
                      home = entriesBelow(QDir::homePath());
    const Ended ended = runScript(trial.profile().installScript());
    EXPECT_EQ(ended.status, 0) << ended.output.constData();
    EXPECT_TRUE(trial.profile().isInstalled());
    EXPECT_EQ(contentOf(trial.modelFile()), trial.server.files["model.gguf"]);
    EXPECT_EQ(entriesBelow(QDir::currentPath()), before);
    EXPECT_EQ(entriesBelow(QDir::homePath()), home);
    EXPECT_EQ(entriesBelow(trial.installation.gemmaDirectory()),
              (QStringList{u"install-progress.json"_s, u"model"_s}));
    EXPECT_EQ(contentOf(trial.installation.gemmaProgressFile()),
              "{\"stage\":\"Finalizando instalación\",\"fraction\":0.98,\"totalBytes\":350000}\n");
}

// An archive as the project publishes them: a folder with the programs in it.
QByteArray engineArchive(const QByteArray& program)
{
    const QTemporaryDir folder;
    writeFile(folder.filePath(u"llama-b1/llama-mtmd-cli"_s), program, true);
    writeFile(folder.filePath(u"llama-b1/libllama.so"_s), "library");
    const QString archive = folder.filePath(u"engine.tar.gz"_s);
    runProgram(u"tar"_s, {u"-czf"_s, archive, u"-C"_s, folder.path(), u"llama-b1"_s});
    return contentOf(archive);
}

TEST(InstallScripts, aMissingEngineIsFetchedOrNamed)
{
    struct Row {
        QByteArray archive;    // empty: none is pinned
        int status;
        QByteArray output;
    };
    const Row rows[] = {
        {engineArchive("#!/bin/sh\n[ \"$*\" = --version ]\n"), 0, ""},
        {engineArchive("#!/bin/sh\nexit 1\n"), installLacksEngine, "no arranca en este equipo"},
        {"no archive", installLacksRoom,
         "\nNo se ha podido desempaquetar el motor local. Comprueba el espacio libre.\n"},
        {"", installLacksEngine,
         "Falta el motor llama.cpp. Instala el paquete llama.cpp-tools-extra.\n"},
    };
    for (const Row& row : rows) {
        LlamaTrial trial(u"with: colon"_s);
        trial.pins.program.clear();
        if (!row.archive.isEmpty()) {
            trial.server.files["engine.tar.gz"] = row.archive;
            trial.pins.engine = pinOf(trial.server, "engine.tar.gz");
            // What an interrupted installation left.
            writeFile(trial.installation.engineDirectory() + u".new/half"_s, "half");
            writeFile(trial.installation.engineDirectory() + u"/llama-mtmd-cli"_s,
                      "#!/bin/sh\nexit 1\n", true);
        }
        const Ended ended = runScript(trial.profile().installScript());
        EXPECT_EQ(ended.status, row.status) << ended.output.constData();
        EXPECT_TRUE(ended.output.contains(row.output)) << ended.output.constData();
        EXPECT_EQ(trial.profile().isInstalled(), row.status == 0);
        if (row.status == 0) {
            EXPECT_EQ(entriesBelow(trial.installation.engineDirectory()),
                      (QStringList{u"libllama.so"_s, u"llama-mtmd-cli"_s}));
            EXPECT_EQ(entriesBelow(trial.installation.gemmaDirectory()),
                      (QStringList{u"engine"_s, u"install-progress.json"_s, u"model"_s}));
        }
    }
}

TEST(InstallScripts, theEngineInThePathOfTheStudioIsEnough)
{
    LlamaTrial trial;
    trial.pins.program.clear();
    const QString archive = trial.installation.gemmaDirectory() + u"/engine.tar.gz"_s;
    writeFile(archive, "left by an interrupted installation");
    writeFile(archive + u".part"_s, "half");
    writeFile(trial.installation.engineDirectory() + u".new/half"_s, "half");
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(trial.home.path()) + ':' + path);
    const QString script = trial.profile().installScript();
    qputenv("PATH", path);    // the shell has another one
    const Ended ended = runScript(script);
    EXPECT_EQ(ended.status, 0) << ended.output.constData();
    EXPECT_TRUE(trial.profile().isModelInstalled());
    EXPECT_EQ(entriesBelow(trial.installation.gemmaDirectory()),
              (QStringList{u"install-progress.json"_s, u"model"_s}));
}

TEST(InstallScripts, aFullDiskAndAWrongDigestHaveTheirStatus)
{
    LlamaTrial trial;
    trial.pins.model.sha256 = QString(64, u'0');
    EXPECT_EQ(runScript(trial.profile().installScript()).status, installWrongFile);
    EXPECT_FALSE(trial.profile().isModelInstalled());

    const QStringList mount{u"-t"_s,        u"tmpfs"_s, u"-o"_s,
                            u"size=128k"_s, u"tmpfs"_s, trial.installation.gemmaModelDirectory()};
    if (runProgram(u"mount"_s, mount).status != 0)
        GTEST_SKIP() << "cannot mount a small disk";
    const Ended ended = runScript(trial.profile().installScript());
    runProgram(u"umount"_s, {trial.installation.gemmaModelDirectory()});
    EXPECT_EQ(ended.status, installLacksRoom);
    EXPECT_EQ(ended.output, "No queda espacio en el disco.");
}

// Python on a Mac with Apple silicon, as far as the installer sees it: the real interpreter with a
// folder of packages of its own. Its log has a line for each run of pip and venv.
struct FakeMac {
    FakeMac()
    {
        writeFile(path(u"python"_s), R"(#!/bin/bash
if [ "$1" != -m ]; then
    PYTHONPATH="$MOLTIVA_TEST_MAC/site" exec /usr/bin/python3 "$@"
fi
printf '%s\n' "${*//$MOLTIVA_TEST_MAC/MAC}" >> "$MOLTIVA_TEST_MAC/log"
if [ "$2" = venv ]; then
    mkdir -p "$3/bin"
    cp "$0" "$3/bin/python3"
fi
)",
                  true);
        writeFile(path(u"site/sitecustomize.py"_s), R"(import os, platform, site
platform.machine = lambda: "arm64"
site.getsitepackages = lambda: [os.environ["MOLTIVA_TEST_MAC"] + "/site"]
)");
        writeFile(path(u"site/huggingface_hub.py"_s), R"(import os, pathlib
class File:
    size = 3000000001
class Information:
    siblings = [File, File]
class HfApi:
    def model_info(self, repository, files_metadata, token):
        assert (repository, files_metadata, token) == ("mlx-community/gemma-4-e2b-it-4bit", True, False)
        return Information
def snapshot_download(repository, local_dir, token):
    assert repository == "mlx-community/gemma-4-e2b-it-4bit" and token is False
    assert "HF_HUB_OFFLINE" not in os.environ and "TRANSFORMERS_OFFLINE" not in os.environ
    assert os.environ["HF_HOME"].endswith("/huggingface-cache")
    assert os.environ["HF_HUB_DISABLE_PROGRESS_BARS"] == os.environ["HF_HUB_DISABLE_TELEMETRY"] == "1"
    folder = pathlib.Path(local_dir)
    assert not list(folder.rglob("*.incomplete"))
    (folder / "config.json").write_text("{}")
    with open(folder / "model.safetensors", "wb") as file:
        file.truncate(File.size)
)");
        writeFile(path(u"site/mlx_vlm/__init__.py"_s), "");
        writeFile(path(u"site/mlx_vlm/utils.py"_s),
                  "    model.load_weights(list(weights.items()), strict=strict)\n");
        writeFile(path(u"site/mlx_vlm/generate/dispatch.py"_s), dispatch);
        qputenv("MOLTIVA_TEST_MAC", QFile::encodeName(home.path()));
        qputenv("HF_HUB_OFFLINE", "1");
        qputenv("TRANSFORMERS_OFFLINE", "1");
    }
    ~FakeMac()
    {
        for (const char* name : {"MOLTIVA_TEST_MAC", "HF_HUB_OFFLINE", "TRANSFORMERS_OFFLINE"})
            qunsetenv(name);
    }
    QString path(const QString& name) const { return home.filePath(name); }
    QStringList log() const
    {
        return QString::fromUtf8(contentOf(path(u"log"_s))).split(u'\n', Qt::SkipEmptyParts);
    }
    Ended install() const
    {
        return runScript(mlxInstallScript(
            installation, {u"/nowhere/python3"_s, u"/usr/bin/false"_s, path(u"python"_s)}));
    }

    static constexpr const char* dispatch =
        "    model, processor = load(\n        args.model,\n"
        "        quantize_activations=args.quantize_activations,\n    )\n";

    QTemporaryDir home;
    LocalAIInstallation installation{home.filePath(u"Application Support/"_s + hostile)};
};

TEST(InstallScripts, macInstallsTheEnvironmentAndTheModel)
{
    if (!QFile::exists(python))
        GTEST_SKIP() << "python3 is missing";
    const FakeMac mac;
    const LocalAIInstallation& installation = mac.installation;
    const QString left =
        installation.gemmaModelDirectory() + u"/.cache/huggingface/download/x.incomplete"_s;
    writeFile(left, "half");
    const Ended ended = mac.install();
    EXPECT_EQ(ended.status, 0) << ended.output.constData();
    EXPECT_TRUE(installation.gemmaIsInstalled());
    EXPECT_FALSE(QFile::exists(left));
    const QStringList pip{
        u"-m pip install --upgrade pip setuptools wheel"_s,
        u"-m pip install --upgrade mlx-vlm>=0.4.3 huggingface_hub[hf_xet] pillow torch torchvision"_s,
        u"-m pip install --upgrade transformers>=5.13 huggingface_hub[hf_xet]>=1.0"_s};
    const QStringList log = mac.log();
    EXPECT_TRUE(log.value(0).startsWith(u"-m venv MAC/"_s));
    EXPECT_EQ(log.last(pip.size()), pip);
    EXPECT_EQ(contentOf(installation.gemmaProgressFile()),
              "{\"stage\": \"Finalizando instalación\", \"fraction\": 0.98, \"totalBytes\": "
              "6000000002}\n");
    EXPECT_TRUE(contentOf(mac.path(u"site/mlx_vlm/generate/dispatch.py"_s))
                    .contains("activations,\n        strict=False,\n    )\n"));

    // The second time keeps the environment; one that another processor made goes.
    QFile::remove(mac.path(u"log"_s));
    EXPECT_EQ(mac.install().status, 0);
    EXPECT_EQ(mac.log(), QStringList(u"-m pip --version"_s) + pip);
    writeFile(installation.gemmaPythonExecutable(), "#!/bin/sh\nexit 1\n", true);
    QFile::remove(mac.path(u"log"_s));
    EXPECT_EQ(mac.install().status, 0);
    EXPECT_TRUE(mac.log().value(0).startsWith(u"-m venv MAC/"_s));

    // A package that cannot be imported is no installed engine.
    writeFile(mac.path(u"site/mlx_vlm/__init__.py"_s), "raise ImportError('no Metal')\n");
    const Ended broken = mac.install();
    EXPECT_EQ(broken.status, 1);
    EXPECT_TRUE(broken.output.endsWith("El motor local se ha instalado, pero no arranca.\n"));
}

TEST(InstallScripts, macWithoutPythonEndsWithItsStatus)
{
    const LlamaTrial trial;
    const Ended ended =
        runScript(mlxInstallScript(trial.installation, {u"/nowhere"_s, u"/usr/bin/false"_s}));
    EXPECT_EQ(ended.status, installLacksPython);
    EXPECT_EQ(ended.output, "Gemma necesita Python 3.10 o superior en arm64 para instalar MLX.\n");
    EXPECT_EQ(contentOf(trial.installation.gemmaProgressFile()),
              "{\"stage\":\"Preparando entorno local\",\"fraction\":0.04,\"totalBytes\":0}\n");
}

// The packages of one release, as far as the patches see them, before and after.
struct PackageTree {
    const char* name;
    QHash<QString, QByteArray> before, after;    // by file
    QByteArray failure;
};

const QByteArray guardedBegin = "try:\n    ", guardedEnd = "except AttributeError:\n    pass\n";
const QByteArray oldName =
    "AutoTokenizer.register(\"NewlineTokenizer\", fast_tokenizer_class=NewlineTokenizer)\n";
const QByteArray newName =
    "AutoTokenizer.register(NewlineTokenizer, fast_tokenizer_class=NewlineTokenizer)\n";
const QByteArray load = "    model.load_weights(list(weights.items()))\n";
const QByteArray loadAdjusted =
    "    model.load_weights(list(weights.items()), strict=kwargs.get(\"strict\", True))\n";
const QByteArray loadUpstream = "    model.load_weights(list(weights.items()), strict=strict)\n";
const QByteArray dispatchBefore = FakeMac::dispatch;
const QByteArray dispatchAfter =
    QByteArray(FakeMac::dispatch)
        .replace("activations,\n", "activations,\n        strict=False,\n");
const QString tokenizer = u"mlx_lm/tokenizer_utils.py"_s, utils = u"mlx_vlm/utils.py"_s,
              dispatcher = u"mlx_vlm/generate/dispatch.py"_s;

TEST(InstallScripts, thePatchesFitOldAndNewPackages)
{
    if (!QFile::exists(python))
        GTEST_SKIP() << "python3 is missing";
    const PackageTree trees[] = {
        {"old lines, of which the first is replaced",
         {{tokenizer, "import a\n" + oldName + oldName},
          {utils, "def f():\n  " + load + load + load},
          {dispatcher, dispatchBefore + dispatchBefore}},
         {{tokenizer, "import a\n" + guardedBegin + oldName + guardedEnd + oldName},
          {utils, "def f():\n  " + load + loadAdjusted + load},
          {dispatcher, dispatchAfter + dispatchBefore}},
         ""},
        {"newer mlx_lm",
         {{tokenizer, newName}, {utils, loadUpstream}, {dispatcher, dispatchBefore}},
         {{tokenizer, guardedBegin + newName + guardedEnd},
          {utils, loadUpstream},
          {dispatcher, dispatchAfter}},
         ""},
        {"current lines without mlx_lm",
         {{utils, loadUpstream}, {dispatcher, dispatchBefore}},
         {{utils, loadUpstream}, {dispatcher, dispatchAfter}},
         ""},
        {"unknown lines",
         {{utils, "    model.load_weights(weights)\n"}, {dispatcher, dispatchBefore}},
         {{utils, "    model.load_weights(weights)\n"}, {dispatcher, dispatchBefore}},
         "No se ha podido ajustar utils.py.\n"},
        {"a part of a line",
         {{utils, loadUpstream}, {dispatcher, "    " + dispatchBefore.trimmed() + ", x)\n"}},
         {{utils, loadUpstream}, {dispatcher, "    " + dispatchBefore.trimmed() + ", x)\n"}},
         "No se ha podido ajustar dispatch.py.\n"},
        {"no dispatcher",
         {{utils, loadUpstream}},
         {{utils, loadUpstream}},
         "No se ha podido ajustar dispatch.py.\n"},
    };
    const QString script = QString::fromUtf8(contentOf(u":/copygen/install/patch_runtime.py"_s));
    for (const PackageTree& tree : trees) {
        const QTemporaryDir site;
        for (const auto& [name, text] : tree.before.asKeyValueRange())
            writeFile(site.filePath(name), text);
        for (int time = 0; time < 2; ++time) {    // the second time changes nothing more
            const Ended ended = runProgram(python, {u"-c"_s, script, site.path()});
            EXPECT_EQ(ended.status, tree.failure.isEmpty() ? 0 : 1) << tree.name;
            EXPECT_EQ(ended.output, tree.failure) << tree.name;
            for (const auto& [name, text] : tree.after.asKeyValueRange())
                EXPECT_EQ(contentOf(site.filePath(name)), text) << tree.name << qPrintable(name);
        }
    }
}

}    // namespace
