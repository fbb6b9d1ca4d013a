#include "cli/shared/PhotoArguments.h"

#include "model/PlainText.h"
#include "model/SocialFormat.h"
#include "studio/PhotoFolder.h"
#include "studio/export/ExportPaths.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

using Tell = std::function<void(const QString& sentence)>;

// If `path` is a folder, its photos without the outputs of an earlier export into it; else the file
// itself.
QList<QUrl> photosAt(const QString& path, const Tell& tell)
{
    if (!QFileInfo(path).isDir())
        return {QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath())};
    const QList<QUrl> found = photosInFolder(path);
    QList<QUrl> kept = withoutOwnOutputs(found);
    if (kept.size() < found.size()) {
        const auto left = found.size() - kept.size();
        tell(u"%1: %2 de otra foto de la carpeta, que no se %3."_s.arg(
            path, counted(left, u"publicación", u"publicaciones"),
            left == 1 ? u"incluye"_s : u"incluyen"_s));
    }
    return kept;
}

}    // namespace

PhotoArguments photoArguments(const QStringList& paths, const Tell& tell)
{
    PhotoArguments arguments;
    for (const QString& path : paths) {
        const QFileInfo place(path);
        if (!place.exists()) {
            arguments.problem = u"no existe «%1»."_s.arg(path);
            return arguments;
        }
        if (place.isDir() && !(place.isReadable() && place.isExecutable())) {
            arguments.problem = u"no se puede leer la carpeta «%1»."_s.arg(path);
            return arguments;
        }
        arguments.photos.append(photosAt(path, tell));
        for (const QString& name : unreachablePhotosInFolder(path))
            arguments.unreachable.append(QDir(path).filePath(name));
    }
    return arguments;
}

QString formatKeys()
{
    QStringList keys;
    for (const auto& format : Vocabulary<SocialFormat>::rows)
        keys.append(format.templateKey.toString());
    return keys.join(u", "_s);
}
