#include "canvas/interaction/CanvasInteractionView.h"
#include "canvas/ExportCanvasRenderer.h"

#include <QAccessible>
#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QRandomGenerator>
#include <QWheelEvent>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QImage photoOf(QSize size)
{
    QImage photo(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            photo.setPixel(x, y, qRgb(x & 255, y & 255, (x ^ y) & 255));
    }
    return photo;
}

class Dice {
public:
    explicit Dice(quint32 seed) : m_random(seed) {}
    double between(double low, double high)
    {
        return low + m_random.generateDouble() * (high - low);
    }
    int below(int count) { return int(m_random.bounded(count)); }
    CodableRect frame()
    {
        return {between(-0.2, 0.7), between(-0.2, 0.7), between(0.1, 0.7), between(0.05, 0.4)};
    }

private:
    QRandomGenerator m_random;
};

PublicationItem randomItem(Dice& dice, QSize photo)
{
    const QStringList texts{u"Respira otoño en los Picos"_s, u"Sol ☀️ y 🏔️ a un paso"_s,
                            u"مرحبا، ¿qué tal?"_s, u"Ångström\nfjord"_s};
    PublicationItem item = PublicationItem::make(
        QUrl(), {.path = {}, .size = photo, .reducible = false, .digest = {}});
    for (TextLayer& layer : item.layers) {
        layer.text = texts[dice.below(4)];
        layer.isVisible = dice.below(5) > 0;
        layer.hasBox = dice.below(3) > 0;
        layer.frame = dice.frame();
        layer.alignment = LayerTextAlignment(dice.below(4));
        layer.shadowRadius = dice.between(0, 50);
        layer.shadowDistance = dice.between(0, 50);
        layer.shadowAngle = dice.between(0, 360);
        layer.shadowOpacity = dice.between(0, 1);
        layer.backgroundOpacity = dice.between(0, 1);
        layer.cornerRadius = dice.between(0, 80);
        layer.fontScale = dice.between(0.4, 2.5);
    }
    for (int i = 0; i < 3; ++i) {
        ShapeLayer shape(QUuid::createUuid(), ShapeKind(dice.below(4)), dice.frame());
        shape.fillOpacity = dice.between(0.2, 1);
        shape.strokeOpacity = dice.between(0.2, 1);
        shape.strokeWidth = dice.between(0, 40);
        shape.cornerRadius = dice.between(0, 80);
        item.shapeLayers.append(shape);
    }
    item.placement = {ImageFitMode(dice.below(2)),
                      dice.between(1, 3),
                      {dice.between(-1, 1), dice.between(-1, 1)}};
    return item;
}

void settle(const CanvasInteractionView& view)
{
    QElapsedTimer watch;
    for (watch.start(); !view.isPhotoSharp() && watch.elapsed() < 30000;)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    ASSERT_TRUE(view.isPhotoSharp());
}

void send(QWidget& view, QEvent::Type type, QPointF at, Qt::MouseButton button = Qt::LeftButton)
{
    QMouseEvent event(type, at, view.mapToGlobal(at),
                      type == QEvent::MouseMove ? Qt::NoButton : button,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : button, Qt::NoModifier);
    QApplication::sendEvent(&view, &event);
}

bool type(QWidget& view, int key)
{
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&view, &event);
    return event.isAccepted();
}

void scroll(QWidget& view, QPoint pixels, QPoint angle)
{
    QWheelEvent event(QPointF(50, 50), QPointF(50, 50), pixels, angle, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&view, &event);
}

QImage paintedAtOnce(const CanvasInteractionView& view, SocialFormat format, QSize pixels,
                     const QImage& photo)
{
    return paintedItem(layOut(*view.interaction().item(), exportSize(format), designSize(format)),
                       pixels, photo);
}

// A view with a canvas of 400 × 500 and a margin of 40, showing an item with one visible text and
// one shape.
class ViewTest : public ::testing::Test {
protected:
    ViewTest()
    {
        m_item = PublicationItem::make(
            QUrl(), {.path = {}, .size = {800, 1000}, .reducible = false, .digest = {}});
        m_item.layers[0].text = u"Respira"_s;
        m_item.layers[0].frame = {0.1, 0.1, 0.5, 0.2};
        for (int i = 1; i < 4; ++i)
            m_item.layers[i].isVisible = false;
        m_item.shapeLayers = {
            ShapeLayer(QUuid::createUuid(), ShapeKind::rectangle, {0.1, 0.6, 0.3, 0.3})};
        m_view.resize(480, 580);
        m_view.setCanvasRect({40, 40, 400, 500}, {400, 500});
        m_view.setItem(m_item, SocialFormat::carouselPortrait);
        m_view.setPhoto(m_photo);
        m_view.interaction().onCommit = [this](const PublicationItem& item) { m_item = item; };
        m_view.interaction().onSelect = [this](QUuid id) { m_view.setSelectedLayerID(id); };
        m_view.show();
        settle(m_view);
    }
    QPointF at(double x, double y) const { return {40 + 400 * x, 40 + 500 * y}; }
    QUuid selected() const { return m_view.interaction().selectedLayerID(); }

