#include "benchmarks/PlainExport.h"

#include "canvas/ExportCanvasRenderer.h"
#include "canvas/PngEncoder.h"
#include "platform/AtomicFile.h"

#include <QElapsedTimer>

#include <atomic>
#include <thread>
#include <vector>

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

}    // namespace

PlainFile exportPlainly(const QUrl& photo, SocialFormat format, const QString& path)
{
    const auto itemOf = [&](const PhotoInfo& info) {
        return PublicationItem::make(photo, {photo.toLocalFile(), info.size, info.reducible, {}});
    };
    PlainFile file;
    Stopwatch watch;
    const auto decoded = decodePhoto(photo.toLocalFile(), [&](const PhotoInfo& info) {
        const PublicationItem item = itemOf(info);
        return ExportCanvasRenderer::photoLevel(item.image, item.placement, exportSize(format));
    });
    file.times.decode = watch.lap();
    if (!decoded)
        return file;
    // Makes the item again, because the sizes of some photos are known only after decoding.
    const auto image = ExportCanvasRenderer::bitmap(
        itemOf(decoded->info), exportSize(format), designSize(format),
        [&](const PhotoHandle&, PhotoLevel) { return decoded->image; });
    file.times.draw = watch.lap();
    const QByteArray png = image ? encodePng(*image) : QByteArray();
    file.times.encode = watch.lap();
    if (!png.isEmpty() && writeAtomically(path, png).isEmpty())
        file.bytes = png.size();
    file.times.write = watch.lap();
    return file;
}

void runOnThreads(qsizetype count, int jobs, const std::function<void(qsizetype)>& work)
{
    std::atomic<qsizetype> next = 0;
    std::vector<std::jthread> threads;
    for (int i = 0; i < jobs; ++i) {
        threads.emplace_back([&] {
            for (qsizetype index = next++; index < count; index = next++)
                work(index);
        });
    }
}
