#include "studio/export/BatchExport.h"

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

// Bytes that the name of a file may have in this folder, or in the one that it will be made in.
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

// By the name, or as a link, which may lead to a file of any name.
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
    // Where files really lie: a link must not make an output fall on a photo.
    const QString real = QFileInfo(folder).canonicalFilePath();
    const QDir target(real.isEmpty() ? QDir(folder).absolutePath() : real);
    QSet<QString> taken;
    for (const QUrl& photo : photos) {
        const QFileInfo file(photo.toLocalFile());
        taken.insert(file.filePath().toCaseFolded());
        // To see where a file really lies takes a look at each of its folders.
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
    QStringList longNames;    // that an output shortens
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
