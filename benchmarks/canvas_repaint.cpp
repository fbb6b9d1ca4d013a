// Drags layers on the canvas, in a window without a display.
//
//     canvas_repaint PHOTO
//
// Measures each mouse event together with the repaint that it causes, for layers with and without a
// shadow and for the photo itself. Set QT_SCALE_FACTOR=2 for a screen of twice the density.

#include "app/stage/StagePanel.h"
#include "app/theme/StudioStyle.h"
#include "app/theme/Theme.h"
#include "canvas/ExportCanvasRenderer.h"
#include "canvas/interaction/CanvasInteractionView.h"
#include "platform/Memory.h"
#include "platform/Workers.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMouseEvent>
#include <QScopeGuard>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr SocialFormat format = SocialFormat::carouselPortrait;
constexpr int steps = 300;

PublicationItem itemOf(const QString& path, const QImage& photo)
{
    PublicationItem item = PublicationItem::make(
        QUrl::fromLocalFile(path),
        {.path = path, .size = photo.size(), .reducible = true, .digest = {}});
    for (TextLayer& layer : item.layers)
        layer.isVisible = true;
    item.shapeLayers = {
        ShapeLayer(QUuid::createUuid(), ShapeKind::circle, {0.06, 0.62, 0.3, 0.24}),
        ShapeLayer(QUuid::createUuid(), ShapeKind::rectangle, {0.55, 0.05, 0.4, 0.08})};
    return item;
}

void send(QWidget& view, QEvent::Type type, QPointF at)
{
    const bool down = type != QEvent::MouseButtonRelease;
    QMouseEvent event(type, at, view.mapToGlobal(at),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      down ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&view, &event);
}

// Drags in a circle, which also crosses snapping lines and edges.
void time(const char* name, CanvasInteractionView& view, QPointF from)
{
    std::vector<double> milliseconds;
    const int before = view.resamplings();
    send(view, QEvent::MouseButtonPress, from);
    for (int step = 1; step <= steps; ++step) {
        const double turn = 2 * std::numbers::pi * step / steps;
        const QPointF at = from + QPointF(90 * std::sin(turn), 60 - 60 * std::cos(turn));
        QElapsedTimer watch;
        watch.start();
        send(view, QEvent::MouseMove, at);
        QApplication::sendPostedEvents();
        milliseconds.push_back(double(watch.nsecsElapsed()) / 1e6);
    }
    send(view, QEvent::MouseButtonRelease, from);
    std::ranges::sort(milliseconds);
    std::printf("%-28s median %5.2f ms, 95th percentile %5.2f ms, longest %5.2f ms; %d resampled\n",
                name, milliseconds[steps / 2], milliseconds[steps * 95 / 100], milliseconds.back(),
                view.resamplings() - before);
}

void waitUntilSharp(const CanvasInteractionView& view)
{
    do
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    while (!view.isPhotoSharp());
    QApplication::processEvents();
}

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    dress(application, darkTheme());
    if (argc != 2) {
        std::fprintf(stderr, "canvas_repaint PHOTO\n");
        return 2;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);
    const QImage whole = decodePhoto(path, PhotoLevel::full).value_or(QImage());
    const QImage photo = decodePhoto(path, PhotoLevel::half).value_or(QImage());
    if (photo.isNull()) {
        std::fprintf(stderr, "%s cannot be read\n", argv[1]);
        return 1;
    }
    // The size that the stage has in a window of 1440 × 900 with both side columns.
    StagePanel stage;
    stage.resize(888, 692);
    const auto& row = ::row(format);
    stage.setFormat(row.rawValue.toString(), row.ratioLabel.toString(), row.exportSize.toSize());
    CanvasInteractionView& view = *stage.canvas();
    const PublicationItem item = itemOf(path, whole);
    stage.show();
    view.setItem(item, format);
    view.setPhoto(photo);
    waitUntilSharp(view);
    std::printf("canvas of %d × %d pixels\n", stage.pictureSize().width(),
                stage.pictureSize().height());

    const QPointF corner = stage.canvasRect().topLeft();
    const auto middleOf = [&](const CodableRect& frame) {
        return corner + view.interaction().absoluteRect(frame).center();
    };
    const auto run = [&](const char* name, QPointF from) {
        time(name, view, from);
        view.setItem(item, format);
        waitUntilSharp(view);
    };
    for (const TextLayer& layer : item.layers) {
        view.setSelectedLayerID(layer.id);
        run(qPrintable(rawValue(layer.slot)), middleOf(layer.frame));
    }
    for (const ShapeLayer& shape : item.shapeLayers) {
        view.setSelectedLayerID(shape.id);
        run(qPrintable(rawValue(shape.kind)), middleOf(shape.frame));
    }
    view.setSelectedLayerID(item.layers[0].id);
    run("resizing the title",
        corner + view.interaction().absoluteRect(item.layers[0].frame).bottomRight());
    view.setSelectedLayerID({});
    run("the photo", corner + QPointF(20, 20));
    return 0;
}