    QImage m_photo = photoOf({800, 1000});
    PublicationItem m_item;
    CanvasInteractionView m_view;
};

}    // namespace

TEST(CanvasInteractionView, theCanvasAtTheSizeOfAnExportIsTheExport)
{
    Dice dice(3);
    CanvasInteractionView view;
    for (int i = 0; i < 12; ++i) {
        const SocialFormat format = SocialFormat(i % 4);
        QImage photo = photoOf(i % 3 ? QSize(900, 700) : QSize(400, 1300));
        const PublicationItem item = randomItem(dice, photo.size());
        view.setItem(item, format);
        view.setCanvasRect(QRect(QPoint(), exportSize(format).toSize()),
                           exportSize(format).toSize());
        view.setPhoto(photo);
        settle(view);
        const auto exported =
            ExportCanvasRenderer::bitmap(item, exportSize(format), designSize(format),
                                         [&](const PhotoHandle&, PhotoLevel) { return photo; });
        EXPECT_EQ(view.canvasBuffer(), *exported) << i;
    }
}

TEST(CanvasInteractionView, whatIsRepaintedInPartsIsAsPaintedAtOnce)
{
    Dice dice(11);
    for (const QSize pixels : {QSize(500, 626), QSize(333, 416)}) {
        const SocialFormat format = SocialFormat::carouselPortrait;
        const QImage photo = photoOf({700, 800});
        CanvasInteractionView view;
        view.resize(pixels + QSize(80, 80));
        view.setCanvasRect(QRect(QPoint(40, 40), pixels), pixels);
        PublicationItem item = randomItem(dice, photo.size());
        view.setItem(item, format);
        view.setPhoto(photo);
        settle(view);
        const int resampled = view.resamplings();
        for (int drag = 0; drag < 12; ++drag) {
            const QList<QUuid> layers = view.layers();
            view.setSelectedLayerID(layers[dice.below(int(layers.size()))]);
            const auto rect = view.interaction().layerRect(view.interaction().selectedLayerID());
            QPointF at = rect ? (drag % 2 ? rect->bottomRight() : rect->center()) : QPointF(30, 30);
            at += QPointF(40, 40);
            send(view, QEvent::MouseButtonPress, at);
            if (!view.interaction().isDraggingLayer()) {
                send(view, QEvent::MouseButtonRelease, at);
                continue;
            }
            for (int step = 0; step < 6; ++step) {
                at += QPointF(dice.between(-40, 40), dice.between(-40, 40));
                send(view, QEvent::MouseMove, at);
                if (step % 2 == 0)
                    continue;    // the canvas may be painted after several moves only
                ASSERT_EQ(view.canvasBuffer(), paintedAtOnce(view, format, pixels, photo))
                    << drag << " " << step;
            }
            send(view, QEvent::MouseButtonRelease, at);
        }
        EXPECT_EQ(view.resamplings(), resampled) << "the photo did not move";
        // Sets other items from outside, with layers added, removed and reordered.
        for (int i = 0; i < 8; ++i) {
            PublicationItem next = randomItem(dice, photo.size());
            next.placement = item.placement;
            if (i % 2)
                std::swap(next.layers[0], next.layers[2]), next.shapeLayers.removeLast();
            view.setItem(next, format);
            ASSERT_EQ(view.canvasBuffer(), paintedAtOnce(view, format, pixels, photo)) << i;
        }
    }
}

TEST_F(ViewTest, aPannedPhotoIsShownAtOnceAndSharpWhenItRests)
{
    scroll(m_view, {}, {0, 600});
    EXPECT_FALSE(m_view.isPhotoSharp());
    const QImage quick = m_view.canvasBuffer().copy();
    settle(m_view);
    const QImage sharp = paintedAtOnce(m_view, SocialFormat::carouselPortrait, {400, 500}, m_photo);
    EXPECT_EQ(m_view.canvasBuffer(), sharp);
    EXPECT_NE(quick, sharp);
    EXPECT_LT(std::abs(qRed(quick.pixel(380, 300)) - qRed(sharp.pixel(380, 300))), 40);

    send(m_view, QEvent::MouseButtonPress, at(0.9, 0.5));
    const int before = m_view.resamplings();
    for (int i = 1; i <= 30; ++i)
        send(m_view, QEvent::MouseMove, at(0.9 - 0.01 * i, 0.5));
    EXPECT_EQ(m_view.resamplings(), before) << "while it moves";
    send(m_view, QEvent::MouseButtonRelease, at(0.6, 0.5));
    settle(m_view);
    EXPECT_EQ(m_view.resamplings(), before + 1);
    EXPECT_EQ(m_view.canvasBuffer(),
              paintedAtOnce(m_view, SocialFormat::carouselPortrait, {400, 500}, m_photo));
}

