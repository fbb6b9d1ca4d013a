#include "studio/publish/FileToSend.h"

#include "canvas/PngEncoder.h"
#include "platform/AtomicFile.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool isOpaque(const QImage& picture)
{
    const QImage pixels = picture.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < pixels.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        if (std::any_of(row, row + pixels.width(), [](QRgb pixel) { return qAlpha(pixel) < 255; }))
            return false;
    }
    return true;
}

}    // namespace

QString fileToSend(const QString& file, qint64 mostBytes)
{
    const qint64 bytes = QFileInfo(file).size();
    if (bytes <= mostBytes)
        return file;
    const QImage picture(file);
    if (picture.isNull() || !isOpaque(picture))
        return file;
    const QByteArray png = encodeSmallPng(picture.convertToFormat(QImage::Format_RGB32));
    const QString smaller = file + u".small"_s;
    const bool isSmaller =
        !png.isEmpty() && png.size() < bytes && writeAtomically(smaller, png).isEmpty();
    return isSmaller ? smaller : file;
}
