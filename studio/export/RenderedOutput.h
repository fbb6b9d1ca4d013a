#pragma once

#include "model/PublicationItem.h"
#include "model/SocialFormat.h"

#include <functional>
#include <optional>
#include <variant>

class PhotoCache;

inline constexpr qint64 exportCreditCost = 50;    // of a render that is not paid for

// Pixels of an exported picture.
using OutputSize = std::function<QSizeF(SocialFormat)>;
inline QSizeF exportSizeOf(SocialFormat format)
{
    return exportSize(format);
}

// A finished picture, encoded, in a file of its own.
struct RenderedOutput {
    PublicationItem item;    // as rendered
    QString file;
    QString fingerprint;    // of what it was made of
    QString pixels;         // of what came out
};

enum class RenderFailure {
    photo,    // is gone, was changed since it came into the batch, or cannot be read
    file,     // cannot be written
};

// Or why there is none. Waits.
std::variant<RenderedOutput, RenderFailure> renderedOutput(const PublicationItem& item,
                                                           SocialFormat format,
                                                           const OutputSize& outputSize,
                                                           PhotoCache& photos, const QString& file);

// Names one payment: for the same action on the same outputs, in any order, always the same.
QString creditRequestID(const QList<RenderedOutput>& outputs, const QString& action);

// The digest of an item's photo; nothing when it cannot be rendered as it stands. `content`: of the
// file by now.
std::optional<QByteArray> usableContent(const PhotoHandle& photo,
                                        const std::optional<QByteArray>& content);
