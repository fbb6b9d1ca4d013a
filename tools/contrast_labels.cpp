// Measures how often the warning about low contrast agrees with the human eye.
//
//     contrast_labels LABELS PHOTOS [--crops DIR] [--tile PIXELS]
//
// Each entry of the file LABELS puts one text on a photo of the folder PHOTOS, and says whether a
// person could read it at the size of a telephone: every word at a glance, nothing washed out. The
// entries marked as held out were not used to choose the measure of contrast. With --crops, the
// program only saves a picture of each text at half the export size, for a person to label. Fails
// if the warning agrees with fewer than nine of ten labels.

#include "canvas/ExportCanvasRenderer.h"
#include "canvas/TextWarnings.h"
#include "platform/photo/PhotoCache.h"

#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

struct Label {
    QString photo;    // file name
    SocialFormat format = SocialFormat::square;
    TextLayer text;
    std::optional<bool> readable;
    bool heldOut = false;
};

Label labelFrom(const QJsonObject& entry)
{
    Label label;
    label.photo = entry["photo"_L1].toString();
    label.format = fromTemplateKey(entry["format"_L1].toString()).value_or(SocialFormat::square);
    const QJsonArray frame = entry["frame"_L1].toArray();
    const CopySlot slot =
        fromStored<CopySlot>(entry["slot"_L1].toString()).value_or(CopySlot::title);
    label.text = TextLayer(
        QUuid::createUuid(), slot, entry["text"_L1].toString(), true,
        {frame[0].toDouble(), frame[1].toDouble(), frame[2].toDouble(), frame[3].toDouble()});
    label.text.fontScale = entry["size"_L1].toDouble(1);
    label.text.foreground = CodableColor(QColor(entry["color"_L1].toString()));
    label.text.shadowOpacity = 0;
    label.text.hasBox = entry.contains("box"_L1);
    label.text.background = CodableColor(QColor(entry["box"_L1].toString()));
    label.text.backgroundOpacity = entry["boxOpacity"_L1].toDouble();
    if (entry.contains("readable"_L1))
        label.readable = entry["readable"_L1].toBool();
    label.heldOut = entry["heldOut"_L1].toBool();
    return label;
}

PublicationItem itemOf(const Label& label, const AcceptedPhoto& photo, const QString& path)
{
    PublicationItem item = PublicationItem::make(
        QUrl::fromLocalFile(path), {path, photo.info.size, photo.info.reducible, photo.digest});
    item.layers = {label.text};
    return item;
}

// Saves a picture of the text with some of its surroundings.
bool writeCrop(const PublicationItem& item, SocialFormat format, const QString& file)
{
    const auto picture = ExportCanvasRenderer::bitmap(item, exportSize(format), designSize(format));
    if (!picture)
        return false;
    const QSize half = designSize(format).toSize();
    const CodableRect& frame = item.layers.first().frame;
    const QRect place = QRectF(frame.x * half.width(), frame.y * half.height(),
                               frame.width * half.width(), frame.height * half.height())
                            .toAlignedRect()
                            .adjusted(-30, -30, 30, 30);
    return picture->scaled(half, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .copy(place.intersected(QRect(QPoint(), half)))
        .save(file);
}

struct Score {
    int agreed = 0, all = 0;
    void add(bool agrees)
    {
        ++all;
        agreed += agrees;
    }
};

}    // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption crops(u"crops"_s, u"folder for a picture of each text"_s, u"dir"_s);
    const QCommandLineOption tile(u"tile"_s, u"width of the judged pictures in pixels"_s,
                                  u"pixels"_s, u"88"_s);
    parser.addOptions({crops, tile});
    parser.addPositionalArgument(u"labels"_s, u"file of labelled texts"_s);
    parser.addPositionalArgument(u"photos"_s, u"folder of photographs"_s);
    parser.addHelpOption();
    parser.process(application);
    if (parser.positionalArguments().size() != 2)
        parser.showHelp(2);
    QFile file(parser.positionalArguments().first());
    const QDir photos(parser.positionalArguments().last());
    const int width = std::clamp(parser.value(tile).toInt(), 8, 4000);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s cannot be read\n", qPrintable(file.fileName()));
        return 1;
    }
    if (parser.isSet(crops) && !QDir().mkpath(parser.value(crops))) {
        std::fprintf(stderr, "%s cannot be made\n", qPrintable(parser.value(crops)));
        return 1;
    }
    const QTemporaryDir own;
    PhotoCache cache(own.filePath(u"thumbnails"_s));
    Score tuned, heldOut;
    int number = 0;
    for (const auto& entry : QJsonDocument::fromJson(file.readAll()).array()) {
        const Label label = labelFrom(entry.toObject());
        const QString path = photos.filePath(label.photo);
        const auto photo = cache.accept(path);
        if (!photo) {
            std::fprintf(stderr, "%s cannot be read\n", qPrintable(path));
            return 1;
        }
        const PublicationItem item = itemOf(label, *photo, path);
        ++number;
        if (parser.isSet(crops)) {
            const QString crop =
                QDir(parser.value(crops)).filePath(u"%1.png"_s.arg(number, 2, 10, QChar(u'0')));
            if (!writeCrop(item, label.format, crop)) {
                std::fprintf(stderr, "%s cannot be written\n", qPrintable(crop));
                return 1;
            }
            continue;
        }
        const ItemLayout layout = layOut(item, exportSize(label.format), designSize(label.format));
        const QSize pixels(width, qRound(width / row(label.format).aspectRatio));
        const QList<TextWarning> warnings =
            judgedItem(layout, pixels, cache.thumbnail({path, photo->digest})).warnings;
        const bool isMarked = !warnings.isEmpty() && warnings.first().contrast;
        const bool agrees = label.readable && isMarked != *label.readable;
        (label.heldOut ? heldOut : tuned).add(agrees);
        std::printf("%2d %s %-12s %s%s\n", number, agrees ? "      " : "DIFFER",
                    qPrintable(label.photo), isMarked ? "marked " : "",
                    isMarked ? qPrintable(QString::number(*warnings.first().contrast)) : "");
    }
    if (number == 0) {
        std::fprintf(stderr, "%s holds no labels\n", qPrintable(file.fileName()));
        return 1;
    }
    if (parser.isSet(crops))
        return 0;
    const int agreed = tuned.agreed + heldOut.agreed, all = tuned.all + heldOut.all;
    std::printf("tuned %d of %d, held out %d of %d, together %d of %d\n", tuned.agreed, tuned.all,
                heldOut.agreed, heldOut.all, agreed, all);
    return 10 * agreed >= 9 * all ? 0 : 1;
}
