#pragma once

#include <QBuffer>
#include <QColor>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QTemporaryDir>
#include <QtEndian>

// A picture of four plain quarters, which looks different in each of the eight orientations.
inline QImage quarters(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    const int x = size.width() / 2, y = size.height() / 2;
    painter.fillRect(0, 0, x, y, Qt::red);
    painter.fillRect(x, 0, size.width() - x, y, Qt::green);
    painter.fillRect(0, y, x, size.height() - y, Qt::blue);
    painter.fillRect(x, y, size.width() - x, size.height() - y, Qt::white);
    return image;
}

inline QByteArray encoded(const QImage& image, const char* format, int quality = 95)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    return writer.write(image) ? bytes : QByteArray();
}

inline QByteArray progressiveJpeg(QSize size)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setProgressiveScanWrite(true);
    writer.write(quarters(size));
    return bytes;
}

// EXIF data that contain only the orientation.
inline QByteArray orientationExif(int orientation)
{
    QByteArray exif("MM\0\x2A\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\0\0\0\0\0\0\0", 26);
    exif[19] = char(orientation);
    return exif;
}

inline QByteArray turnedJpeg(const QByteArray& jpeg, int orientation)
{
    const QByteArray body = QByteArray("Exif\0\0", 6) + orientationExif(orientation);
    QByteArray length(2, 0);
    qToBigEndian(quint16(body.size() + 2), length.data());
    return jpeg.left(2) + "\xFF\xE1" + length + body + jpeg.mid(2);
}

// The WebP `webp`, put into an extended container with an EXIF orientation.
inline QByteArray turnedWebp(const QByteArray& webp, QSize size, int orientation)
{
    const auto number = [](quint32 value, int bytes) {
        const quint32 little = qToLittleEndian(value);
        return QByteArray(reinterpret_cast<const char*>(&little), bytes);
    };
    const QByteArray exif = orientationExif(orientation);
    const QByteArray body = "WEBPVP8X" + number(10, 4) + number(8, 4) +
                            number(quint32(size.width() - 1), 3) +
                            number(quint32(size.height() - 1), 3) + webp.mid(12) + "EXIF" +
                            number(quint32(exif.size()), 4) + exif;
    return "RIFF" + number(quint32(body.size()), 4) + body;
}

// The JPEG with `size` written into its header in place of its own.
inline QByteArray announcing(QByteArray jpeg, QSize size)
{
    const qsizetype frame = std::max(jpeg.indexOf(QByteArray("\xFF\xC0\0\x11", 4)),
                                     jpeg.indexOf(QByteArray("\xFF\xC2\0\x11", 4)));
    qToBigEndian(quint16(size.height()), jpeg.data() + frame + 5);
    qToBigEndian(quint16(size.width()), jpeg.data() + frame + 7);
    return jpeg;
}

inline QString written(const QTemporaryDir& folder, const QString& name, const QByteArray& bytes)
{
    QFile file(folder.filePath(name));
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
    return file.fileName();
}

// The mean difference of the channels, 0..255; 255 for pictures of different sizes.
inline double meanDifference(const QImage& one, const QImage& other)
{
    if (one.size() != other.size() || one.isNull())
        return 255;
    const QImage a = one.convertToFormat(QImage::Format_RGB32);
    const QImage b = other.convertToFormat(QImage::Format_RGB32);
    qint64 sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        const auto* const rowA = reinterpret_cast<const QRgb*>(a.constScanLine(y));
        const auto* const rowB = reinterpret_cast<const QRgb*>(b.constScanLine(y));
        for (int x = 0; x < a.width(); ++x)
            sum += std::abs(qRed(rowA[x]) - qRed(rowB[x])) +
                   std::abs(qGreen(rowA[x]) - qGreen(rowB[x])) +
                   std::abs(qBlue(rowA[x]) - qBlue(rowB[x]));
    }
    return double(sum) / (3.0 * a.width() * a.height());
}
