#include "account/PublishRequest.h"

#include <QFile>
#include <QScopeGuard>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView emptyData = "\"dataBase64\":\"\"";
constexpr qint64 imagePiece = 48 * 1024;    // a multiple of 3, so that base64 can be joined

qint64 base64Size(qint64 bytes)
{
    return (bytes + 2) / 3 * 4;
}

// The JSON of the request in pieces: the bytes of image i belong between pieces i and i + 1. Texts
// in the JSON cannot contain `emptyData`, because their quotation marks are escaped.
QList<QByteArray> piecesOf(const SocialPublishRequest& request)
{
    const QByteArray json = toWire(request);
    QList<QByteArray> pieces;
    qsizetype from = 0;
    for (qsizetype at = json.indexOf(emptyData); at >= 0; at = json.indexOf(emptyData, from)) {
        const qsizetype end = at + emptyData.size() - 1;    // before the closing quotation mark
        pieces.append(json.mid(from, end - from));
        from = end;
    }
    pieces.append(json.mid(from));
    return pieces;
}

bool copyAsBase64(QFile& image, QFile& to, const std::stop_token& stop)
{
    QByteArray piece(imagePiece, Qt::Uninitialized);
    while (!stop.stop_requested()) {
        // A read may return less than it was asked for although the file goes on.
        qint64 filled = 0, count = 0;
        while (filled < imagePiece &&
               (count = image.read(piece.data() + filled, imagePiece - filled)) > 0)
            filled += count;
        if (count < 0 || filled == 0)
            return count == 0;
        const QByteArray text = QByteArrayView(piece).first(filled).toByteArray().toBase64();
        if (to.write(text) != text.size())
            return false;
    }
    return false;
}

WrittenPublishRequest failed(const QFile& file)
{
    WrittenPublishRequest result;
    result.problem = file.errorString();
    return result;
}

}    // namespace

qint64 sizeOfPublishRequest(const SocialPublishRequest& request, const QList<qint64>& images)
{
    qint64 bytes = toWire(request).size();
    for (const qint64 image : images)
        bytes += base64Size(image);
    return bytes;
}

WrittenPublishRequest writePublishRequest(const SocialPublishRequest& request,
                                          const QStringList& files, const QString& path,
                                          std::stop_token stop)
{
    const QList<QByteArray> pieces = piecesOf(request);
    Q_ASSERT(pieces.size() == files.size() + 1);
    QFile to(path);
    if (!to.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner))
        return failed(to);
    auto discard = qScopeGuard([&] { to.remove(); });
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        if (to.write(pieces[i]) != pieces[i].size())
            return failed(to);
        if (i == files.size())
            break;
        QFile image(files[i]);
        if (!image.open(QIODevice::ReadOnly))
            return failed(image);
        if (!copyAsBase64(image, to, stop)) {
            WrittenPublishRequest result = failed(to.error() == QFile::NoError ? image : to);
            result.isStopped = stop.stop_requested();
            return result;
        }
    }
    if (!to.flush())
        return failed(to);
    discard.dismiss();
    return {.bytes = to.size(), .problem = {}};
}
