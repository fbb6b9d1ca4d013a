#include "copygen/LocalAIInstallation.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <QStandardPaths>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

// The model's single file has more bytes than this.
constexpr qint64 modelWeight = 3'000'000'000;
constexpr qint64 largestIndex = 4 << 20;    // bytes

const QString llamaName = u"llama-mtmd-cli"_s;

bool isExecutableFile(const QString& path)
{
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable();
}

QByteArray contents(const QString& path, qint64 most)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.size() <= most ? file.readAll() : QByteArray();
}

// The pin with what the configuration file puts in its place.
PinnedFile configured(PinnedFile pin, const QSettings& file, const QString& name)
{
    const auto key = [&](const QString& part) { return u"localEngine/"_s + name + part; };
    pin.url = file.value(key(u"Url"_s), pin.url).toString().trimmed();
    pin.bytes = file.value(key(u"Bytes"_s), pin.bytes).toLongLong();
    pin.sha256 = file.value(key(u"Sha256"_s), pin.sha256).toString().trimmed().toLower();
    return pin;
}

QString modelAddress(const QString& revision, const QString& file)
{
    return u"https://huggingface.co/ggml-org/gemma-4-E2B-it-GGUF/resolve/%1/%2"_s.arg(revision,
                                                                                      file);
}

LlamaPins builtInPins()
{
    LlamaPins pins;
    pins.model = {
        modelAddress(u"b4243c156154b6dca9324415f8c7ccc098b4aed1"_s, u"gemma-4-E2B-it-Q4_0.gguf"_s),
        2'841'481'184, u"8e30dff3ac4c8434c49a7036fa15564bdbb6044e42bf04550bf1a096ad7e6a52"_s};
    pins.projector = {modelAddress(u"a1dac71d3ab220618f5a7573a52acdc4baf3ae3b"_s,
                                   u"mmproj-gemma-4-E2B-it-Q8_0.gguf"_s),
                      557'367'776,
                      u"8a82e0fd831bb7cb5c8898b86393eb14042986b950a60e1034bf21d061aac8a8"_s};
#if defined(Q_OS_LINUX) && defined(Q_PROCESSOR_X86_64)
    // Built for glibc 2.35. The archive for aarch64 needs glibc 2.39, which Debian 12 has not.
    pins.engine = {u"https://github.com/ggml-org/llama.cpp/releases/download/b11120/"
                   "llama-b11120-bin-ubuntu-x64.tar.gz"_s,
                   16'997'245,
                   u"cae70da61dc74e3012418f7a4b6750eadc6fd0a8fb03270022d471b675e5b4cd"_s};
#endif
    return pins;
}

}    // namespace

LocalAIInstallation LocalAIInstallation::ofThisUser()
{
    return {QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
            u"/Moltiva/LocalAI"_s};
}

QString LocalAIInstallation::gemmaDirectory() const
{
    return rootDirectory + u"/gemma-4-e2b"_s;
}

QString LocalAIInstallation::gemmaEnvironmentDirectory() const
{
    return gemmaDirectory() + u"/python-env"_s;
}

QString LocalAIInstallation::gemmaModelDirectory() const
{
    return gemmaDirectory() + u"/model"_s;
}

QString LocalAIInstallation::gemmaCacheDirectory() const
{
    return gemmaDirectory() + u"/huggingface-cache"_s;
}

QString LocalAIInstallation::gemmaProgressFile() const
{
    return gemmaDirectory() + u"/install-progress.json"_s;
}

QString LocalAIInstallation::gemmaPythonExecutable() const
{
    return gemmaEnvironmentDirectory() + u"/bin/python3"_s;
}

QString LocalAIInstallation::engineDirectory() const
{
    return gemmaDirectory() + u"/engine"_s;
}

bool LocalAIInstallation::gemmaRuntimeIsInstalled() const
{
    return isExecutableFile(gemmaPythonExecutable());
}

bool LocalAIInstallation::gemmaModelIsInstalled() const
{
    const QDir folder(gemmaModelDirectory());
    if (!QFileInfo(folder.filePath(u"config.json"_s)).isFile())
        return false;
    if (QFileInfo(folder.filePath(u"model.safetensors"_s)).size() > modelWeight)
        return true;
    const QByteArray index =
        contents(folder.filePath(u"model.safetensors.index.json"_s), largestIndex);
    const QJsonObject shards = QJsonDocument::fromJson(index)[u"weight_map"_s].toObject();
    return !shards.isEmpty() && std::ranges::all_of(shards, [&](const QJsonValue& name) {
        const QFileInfo shard(folder.filePath(name.toString()));
        return name.isString() && shard.isFile() && shard.size() > 0;
    });
}

bool LocalAIInstallation::gemmaIsInstalled() const
{
    return gemmaRuntimeIsInstalled() && gemmaModelIsInstalled();
}

QString LocalAIInstallation::gemmaModelReference() const
{
    return gemmaModelIsInstalled() ? gemmaModelDirectory() : gemmaRepository.toString();
}

QString PinnedFile::fileName() const
{
    return QUrl(url).path().section(u'/', -1);
}

LlamaPins llamaPins(const QString& configurationFile)
{
    const QSettings file(configurationFile, QSettings::IniFormat);
    LlamaPins pins = builtInPins();
    pins.model = configured(pins.model, file, u"model"_s);
    pins.projector = configured(pins.projector, file, u"projector"_s);
    pins.engine = configured(pins.engine, file, u"engine"_s);
    pins.program = file.value(u"localEngine/program"_s).toString().trimmed();
    return pins;
}

bool llamaModelIsInstalled(const LocalAIInstallation& installation, const LlamaPins& pins)
{
    const QDir folder(installation.gemmaModelDirectory());
    return std::ranges::all_of(std::array{pins.model, pins.projector}, [&](const PinnedFile& pin) {
        const QFileInfo file(folder.filePath(pin.fileName()));
        return file.isFile() && file.size() == pin.bytes;
    });
}

QString llamaProgramInPath()
{
    return QStandardPaths::findExecutable(llamaName);
}

QString llamaProgram(const LocalAIInstallation& installation, const LlamaPins& pins)
{
    if (!pins.program.isEmpty())
        return isExecutableFile(pins.program) ? pins.program : QString();
    const QString ours = installation.engineDirectory() + u'/' + llamaName;
    return isExecutableFile(ours) ? ours : llamaProgramInPath();
}
