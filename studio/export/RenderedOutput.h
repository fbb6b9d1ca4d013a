#pragma once

#include "account/CreditAmounts.h"
#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

#include <functional>
#include <optional>
#include <variant>

class PhotoCache;

// Price of an unpaid render, in credits.
inline constexpr qint64 exportCreditCost = creditsOfAnExport;

// Gives the size of an exported picture in pixels.
using OutputSize = std::function<QSizeF(SocialFormat)>;
inline QSizeF exportSizeOf(SocialFormat format)
{
    return exportSize(format);
}

// A rendered picture in a PNG file.
struct RenderedOutput {
    PublicationItem item;    // as it was when rendered
    QString file;
    QString fingerprint;    // renderFingerprint() of item, photo and size
    QString pixels;         // pixelFingerprint() of the picture
};

enum class RenderFailure {
    photo,    // the photo is gone, has changed since its import, or cannot be read
    file,     // the picture's file cannot be written
};

// Renders an item into `file`, or returns why that failed. Takes long: call it on a worker thread.
std::variant<RenderedOutput, RenderFailure> renderedOutput(const PublicationItem& item,
                                                           SocialFormat format,
                                                           const OutputSize& outputSize,
                                                           PhotoCache& photos, const QString& file);

// Request identifier of a charge: equal for the same action on the same outputs in any order.
QString creditRequestID(const QList<RenderedOutput>& outputs, const QString& action);

// Returns `content`, the digest of the photo's file now, if the photo can still be rendered; empty
// if the file is gone or has changed since the import.
std::optional<QByteArray> usableContent(const PhotoHandle& photo,
                                        const std::optional<QByteArray>& content);
