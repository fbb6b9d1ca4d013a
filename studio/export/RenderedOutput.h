#pragma once

#include "account/CreditAmounts.h"
#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

#include <functional>
#include <optional>
#include <variant>

class PhotoCache;

inline constexpr qint64 exportCreditCost =
    creditsOfAnExport;    // price of a render that is not paid

// Size of an exported picture in pixels.
using OutputSize = std::function<QSizeF(SocialFormat)>;
inline QSizeF exportSizeOf(SocialFormat format)
{
    return exportSize(format);
}

// A rendered picture in a PNG file.
struct RenderedOutput {
    PublicationItem item;    // the item that was rendered
    QString file;
    QString fingerprint;    // of the ingredients: item, format and photo
    QString pixels;         // digest of the rendered pixels
};

enum class RenderFailure {
    photo,    // is gone, was changed since it came into the batch, or cannot be read
    file,     // cannot be written
};

// Renders an item into `file`; takes long, so call it on a worker. Returns the reason if it fails.
std::variant<RenderedOutput, RenderFailure> renderedOutput(const PublicationItem& item,
                                                           SocialFormat format,
                                                           const OutputSize& outputSize,
                                                           PhotoCache& photos, const QString& file);

// Request identifier of a charge: equal for the same action on the same outputs in any order.
QString creditRequestID(const QList<RenderedOutput>& outputs, const QString& action);

// The digest of the photo's file; empty when it cannot be rendered as it is. `content`: digest of
// the file now.
std::optional<QByteArray> usableContent(const PhotoHandle& photo,
                                        const std::optional<QByteArray>& content);
