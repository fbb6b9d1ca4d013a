// Measures the steps of a render, each by itself. batch_export measures whole renders.

#include "canvas/BoxShadow.h"
#include "canvas/ImagePlacementGeometry.h"
#include "canvas/ItemLayout.h"
#include "canvas/ItemPainter.h"
#include "canvas/PhotoResampler.h"
#include "canvas/PngEncoder.h"
#include "canvas/TextFitting.h"
#include "canvas/TextWarnings.h"
#include "model/SocialFormat.h"

#include <QGuiApplication>
#include <QRandomGenerator>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

const bool offscreen = qputenv("QT_QPA_PLATFORM", "offscreen");
int argumentCount = 1;
char programName[] = "rendering";
char* arguments[] = {programName, nullptr};
const QGuiApplication application(argumentCount, arguments);

constexpr SocialFormat format = SocialFormat::carouselPortrait;

// Makes a picture of noise over a gradient, which compresses about as badly as a busy photo.
QImage noisyPhoto(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QRandomGenerator random(7);
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const int noise = int(random.bounded(24));
            row[x] =
                qRgb(x * 200 / size.width() + noise, y * 200 / size.height() + noise, 90 + noise);
        }
    }
    return image;
}

PublicationItem defaultItem()
{
    const PhotoHandle photo{.path = {}, .size = QSize(3008, 2008), .reducible = true, .digest = {}};
    return PublicationItem::make(QUrl(), photo);
}

void placement(benchmark::State& state)
{
    ImagePlacement placed;
    placed.zoom = 1.3;
    placed.offset = {0.2, -0.1};
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(
            ImagePlacementGeometry::clamped(placed, QSizeF(6016, 4016), exportSize(format)));
}
BENCHMARK(placement);

void fitting(benchmark::State& state)
{
    TextLayer layer = defaultItem().layers[0];
    layer.text = u"Respira otoño en los Picos "_s.repeated(int(state.range(0)));
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(ExportCanvasRenderer::fittedFontSize(layer, {802, 176}, 2));
}
BENCHMARK(fitting)->Arg(1)->Arg(4)->Arg(400)->Unit(benchmark::kMicrosecond);

void laying(benchmark::State& state)
{
    const PublicationItem item = defaultItem();
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(layOut(item, exportSize(format), designSize(format)));
}
BENCHMARK(laying)->Unit(benchmark::kMicrosecond);

void resampling(benchmark::State& state)
{
    const QImage photo = noisyPhoto({3008, 2008});
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(resampled(photo, QSize(2022, 1350), {471, 0, 1080, 1350}));
}
BENCHMARK(resampling)->Unit(benchmark::kMillisecond);

void painting(benchmark::State& state)
{
    const ItemLayout layout = layOut(defaultItem(), exportSize(format), designSize(format));
    const QImage photo = noisyPhoto({3008, 2008});
    const ResampledPhoto shown = resampledPhoto(photo, *photoPlace(layout, layout.canvas));
    QImage picture(layout.canvas, QImage::Format_ARGB32_Premultiplied);
    for ([[maybe_unused]] auto _ : state) {
        paintItem(picture, layout, shown, picture.rect());
        benchmark::DoNotOptimize(picture.constBits());
    }
}
BENCHMARK(painting)->Unit(benchmark::kMillisecond);

// Measures drawing a tile of the batch; if `judged`, including the warnings about its texts.
template <bool judged>
void tile(benchmark::State& state)
{
    const PublicationItem item = defaultItem();
    const QImage thumbnail = noisyPhoto({480, 320});
    for ([[maybe_unused]] auto _ : state) {
        const ItemLayout layout = layOut(item, exportSize(format), designSize(format));
        if constexpr (judged)
            benchmark::DoNotOptimize(judgedItem(layout, {88, 110}, thumbnail));
        else
            benchmark::DoNotOptimize(paintedItem(layout, {88, 110}, thumbnail));
    }
}
BENCHMARK(tile<false>)->Name("tile")->Unit(benchmark::kMicrosecond);
BENCHMARK(tile<true>)->Name("tileWithWarnings")->Unit(benchmark::kMicrosecond);

void shadow(benchmark::State& state)
{
    double sigma = 14;
    for ([[maybe_unused]] auto _ : state) {
        sigma += 1e-6;    // a new value each time, so that no cached shadow is used
        benchmark::DoNotOptimize(
            boxShadow({119, 389, 842, 216}, 32, sigma, Qt::black, {0, 0, 1080, 1350}));
    }
}
BENCHMARK(shadow)->Unit(benchmark::kMillisecond);

void encoding(benchmark::State& state)
{
    const QImage image = noisyPhoto({1080, 1350});
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(encodePng(image));
}
BENCHMARK(encoding)->Unit(benchmark::kMillisecond);

}    // namespace