TEST_F(ViewTest, anotherItemNeverShowsThePhotoOfTheLast)
{
    PublicationItem other = m_item;
    other.image.path = u"other"_s;
    m_view.setItem(other, SocialFormat::carouselPortrait);
    EXPECT_EQ(m_view.canvasBuffer(),
              paintedAtOnce(m_view, SocialFormat::carouselPortrait, {400, 500}, {}));
    EXPECT_TRUE(m_view.isPhotoSharp());
    m_view.setItem(std::nullopt, SocialFormat::carouselPortrait);
    EXPECT_TRUE(m_view.canvasBuffer().isNull());
}

TEST_F(ViewTest, marksAreDrawnOverThePictureAndNeverInIt)
{
    const QImage picture = m_view.canvasBuffer().copy();
    const auto shown = [this] {
        return m_view.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    };
    EXPECT_EQ(shown().copy(40, 40, 400, 500), picture);
    m_view.setSelectedLayerID(m_item.layers[0].id);
    EXPECT_NE(shown().copy(40, 40, 400, 500), picture);
    EXPECT_EQ(shown().pixelColor(at(0.6, 0.3).toPoint() + QPoint(-6, -6)), QColor(Qt::white))
        << "handle";
    m_view.setSelectedLayerID(m_item.layers[1].id);
    EXPECT_EQ(shown().copy(40, 40, 400, 500), picture) << "a hidden text has no marks";
    m_view.setSafeZone(true);
    EXPECT_EQ(shown().copy(40, 40, 400, 500), picture) << "only stories lose something";
    m_view.activateWindow();
    m_view.clearFocus();
    m_view.setFocus(Qt::TabFocusReason);
    EXPECT_EQ(shown().pixelColor(36, 300), m_view.palette().color(QPalette::Highlight)) << "ring";
    EXPECT_EQ(m_view.canvasBuffer(), picture);

    // The tag of a frame at the upper edge is below the frame, so that it does not cover the text.
    PublicationItem high = m_item;
    high.layers[0].frame = {0.1, 0.02, 0.6, 0.2};
    m_view.setSafeZone(false);
    m_view.setSelectedLayerID(QUuid());
    m_view.setItem(high, SocialFormat::carouselPortrait);
    const QRect inside = QRectF(at(0.1, 0.02), at(0.7, 0.22)).toRect().adjusted(4, 4, -20, -20);
    const QImage bare = shown();
    m_view.setSelectedLayerID(high.layers[0].id);
    EXPECT_EQ(shown().copy(inside), bare.copy(inside));
    EXPECT_NE(shown(), bare);
}

TEST_F(ViewTest, aPressMarksAtOnceAndReportsWhenItIsReleased)
{
    const auto hasHandle = [this](QPointF corner) {
        return m_view.grab().toImage().pixelColor(corner.toPoint() + QPoint(-6, -6)) ==
               QColor(Qt::white);
    };
    const QPointF shape = at(0.4, 0.9), text = at(0.6, 0.3);
    m_view.setSelectedLayerID(m_item.shapeLayers[0].id);
    ASSERT_TRUE(hasHandle(shape));
    send(m_view, QEvent::MouseButtonPress, at(0.3, 0.2));
    EXPECT_TRUE(hasHandle(text) && !hasHandle(shape));
    send(m_view, QEvent::MouseMove, at(0.3, 0.2) + QPointF(60, 0));
    EXPECT_TRUE(hasHandle(text + QPointF(60, 0)) && !hasHandle(shape));
    EXPECT_EQ(selected(), m_item.shapeLayers[0].id);
    type(m_view, Qt::Key_Escape);
    EXPECT_TRUE(hasHandle(shape) && !hasHandle(text)) << "taken back";
    send(m_view, QEvent::MouseButtonRelease, at(0.3, 0.2));
    send(m_view, QEvent::MouseButtonPress, at(0.9, 0.5));
    EXPECT_FALSE(hasHandle(shape)) << "the photo is held";
    send(m_view, QEvent::MouseButtonRelease, at(0.9, 0.5));
    EXPECT_TRUE(selected().isNull());
}

TEST_F(ViewTest, aNotchOfTheWheelIsATenthAndSidewaysCountsToo)
{
    const auto zoom = [this] { return m_view.interaction().item()->placement.zoom; };
    scroll(m_view, {}, {0, 120});
    EXPECT_NEAR(zoom(), 1.1, 1e-9);
    scroll(m_view, {0, 20}, {0, 960});
    EXPECT_NEAR(zoom(), 1.3, 1e-9) << "pixels where there are any";
    scroll(m_view, {}, {-120, 0});
    EXPECT_NEAR(zoom(), 1.2, 1e-9);
    m_view.setSelectedLayerID(m_item.layers[0].id);
    scroll(m_view, {}, {0, 120});
    EXPECT_NEAR(zoom(), 1.2, 1e-9);
}

