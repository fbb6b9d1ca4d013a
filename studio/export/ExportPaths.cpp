#include "studio/export/ExportPaths.h"

#include "model/PublicationItem.h"

#include <QDir>
#include <QRegularExpression>
#include <QSet>
#include <QTextBoundaryFinder>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace {

const QString outputEnding = u"-publicacion.png"_s;

QString numberedEnding(int number)
{
    return number < 2 ? outputEnding : u"-publicacion-%1.png"_s.arg(number);
}

// Longest file name in bytes that the folder, or its nearest existing parent, allows.
qsizetype longestNameIn(QString folder)
{
    constexpr qsizetype usual = 255;
#ifdef Q_OS_UNIX
    while (!QFileInfo::exists(folder) && folder != QFileInfo(folder).path())
        folder = QFileInfo(folder).path();
    const long longest = pathconf(QFile::encodeName(folder).constData(), _PC_NAME_MAX);
    return longest > 0 ? longest : usual;
#else
    return usual;
#endif
}

QString nameWithin(qsizetype longest, QString stem, const QString& ending)
{
    const auto bytes = [&] { return QFile::encodeName(stem + ending).size(); };
    if (bytes() <= longest)
        return stem + ending;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, QString(stem));
    finder.toEnd();
    while (bytes() > longest && finder.toPreviousBoundary() > 0)
        stem.truncate(finder.position());
    return stem + ending;
}

// Whether the photo may be a file that an export would overwrite: it is named like an exported
// picture, or it is a symbolic link.
bool mayLieOnAnOutput(const QFileInfo& photo)
{
    const QString name = photo.fileName().toCaseFolded();
    return (name.endsWith(u".png"_s) && name.contains(u"-publicacion"_s)) || photo.isSymLink();
}

}    // namespace

QString exportName(const QUrl& photo, const QString& folder)
{
    return nameWithin(longestNameIn(folder), filenameOf(photo), outputEnding);
}

QStringList exportPaths(const QList<QUrl>& photos, const QString& folder)
{
    // Resolves links in the path of `folder`, which may lead to the folder of the photos: no photo
    // must be overwritten.
    const QString real = QFileInfo(folder).canonicalFilePath();
    const QDir target(real.isEmpty() ? QDir(folder).absolutePath() : real);
    QSet<QString> taken;
    for (const QUrl& photo : photos) {
        const QFileInfo file(photo.toLocalFile());
        taken.insert(file.filePath().toCaseFolded());
        // Resolves links of a few photos only, because each call accesses every folder of the path.
        if (mayLieOnAnOutput(file))
            taken.insert(file.canonicalFilePath().toCaseFolded());
    }
    const qsizetype longest = longestNameIn(target.path());
    QStringList paths;
    for (const QUrl& photo : photos) {
        const QString name = filenameOf(photo);
        QString path = target.filePath(nameWithin(longest, name, outputEnding));
        for (int number = 2; taken.contains(path.toCaseFolded()); ++number)
            path = target.filePath(nameWithin(longest, name, numberedEnding(number)));
        taken.insert(path.toCaseFolded());
        paths.append(QDir(folder).filePath(QFileInfo(path).fileName()));
    }
    return paths;
}

QList<QUrl> withoutOwnOutputs(const QList<QUrl>& photos)
{
    static const QRegularExpression output(u"^(.+)(-publicacion(-[0-9]+)?\\.png)$"_s);
    QSet<QString> names;
    QStringList longNames;    // names that nameWithin() shortens
    for (const QUrl& photo : photos) {
        const QString name = filenameOf(photo);
        names.insert(name);
        const qsizetype longest = longestNameIn(QFileInfo(photo.toLocalFile()).path());
        if (QFile::encodeName(name + outputEnding).size() > longest)
            longNames.append(name);
    }
    QList<QUrl> kept = photos;
    kept.removeIf([&](const QUrl& photo) {
        const auto match = output.match(photo.fileName());
        const auto isShortened = [&](const QString& name) {
            const qsizetype longest = longestNameIn(QFileInfo(photo.toLocalFile()).path());
            return nameWithin(longest, name, match.captured(2)) == photo.fileName();
        };
        return match.hasMatch() &&
               (names.contains(match.captured(1)) || std::ranges::any_of(longNames, isShortened));
    });
    return kept;
}
