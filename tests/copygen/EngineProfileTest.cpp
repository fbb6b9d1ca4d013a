#include "copygen/EngineProfile.h"

#include "copygen/MlxRuntime.h"
#include "tests/copygen/Installing.h"
#include "tests/copygen/StandInEngine.h"

#include <QSettings>

using namespace Qt::StringLiterals;

namespace {

void writeProgram(const QString& path)
{
    writeFile(path, "#!/bin/sh\n", true);
}

}    // namespace

TEST(LocalAIInstallation, KnowsAWholeModelOfMlx)
{
    struct Row {
        const char* label;
        QByteArray index;
        qint64 single = -1;    // bytes of model.safetensors
        bool isWhole = false;
        bool hasConfig = true;
    };
    const QByteArray shards = R"({"weight_map": {"a": "one", "b": "two", "c": "one"}})";
    for (const Row& row : {
             Row{"nothing", ""},
             Row{"one file, just too small", "", 3'000'000'000},
             Row{"one file", "", 3'000'000'001, true},
             Row{"no config", "", 3'000'000'001, false, false},
             Row{"small file of an index", R"({"weight_map": {"a": "model.safetensors"}})", 7,
                 true},
             Row{"shards", shards, -1, true},
             Row{"empty shard", R"({"weight_map": {"a": "one", "b": "empty"}})"},
             Row{"missing shard", R"({"weight_map": {"a": "one", "b": "three"}})"},
             Row{"folder", R"({"weight_map": {"a": "folder"}})"},
             Row{"empty map", R"({"weight_map": {}})"},
             Row{"a number", R"({"weight_map": {"a": 1, "b": "one"}})"},
             Row{"no map", R"({"weight_map": ["one"]})"},
             Row{"no JSON", R"({"weight_map)"},
         }) {
        const QTemporaryDir folder;
        const LocalAIInstallation installation{folder.path()};
        const QDir model(installation.gemmaModelDirectory());
        ASSERT_TRUE(QDir().mkpath(model.filePath(u"folder"_s)));
        if (row.hasConfig)
            writeFile(model.filePath(u"config.json"_s), "{}");
        if (row.single >= 0) {
            writeFile(model.filePath(u"model.safetensors"_s), "");
            EXPECT_TRUE(QFile::resize(model.filePath(u"model.safetensors"_s), row.single));
        }
        if (!row.index.isEmpty())
            writeFile(model.filePath(u"model.safetensors.index.json"_s), row.index);
        writeFile(model.filePath(u"one"_s), "1");
        writeFile(model.filePath(u"two"_s), "2");
        writeFile(model.filePath(u"empty"_s), "");
        EXPECT_EQ(installation.gemmaModelIsInstalled(), row.isWhole) << row.label;
        EXPECT_EQ(installation.gemmaModelReference(),
                  row.isWhole ? model.path() : u"mlx-community/gemma-4-e2b-it-4bit"_s)
            << row.label;
        EXPECT_FALSE(installation.gemmaIsInstalled());
        writeProgram(installation.gemmaPythonExecutable());
        EXPECT_EQ(installation.gemmaIsInstalled(), row.isWhole) << row.label;
    }
}

TEST(LlamaPins, AreTheBuiltInOnesUnlessConfigured)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"moltiva.conf"_s);
    const LlamaPins builtIn = llamaPins(file);
    EXPECT_EQ(builtIn.model.fileName(), u"gemma-4-E2B-it-Q4_0.gguf"_s);
    EXPECT_EQ(builtIn.model.bytes + builtIn.projector.bytes, 3'398'848'960);
    QSettings(file, QSettings::IniFormat)
        .setValue(u"localEngine/modelUrl"_s, u"http://h/a%20b/c.gguf?x=1"_s);
    QSettings(file, QSettings::IniFormat).setValue(u"localEngine/modelBytes"_s, 5);
    const LlamaPins pins = llamaPins(file);
    EXPECT_EQ(pins.model.fileName(), u"c.gguf"_s);
    EXPECT_EQ(pins.model.bytes, 5);
    EXPECT_EQ(pins.model.sha256, builtIn.model.sha256);
    EXPECT_EQ(pins.projector, builtIn.projector);
    EXPECT_EQ(pins.engine, builtIn.engine);
}

TEST(LlamaProfile, FindsItsProgramAndWholeFiles)
{
    const QTemporaryDir folder, inPath;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", inPath.path().toLocal8Bit());
    const LocalAIInstallation installation{folder.path()};
    LlamaPins pins = StandInEngine::llamaPins();
    const EngineProfile profile = llamaProfile(installation, pins);
    EXPECT_FALSE(profile.isRuntimeInstalled());
    writeProgram(inPath.filePath(u"llama-mtmd-cli"_s));
    EXPECT_EQ(profile.probe().program, inPath.filePath(u"llama-mtmd-cli"_s));
    writeProgram(installation.engineDirectory() + u"/llama-mtmd-cli"_s);
    EXPECT_EQ(profile.probe().program, installation.engineDirectory() + u"/llama-mtmd-cli"_s);
    pins.program = u"/nowhere/llama-mtmd-cli"_s;
    EXPECT_FALSE(llamaProfile(installation, pins).isRuntimeInstalled()) << "configured, not there";
    qputenv("PATH", path);

    const QDir model(installation.gemmaModelDirectory());
    writeFile(model.filePath(u"text.gguf"_s), "text");
    EXPECT_FALSE(profile.isInstalled());
    writeFile(model.filePath(u"eyes.gguf"_s), "eyes");
    EXPECT_FALSE(profile.isInstalled()) << "one byte is missing";
    writeFile(model.filePath(u"eyes.gguf"_s), "eyes!");
    EXPECT_TRUE(profile.isInstalled());
}

TEST(EngineProfiles, NameTheirMachine)
{
    const EngineProfile mlx = mlxProfile({}), llama = llamaProfile({}, {});
    EXPECT_EQ(mlx.subtitle,
              u"Modelo visual local con MLX. Requiere instalación inicial y varios GB libres."_s);
    for (const QString& word : {u"Mac"_s, u"MLX"_s}) {
        for (const QString& text : {llama.subtitle, llama.readyDetail, llama.wording.imageNotes})
            EXPECT_FALSE(text.contains(word)) << qPrintable(text);
    }
    EXPECT_EQ(mlx.noAnswer, llama.noAnswer);
}

TEST(MlxRuntime, LooksForAProjectAroundTheProgram)
{
    EXPECT_EQ(
        MlxRuntime::pythonSearchDirectories(u"/home/ana"_s, u"/Apps/Moltiva.app/Contents/MacOS"_s),
        (QStringList{u"/home/ana"_s, u"/Apps"_s, u"/Apps/Moltiva.app/Contents/MacOS"_s,
                     u"/Apps/Moltiva.app/Contents"_s, u"/Apps/Moltiva.app"_s, u"/"_s}));
    EXPECT_EQ(MlxRuntime::executableSearchDirectories(u"/a/b/c/d/e/f/g/h"_s),
              (QStringList{u"/a/b/c/d/e/f/g/h"_s, u"/a/b/c/d/e/f/g"_s, u"/a/b/c/d/e/f"_s,
                           u"/a/b/c/d/e"_s, u"/a/b/c/d"_s, u"/a/b/c"_s}));
    EXPECT_EQ(MlxRuntime::pythonSearchDirectories(u"/x/."_s, {}), QStringList{u"/x"_s});

    const QTemporaryDir folder;
    const QString project = folder.filePath(u"project"_s);
    EXPECT_EQ(MlxRuntime::projectDirectory({folder.path(), project}), QString());
    writeProgram(project + u"/.venv/bin/python3"_s);
    EXPECT_EQ(MlxRuntime::projectDirectory({folder.path(), project}), project);
    const auto bare = MlxRuntime::pythonExecutable({folder.path()});
    EXPECT_EQ(bare.executable, u"/usr/bin/env"_s);
    EXPECT_EQ(bare.prefix, QStringList{u"python3"_s});
}
