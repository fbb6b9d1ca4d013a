#include "tools/ContactSheets.h"

#include "canvas/ExportCanvasRenderer.h"
#include "canvas/ItemPainter.h"
#include "platform/photo/PhotoCache.h"
#include "studio/PhotoFolder.h"
#include "templates/BuiltInTemplateLibrary.h"

#include <QPainter>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

constexpr int photosShown = 6, gap = 16;
// Area of one post in pixels, such that three fit side by side on a screen.
constexpr double postArea = 560.0 * 560.0;

// Sample texts: short, usual and long ones.
const QList<GeneratedCopy>& copies()
{
    static const QString none;
    static const QList<GeneratedCopy> list{
        {u"Respira"_s, u"Un fin de semana sin prisa en la montaña."_s,
         u"Casas rurales con chimenea"_s, u"Reserva ahora"_s, none, none},
        {u"El bosque te espera"_s, u"Rutas guiadas al amanecer, para grupos de hasta ocho."_s,
         u"Desde 18 € por persona"_s, u"Ver rutas"_s, none, none},
        {u"Especias recién molidas, del mercado a tu cocina"_s,
         u"Más de cuarenta mezclas preparadas cada mañana por nuestro equipo."_s,
         u"Envío gratis a partir de 30 €"_s, u"Comprar"_s, none, none},
        {u"Quédate al atardecer"_s, u"Cenas junto al lago, todos los viernes de octubre."_s,
         u"Plazas limitadas"_s, u"Pide mesa"_s, none, none},
        {u"Ellos también vienen de vacaciones"_s,
         u"Alojamientos que admiten perros, sin sorpresas."_s,
         u"Perros bienvenidos, sin suplemento"_s, u"Descubre más"_s, none, none},
        {u"–20 % esta semana"_s, u"Y la segunda noche, de regalo."_s,
         u"Hasta el domingo 30 de noviembre"_s, u"Ver más"_s, none, none},
    };
    return list;
}

QList<PublicationItem> itemsOf(const QString& photoFolder, PhotoCache& photos)
{
    QList<PublicationItem> items;
    for (const QUrl& url : photosInFolder(photoFolder)) {
        const auto accepted = photos.accept(url.toLocalFile());
        if (!accepted)
            continue;
        PublicationItem item =
            PublicationItem::make(url, {url.toLocalFile(), accepted->info.size,
                                        accepted->info.reducible, accepted->digest});
        item.analysis = copies()[items.size() % copies().size()];
        item.layers = PublicationItem::defaultLayers(item.analysis);
        items.append(item);
        if (items.size() == photosShown)
            break;
    }
    return items;
}

}    // namespace

bool makeContactSheets(const QDir& out, const QString& photoFolder, const QString& definitionFolder)
{
    const QTemporaryDir cache;
    PhotoCache photos(cache.path());
    const QList<PublicationItem> items = itemsOf(photoFolder, photos);
    const BuiltInTemplateLibrary library(definitionFolder);
    bool made = !items.isEmpty();
    for (const SocialFormat format : allCases<SocialFormat>()) {
        const double ratio = row(format).aspectRatio;
        const QSize post(qRound(std::sqrt(postArea * ratio)), qRound(std::sqrt(postArea / ratio)));
        const int columns = ratio < 0.7 ? 6 : 3;
        const int rows = (int(items.size()) + columns - 1) / columns;
        for (const JSONVisualTemplateDefinition& design : library.definitions(format)) {
            QImage sheet(columns * (post.width() + gap) + gap, rows * (post.height() + gap) + gap,
                         QImage::Format_RGB32);
            sheet.fill(QColor(0x808080));
            QPainter painter(&sheet);
            const TemplateApplication apply = design.application();
            for (int i = 0; i < items.size(); ++i) {
                PublicationItem item = items[i];
                apply(item);
                const QImage photo = photos.proxy(
                    {item.image.path, item.image.digest},
                    ExportCanvasRenderer::photoLevel(item.image, item.placement, post));
                painter.drawImage(
                    gap + i % columns * (post.width() + gap),
                    gap + i / columns * (post.height() + gap),
                    paintedItem(layOut(item, exportSize(format), designSize(format)), post, photo));
            }
            painter.end();
            made &= sheet.save(out.filePath(
                u"%1-%2-%3.png"_s.arg(row(format).templateKey.toString(),
                                      QString::number(design.order).rightJustified(2, u'0'),
                                      QString(design.name).replace(u' ', u'-').toLower())));
        }
    }
    return made;
}
