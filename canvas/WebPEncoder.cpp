#include "canvas/WebPEncoder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>
#include <QScopeGuard>
#include <QUuid>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

std::optional<QString> WebPEncoder::executableURL()
{
    return executableURL(
        {u"/opt/homebrew/bin/cwebp"_s, u"/usr/local/bin/cwebp"_s, u"/usr/bin/cwebp"_s});
}

std::optional<QString> WebPEncoder::executableURL(const QStringList& candidates)
{
    const auto found = std::ranges::find_if(candidates, [](const QString& path) {
        const QFileInfo file(path);
        return file.isFile() && file.isExecutable();
    });
    return found == candidates.end() ? std::nullopt : std::optional(*found);
}

QStringList WebPEncoder::arguments(double quality, const QString& input, const QString& output)
{
    const int percent = int(std::lround(std::max(0.0, std::min(1.0, quality)) * 100));
    return {u"-quiet"_s, u"-q"_s, QString::number(percent), input, u"-o"_s, output};
}

std::optional<QByteArray> WebPEncoder::convert(const QByteArray& pngData, double quality)
{
    const std::optional<QString> program = executableURL();
    if (!program)
        return std::nullopt;
    QDir folder(QDir::temp().filePath(QUuid::createUuid().toString(QUuid::WithoutBraces)));
    if (!folder.mkpath(u"."_s))
        return std::nullopt;
    const auto cleanUp = qScopeGuard([&] { folder.removeRecursively(); });

    const QString input = folder.filePath(u"preview.png"_s);
    const QString output = folder.filePath(u"preview.webp"_s);
    QSaveFile source(input);
    if (!source.open(QIODevice::WriteOnly) || source.write(pngData) != pngData.size() ||
        !source.commit())
        return std::nullopt;
    QProcess process;
    process.start(*program, arguments(quality, input, output));
    if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return std::nullopt;
    QFile result(output);
    if (!result.open(QIODevice::ReadOnly))
        return std::nullopt;
    return result.readAll();
}