TEST_F(ViewTest, keysAndPresses)
{
    QStringList told;
    m_view.interaction().onPrevious = [&] { told.append(u"previous"_s); };
    m_view.interaction().onNext = [&] { told.append(u"next"_s); };
    QUuid edited;
    QObject::connect(&m_view, &CanvasInteractionView::editRequested,
                     [&](QUuid id) { edited = id; });
    m_view.activateWindow();
    m_view.clearFocus();
    send(m_view, QEvent::MouseButtonPress, at(0.3, 0.2), Qt::RightButton);
    EXPECT_FALSE(m_view.hasFocus());
    EXPECT_FALSE(m_view.interaction().dragMode());
    send(m_view, QEvent::MouseButtonPress, at(0.3, 0.2));
    EXPECT_TRUE(m_view.hasFocus());
    EXPECT_EQ(m_view.cursor().shape(), Qt::SizeAllCursor);
    send(m_view, QEvent::MouseMove, at(0.5, 0.2));
    EXPECT_TRUE(type(m_view, Qt::Key_Delete));
    EXPECT_TRUE(type(m_view, Qt::Key_Escape));
    EXPECT_EQ(m_view.interaction().item()->layers[0].frame, CodableRect(0.1, 0.1, 0.5, 0.2));
    send(m_view, QEvent::MouseButtonRelease, at(0.5, 0.2));
    EXPECT_TRUE(selected().isNull());
    EXPECT_FALSE(type(m_view, Qt::Key_Escape)) << "nothing to leave";
    EXPECT_FALSE(type(m_view, Qt::Key_Return));

    send(m_view, QEvent::MouseButtonDblClick, at(0.3, 0.2));
    EXPECT_EQ(edited, m_item.layers[0].id);
    send(m_view, QEvent::MouseButtonPress, at(0.2, 0.8));
    send(m_view, QEvent::MouseButtonRelease, at(0.2, 0.8));
    EXPECT_EQ(selected(), m_item.shapeLayers[0].id);
    EXPECT_FALSE(type(m_view, Qt::Key_F2)) << "a shape has no text";
    EXPECT_TRUE(type(m_view, Qt::Key_Backspace));
    EXPECT_TRUE(m_item.shapeLayers.isEmpty());
    for (const int key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_A})
        type(m_view, key);
    EXPECT_EQ(told, (QStringList{u"previous"_s, u"next"_s}));
    EXPECT_FALSE(type(m_view, Qt::Key_Up));
}

TEST_F(ViewTest, aScreenReaderFindsTheLayersTopmostFirst)
{
    QAccessibleInterface* canvas = QAccessible::queryAccessibleInterface(&m_view);
    ASSERT_EQ(canvas->childCount(), 5);
    QAccessibleInterface* shape = canvas->child(4);
    QAccessibleInterface* title = canvas->child(3);
    EXPECT_EQ(title->text(QAccessible::Name), u"Título: Respira"_s);
    EXPECT_EQ(shape->text(QAccessible::Name), u"Rectángulo"_s);
    EXPECT_TRUE(canvas->child(0)->state().invisible);
    EXPECT_FALSE(title->state().invisible);
    EXPECT_EQ(title->rect().translated(-m_view.mapToGlobal(QPoint())), QRect(80, 90, 200, 100));
    EXPECT_EQ(canvas->childAt(title->rect().center().x(), title->rect().center().y()), title);
    EXPECT_EQ(canvas->indexOfChild(title), 3);

    title->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(selected(), m_item.layers[0].id);
    EXPECT_TRUE(title->state().selected);
    m_item.shapeLayers.append(ShapeLayer(QUuid::createUuid(), ShapeKind::rectangle, {}));
    m_item.shapeLayers.append(ShapeLayer(QUuid::createUuid(), ShapeKind::line, {}));
    m_view.setItem(m_item, SocialFormat::carouselPortrait);
    QStringList shapes;
    for (int i = 4; i < canvas->childCount(); ++i)
        shapes.append(canvas->child(i)->text(QAccessible::Name));
    EXPECT_EQ(shapes, (QStringList{u"Línea"_s, u"Rectángulo 2"_s, u"Rectángulo 1"_s}));
    m_item.shapeLayers.clear();
    m_view.setItem(m_item, SocialFormat::carouselPortrait);
    EXPECT_EQ(canvas->childCount(), 4);
    EXPECT_TRUE(shape->state().invalid);
    EXPECT_EQ(canvas->child(3), title);
}
