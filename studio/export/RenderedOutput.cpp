#include "studio/export/RenderedOutput.h"

#include "canvas/ExportCanvasRenderer.h"
#include "canvas/PngEncoder.h"
#include "canvas/RenderFingerprint.h"
#include "platform/AtomicFile.h"
#include "platform/photo/PhotoCache.h"

#include <QCryptographicHash>

using namespace Qt::StringLiterals;

std::optional<QByteArray> usableContent(const PhotoHandle& photo,
                                        const std::optional<QByteArray>& content)
{
    const bool isSame = content && (photo.digest.isEmpty() || photo.digest == *content);
    return isSame ? content : std::nullopt;
}

std::variant<RenderedOutput, RenderFailure> renderedOutput(const PublicationItem& item,
                                                           SocialFormat format,
                                                           const OutputSize& outputSize,
                                                           PhotoCache& photos, const QString& file)
{
    const auto content = usableContent(item.image, photos.digestOf(item.image.path));
    if (!content)
        return RenderFailure::photo;
    // Holds the decoded photo's share of the memory for decoding while the item is drawn.
    std::shared_ptr<const void> share;
    const auto decoded = [&](const PhotoHandle& photo, PhotoLevel level) {
        const auto picture = decodePhoto(
            photo.path, [level](const PhotoInfo&) { return level; }, *content);
        if (!picture)
            return QImage();
        share = picture->share;
        return picture->image;
    };
    const QSizeF size = outputSize(format);
    const auto picture = ExportCanvasRenderer::bitmap(item, size, designSize(format), decoded);
    share.reset();
    const QByteArray png = picture ? encodePng(*picture) : QByteArray();
    if (png.isEmpty())
        return RenderFailure::photo;
    if (!writeAtomically(file, png).isEmpty())
        return RenderFailure::file;
    return RenderedOutput{item, file, renderFingerprint({item, *content, size, designSize(format)}),
                          pixelFingerprint(png)};
}

QString creditRequestID(const QList<RenderedOutput>& outputs, const QString& action)
{
    QStringList parts;
    for (const RenderedOutput& output : outputs)
        parts.append(output.item.id.toString() + output.fingerprint);
    parts.sort();
    const QByteArray digest =
        QCryptographicHash::hash(parts.join(u'\n').toUtf8(), QCryptographicHash::Blake2b_256);
    return u"moltiva_render_%1_%2"_s.arg(action, QString::fromLatin1(digest.toHex()));
}
