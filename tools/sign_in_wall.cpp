// Paints the picture beside the sign-in form, which shows columns of posts.
//
//     sign_in_wall OUT.jpg PHOTOS
//
// To be run by hand when the designs or the photographs change. The program uses the copy in
// resources/pictures.

#include "canvas/ExportCanvasRenderer.h"
#include "canvas/ItemPainter.h"
#include "platform/photo/PhotoCache.h"
#include "templates/BuiltInTemplateLibrary.h"

#include <QDir>
#include <QGuiApplication>
#include <QImageWriter>
#include <QPainter>
#include <QPainterPath>
#include <QTemporaryDir>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

// Sizes in logical pixels of a window of 1440 x 900. The picture has `ratio` pixels per logical
// pixel.
constexpr QSize wall(896, 900);
constexpr double ratio = 1.5, gap = 14, radius = 8;
constexpr int quality = 82;
// Negative, so that the window cuts off the first post of each column.
constexpr std::array columnTops{-182.0, -12.0, -196.0};

struct Post {
    QStringView photo, design;
    GeneratedCopy copy;
};

GeneratedCopy copy(const QString& title, const QString& subtitle, const QString& tagline,
                   const QString& callToAction)
{
    return {title, subtitle, tagline, callToAction, {}, {}};
}

// The posts of the wall by column, from top to bottom.
QList<QList<Post>> posts()
{
    return {
        {{u"photo-03.jpg", u"Precio",
          copy(u"Del mercado a tu cocina"_s, u"Especias recién molidas cada mañana."_s,
               u"Envío gratis"_s, u"Comprar"_s)},
         {u"photo-02.jpg", u"Cordillera",
          copy(u"Respira junto al lago"_s, u"Cabañas con chimenea, a un paso del sendero."_s,
               u"Desde dos noches"_s, u"Reserva ahora"_s)},
         {u"photo-06.jpg", u"Mínima",
          copy(u"Visita guiada"_s, u"Sábados a las once."_s, u"Plazas limitadas"_s,
               u"Apúntate"_s)}},
        {{u"photo-12.jpg", u"Página",
          copy(u"El bosque te espera"_s, u"Rutas al amanecer, para grupos de hasta ocho."_s,
               u"Desde 18 € por persona"_s, u"Ver rutas"_s)},
         {u"photo-09.jpg", u"Colina",
          copy(u"Cierra el portátil"_s, u"Dos noches bastan para volver a empezar."_s,
               u"Todo el otoño"_s, u"Reserva"_s)},
         {u"photo-01.jpg", u"Ficha",
          copy(u"Vecinas del río"_s, u"Ven a conocerlas."_s, u"Para toda la familia"_s,
               u"Ver horarios"_s)}},
        {{u"photo-11.jpg", u"Clásica",
          copy(u"Quédate al atardecer"_s, u"Cenas junto al agua, todos los viernes."_s,
               u"Plazas limitadas"_s, u"Pide mesa"_s)},
         {u"photo-05.jpg", u"Banda",
          copy(u"Huele a lavanda"_s, u"Jabones y aceites de nuestra cosecha."_s, u"Hecho a mano"_s,
               u"Ver tienda"_s)},
         {u"photo-04.jpg", u"Arco",
          copy(u"Canta el cañón"_s, u"Paseos para escuchar aves."_s, u"Con guía"_s,
               u"Ver fechas"_s)}},
    };
}

QImage painted(const Post& post, const QString& path, QSize size, PhotoCache& photos)
{
    const auto accepted = photos.accept(path);
    if (!accepted)
        return {};
    PublicationItem item = PublicationItem::make(
        QUrl::fromLocalFile(path),
        {path, accepted->info.size, accepted->info.reducible, accepted->digest});
    item.layers = PublicationItem::defaultLayers(post.copy);
    constexpr SocialFormat format = SocialFormat::carouselPortrait;
    const auto designs = BuiltInTemplateLibrary().definitions(format);
    const auto design =
        std::ranges::find(designs, post.design, &JSONVisualTemplateDefinition::name);
    if (design == designs.end())
        return {};
    design->application()(item);
    const QImage photo =
        photos.proxy({item.image.path, item.image.digest},
                     ExportCanvasRenderer::photoLevel(item.image, item.placement, size));
    return paintedItem(layOut(item, exportSize(format), designSize(format)), size, photo);
}

}    // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("sign_in_wall OUT.jpg PHOTOS\n", stderr);
        return 2;
    }
    const QTemporaryDir cache;
    PhotoCache photos(cache.path());
    QImage picture(wall * ratio, QImage::Format_RGB32);
    picture.fill(QColor(0x0C0D0F));
    QPainter painter(&picture);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter.scale(ratio, ratio);
    const QList<QList<Post>> columns = posts();
    const double width = (wall.width() - gap * double(columns.size() + 1)) / double(columns.size());
    const QSizeF post(width, width / row(SocialFormat::carouselPortrait).aspectRatio);
    for (int column = 0; column < columns.size(); ++column) {
        QPointF at(gap + column * (width + gap), columnTops[std::size_t(column)]);
        for (const Post& shown : columns[column]) {
            const QImage image = painted(shown, QDir(arguments[2]).filePath(shown.photo.toString()),
                                         (post * ratio).toSize(), photos);
            if (image.isNull()) {
                std::fprintf(stderr, "%s\n", qPrintable(shown.photo.toString()));
                return 1;
            }
            QPainterPath corners;
            corners.addRoundedRect(QRectF(at, post), radius, radius);
            painter.setClipPath(corners);
            painter.drawImage(QRectF(at, post), image);
            at.ry() += post.height() + gap;
        }
    }
    painter.end();
    QImageWriter writer(arguments[1]);
    writer.setQuality(quality);
    writer.setOptimizedWrite(true);
    writer.setProgressiveScanWrite(true);
    return writer.write(picture) ? 0 : 1;
}
