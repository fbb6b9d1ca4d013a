#pragma once

#include "copygen/EngineProfile.h"
#include "tests/Processes.h"
#include "tests/copygen/Installing.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// An installation whose engine is the stand-in (standin/engine.cpp), with a folder of its own for
// temporary files. The environment is that of the test program: one at a time.
class StandInEngine {
public:
    StandInEngine()
    {
        EXPECT_TRUE(QDir().mkpath(temporary()) &&
                    QDir().mkpath(installation().gemmaModelDirectory()));
        qputenv("TMPDIR", temporary().toLocal8Bit());
        qputenv("MOLTIVA_STANDIN_LOG", logFile().toLocal8Bit());
    }
    ~StandInEngine()
    {
        for (const char* name : {"TMPDIR", "MOLTIVA_STANDIN_LOG", "MOLTIVA_STANDIN"})
            qunsetenv(name);
    }
    StandInEngine(const StandInEngine&) = delete;
    StandInEngine& operator=(const StandInEngine&) = delete;

    LocalAIInstallation installation() const
    {
        return {m_folder.filePath(QStringLiteral("data/Moltiva/LocalAI"))};
    }
    QString dataFolder() const { return m_folder.filePath(QStringLiteral("data")); }
    QString logFile() const { return m_folder.filePath(QStringLiteral("log")); }
    QString temporary() const { return m_folder.filePath(QStringLiteral("temporary")); }
    QString photo(QSize size = {30, 20}) const
    {
        const QString path = m_folder.filePath(QStringLiteral("photo, one.png"));
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::red);
        EXPECT_TRUE(image.save(path));
        return path;
    }

    // Installs the engine.
    EngineProfile mlx() const
    {
        const QDir model(installation().gemmaModelDirectory());
        writeFile(model.filePath(QStringLiteral("config.json")), "{}");
        writeFile(model.filePath(QStringLiteral("model.safetensors.index.json")),
                  R"({"weight_map": {"a": "one.safetensors"}})");
        writeFile(model.filePath(QStringLiteral("one.safetensors")), "x");
        installAs(installation().gemmaPythonExecutable());
        return mlxProfile(installation());
    }
    EngineProfile llama() const
    {
        const QDir model(installation().gemmaModelDirectory());
        const LlamaPins pins = llamaPins();
        writeFile(model.filePath(pins.model.fileName()), "text");
        writeFile(model.filePath(pins.projector.fileName()), "eyes!");
        installAs(installation().engineDirectory() + QStringLiteral("/llama-mtmd-cli"));
        return llamaProfile(installation(), pins);
    }
    static LlamaPins llamaPins()
    {
        LlamaPins pins;
        pins.model = {QStringLiteral("http://localhost/text.gguf"), 4, {}};
        pins.projector = {QStringLiteral("http://localhost/eyes.gguf"), 5, {}};
        return pins;
    }

    static void behave(const QString& how) { qputenv("MOLTIVA_STANDIN", how.toLocal8Bit()); }

    // A line for each run: the number of its process, its step and what it found.
    QStringList log() const
    {
        QFile file(logFile());
        const QByteArray all = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        return QString::fromUtf8(all).split(u'\n', Qt::SkipEmptyParts);
    }
    bool hasBegun(const QString& step) const
    {
        return comesTrue([&] { return log().join(u'\n').contains(step); });
    }
    QStringList pictures() const { return QDir(temporary()).entryList(QDir::Files); }

    // No process and no picture.
    void expectNothingLeft(const char* label) const
    {
        EXPECT_EQ(pictures(), QStringList()) << label;
        for (const QString& line : log())
            EXPECT_TRUE(waitUntilGone(line.section(u' ', 0, 0).toInt())) << label;
    }

private:
    static void installAs(const QString& path)
    {
        QDir().mkpath(QFileInfo(path).path());
        EXPECT_TRUE(QFileInfo::exists(path) ||
                    QFile::link(QStringLiteral(MOLTIVA_STANDIN_ENGINE), path));
    }

    const QTemporaryDir m_folder;
};
