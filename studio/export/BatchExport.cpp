#include "studio/export/BatchExport.h"

#include "canvas/PngEncoder.h"
#include "platform/AtomicFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QSet>
#include <QTextBoundaryFinder>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace {

class Stopwatch {
public:
    Stopwatch() { m_timer.start(); }
    double lap()
    {
        const double seconds = double(m_timer.nsecsElapsed()) / 1e9;
        m_timer.start();
        return seconds;
    }

private:
    QElapsedTimer m_timer;
};

const QString unreadablePhoto = u"No se pudo leer la foto."_s;
// A Spanish sentence round the system's reason, which may be in English; nothing for no reason.
QString notWritten(const QString& reason)
{
    return reason.isEmpty() ? QString() : u"No se pudo escribir el archivo (%1)."_s.arg(reason);
}

const QString shortOfMemory = u"No hay memoria para crear la imagen."_s;

// One file short of memory does not end the batch.
ExportedFile guarded(const std::function<ExportedFile(qsizetype)>& work, qsizetype index)
{
    try {
        return work(index);
    } catch (const std::exception&) {
        return {.path = {}, .bytes = 0, .error = shortOfMemory, .times = {}};
    }
}

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

ExportedFile exportItem(const PublicationItem& item, SocialFormat format, const QString& path,
                        const ExportCanvasRenderer::PhotoSource& source)
{
    ExportedFile file{.path = path, .bytes = 0, .error = {}, .times = {}};
    const auto timedSource = [&](const PhotoHandle& photo, PhotoLevel level) {
        Stopwatch decoding;
        QImage image = source(photo, level);
        file.times.decode += decoding.lap();
        return image;
    };
    Stopwatch watch;
    const auto image =
        ExportCanvasRenderer::bitmap(item, exportSize(format), designSize(format), timedSource);
    file.times.draw = watch.lap() - file.times.decode;
    if (!image) {
        file.error = unreadablePhoto;
        return file;
    }
    const QByteArray png = encodePng(*image);
    file.times.encode = watch.lap();
    file.error = png.isEmpty() ? shortOfMemory : notWritten(writeAtomically(path, png));
    file.times.write = watch.lap();
    file.bytes = file.isWritten() ? png.size() : 0;
    return file;
}

ExportedFile exportPhoto(const QUrl& url, SocialFormat format, const QString& path)
{
    const auto itemOf = [&](const PhotoInfo& info) {
        return PublicationItem::make(url, {url.toLocalFile(), info.size, info.reducible, {}});
    };
    Stopwatch decoding;
    const auto decoded = decodePhoto(url.toLocalFile(), [&](const PhotoInfo& info) {
        const PublicationItem item = itemOf(info);
        return ExportCanvasRenderer::photoLevel(item.image, item.placement, exportSize(format));
    });
    const double seconds = decoding.lap();
    if (!decoded)
        return {.path = path, .bytes = 0, .error = unreadablePhoto, .times = {.decode = seconds}};
    // Made anew: the sizes of some photos are certain only now.
    ExportedFile file = exportItem(itemOf(decoded->info), format, path,
                                   [&](const PhotoHandle&, PhotoLevel) { return decoded->image; });
    file.times.decode = seconds;
    return file;
}

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

void runBatch(qsizetype count, int jobs, const std::atomic_bool& stop,
              const std::function<ExportedFile(qsizetype)>& work,
              const std::function<void(qsizetype, const ExportedFile&)>& finished)
{
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::pair<qsizetype, ExportedFile>> results;
    std::atomic<qsizetype> next = 0;
    int running = int(std::min<qsizetype>(jobs, count));

    std::vector<std::jthread> threads;
    for (int t = running; t > 0; --t) {
        threads.emplace_back([&] {
            for (qsizetype index = next++; index < count && !stop; index = next++) {
                ExportedFile file = guarded(work, index);
                const std::lock_guard lock(mutex);
                results.emplace_back(index, std::move(file));
                changed.notify_one();
            }
            const std::lock_guard lock(mutex);
            --running;
            changed.notify_one();
        });
    }
    std::unique_lock lock(mutex);
    while (running > 0 || !results.empty()) {
        changed.wait(lock, [&] { return running == 0 || !results.empty(); });
        while (!results.empty()) {
            const auto [index, file] = std::move(results.front());
            results.pop_front();
            lock.unlock();
            finished(index, file);
            lock.lock();
        }
    }
}
