#include "canvas/RenderFingerprint.h"

#include "canvas/ExportCanvasRenderer.h"
#include "canvas/ItemLayout.h"
#include "canvas/ItemPainter.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QGlyphRun>
#include <QIODevice>
#include <QMutex>
#include <QRawFont>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QByteArray digestOf(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Blake2b_256);
}

// Collects the bytes to be digested: numbers one after another, the tag of each part before them.
class Description {
public:
    Description() { m_stream.setVersion(QDataStream::Qt_6_4); }

    enum class Part : quint8 { canvas, photo, fill, stroke, shadow, box, glyphs };

    void begin(Part part)
    {
        m_stream << quint8(part);
        ++m_parts;
    }
    void add(double number) { m_stream << (number == 0 ? 0.0 : number); }    // writes -0 as 0
    void add(const QPointF& point)
    {
        add(point.x());
        add(point.y());
    }
    void add(const QRectF& rect)
    {
        add(rect.topLeft());
        add(rect.bottomRight());
    }
    void add(const QRect& rect) { m_stream << rect; }
    // Writes the edges in 32 bits, as a QRect is written, if all of them fit; otherwise in 64 bits.
    void add(const PixelRect& rect)
    {
        const std::array edges{rect.x, rect.y, rect.x + rect.width - 1, rect.y + rect.height - 1};
        const bool fits = std::ranges::all_of(edges, std::in_range<qint32, qint64>);
        for (const qint64 edge : edges)
            fits ? m_stream << qint32(edge) : m_stream << edge;
    }
    void add(quint32 number) { m_stream << number; }
    // Writes 16 bits per channel, not premultiplied, because the painter may use all of them.
    void add(const QColor& color) { m_stream << quint64(color.rgba64()); }
    void add(const QByteArray& bytes) { m_stream << bytes; }
    void add(const QPainterPath& path)
    {
        add(quint32(path.elementCount()));
        for (int i = 0; i < path.elementCount(); ++i) {
            const QPainterPath::Element element = path.elementAt(i);
            add(quint32(element.type));
            add(QPointF(element.x, element.y));
        }
    }

    const QByteArray& bytes() const { return m_bytes; }
    quint32 partCount() const { return m_parts; }

private:
    QByteArray m_bytes;
    QDataStream m_stream{&m_bytes, QIODevice::WriteOnly};
    quint32 m_parts = 0;
};

using Part = Description::Part;

bool isTransparent(const QColor& color)
{
    return color.rgba64().alpha() == 0;
}

// Rounds away the tiny difference between two ways of computing the same position.
double withoutRoundingNoise(double pixels)
{
    constexpr double step = 1e-6;
    return std::round(pixels / step) * step;
}

QPointF withoutRoundingNoise(QPointF point)
{
    return {withoutRoundingNoise(point.x()), withoutRoundingNoise(point.y())};
}

bool isSeen(const QRectF& extent, QSize canvas)
{
    return extent.intersects(QRectF(QPointF(), canvas));
}

void describeShape(Description& description, const LaidOutShape& shape)
{
    // A line has no inside to fill.
    const bool hasInside = shape.source.kind != ShapeKind::line;
    if (!isTransparent(shape.fill) && hasInside) {
        description.begin(Part::fill);
        description.add(shape.fill);
        description.add(shape.outline);
    }
    if (!isTransparent(shape.stroke) && shape.strokeWidth > 0) {
        description.begin(Part::stroke);
        description.add(shape.stroke);
        description.add(shape.strokeWidth);
        if (shape.miterLimit != plainMiterLimit)
            description.add(shape.miterLimit);
        description.add(shape.outline);
    }
}

void describeBox(Description& description, const LaidOutTextLayer& layer, QSize canvas)
{
    const QRectF box = layer.box.normalized();
    if (layer.shadow && !isTransparent(layer.shadow->color) && isSeen(extentOf(layer), canvas)) {
        description.begin(Part::shadow);
        description.add(layer.shadow->color);
        description.add(withoutRoundingNoise(layer.shadow->offset));
        description.add(layer.shadow->sigma);
        description.add(layer.box);
        description.add(layer.cornerRadius);
    }
    if (layer.fill && !isTransparent(*layer.fill) && isSeen(box, canvas)) {
        description.begin(Part::box);
        description.add(quint32(layer.shadow ? 2 : 1));    // number of times the box is filled
        description.add(*layer.fill);
        description.add(layer.box);
        description.add(layer.cornerRadius);
    }
}

// Identifies a font face by its `head` table, which differs between versions of a font with the
// same name. Style and weight are added because Qt slants or thickens a face if the family has no
// italic or bold one.
QByteArray identityOf(const QRawFont& font)
{
    return font.fontTable("head") + font.familyName().toUtf8() + '/' + font.styleName().toUtf8() +
           QByteArray::number(font.style()) + '/' + QByteArray::number(font.weight());
}

// Whether the font draws all its glyphs in their own colours, not in the pen's. A font that also
// has outlines does not count, because it may draw those in the pen's colour.
bool isColoured(const QRawFont& font)
{
    return !font.fontTable("CBLC").isEmpty() && font.fontTable("glyf").isEmpty() &&
           font.fontTable("CFF ").isEmpty();
}

// Digests of the drawn letters of a text. They do not depend on the pen's colour.
struct Letters {
    // `penned` is empty without letters in the pen's colour, `coloured` without letters that have
    // colours of their own.
    QByteArray penned, coloured;
};

QByteArray describedRun(const QGlyphRun& run, const LaidOutTextLayer& layer)
{
    const QRawFont font = run.rawFont();
    QList<quint32> blanks = font.glyphIndexesForString(u" \u00a0"_s);
    blanks.removeAll(0);    // glyph 0 stands for a missing character and is visible
    const QList<quint32> glyphs = run.glyphIndexes();
    const QList<QPointF> positions = run.positions();
    const double scale = layer.text.fontSize() / DesignFont::designPixelSize;
    Description drawn;
    for (qsizetype i = 0; i < glyphs.size(); ++i) {
        if (!blanks.contains(glyphs[i])) {
            drawn.add(glyphs[i]);
            drawn.add(withoutRoundingNoise(layer.textPosition + positions[i] * scale));
        }
    }
    if (drawn.bytes().isEmpty())
        return {};
    Description description;
    description.begin(Part::glyphs);
    description.add(identityOf(font));
    description.add(layer.text.fontSize());
    description.add(drawn.bytes());
    return description.bytes();
}

QByteArray digestOfRuns(QByteArrayList runs)
{
    // Sorts the runs, because QTextLayout returns them in an order that changes from process to
    // process.
    std::ranges::sort(runs);
    const QByteArray all = runs.join();
    return all.isEmpty() ? all : digestOf(all);
}

Letters describedLetters(const LaidOutTextLayer& layer)
{
    QByteArrayList penned, coloured;
    for (const QGlyphRun& run : layer.text.glyphRuns())
        (isColoured(run.rawFont()) ? coloured : penned).append(describedRun(run, layer));
    return {digestOfRuns(penned), digestOfRuns(coloured)};
}

// A rectangle in canvas pixels; drawing the letters changes nothing outside of it. Slanted and
// ornate letters may reach outside usedRect().
QRectF extentOfLetters(const LaidOutTextLayer& layer)
{
    const double overhang = layer.text.fontSize();
    return layer.text.usedRect()
        .translated(layer.textPosition)
        .adjusted(-overhang, -overhang, overhang, overhang);
}

// Lays out an item that has only this text.
ItemLayout layOutAlone(const TextLayer& layer, const RenderSource& source)
{
    PublicationItem item;
    item.layers = {layer};
    return layOut(item, source.outputSize, source.reference);
}

// A digest of everything that decides the letters, except their colour.
QByteArray keyOf(const TextLayer& layer, const RenderSource& source)
{
    Description key;
    for (const double number :
         {layer.fontScale, layer.frame.x, layer.frame.y, layer.frame.width, layer.frame.height,
          source.outputSize.width(), source.outputSize.height(), source.reference.width(),
          source.reference.height()})
        key.add(number);
    key.add(quint32(layer.slot));
    key.add(quint32(layer.alignment));
    key.add(layer.fontName.toUtf8());
    // Adds the text in UTF-16: in UTF-8, all unpaired surrogates would be equal.
    key.add(QByteArray(reinterpret_cast<const char*>(layer.text.utf16()), 2 * layer.text.size()));
    return digestOf(key.bytes());
}

// Caches the letters of recent texts. When m_recent is full, it becomes m_former, and the entries
// of the previous m_former are dropped.
class Memory {
public:
    std::optional<Letters> find(const QByteArray& key)
    {
        const QMutexLocker lock(&m_mutex);
        for (const auto& part : {m_recent, m_former}) {
            if (const auto known = part.constFind(key); known != part.cend())
                return *known;
        }
        return {};
    }
    void keep(const QByteArray& key, const Letters& letters)
    {
        constexpr qsizetype most = 20'000;
        const QMutexLocker lock(&m_mutex);
        if (m_recent.size() >= most)
            m_former = std::exchange(m_recent, {});
        m_recent.insert(key, letters);
    }

private:
    QMutex m_mutex;
    QHash<QByteArray, Letters> m_recent, m_former;
};

// The visible letters of a text. They are cached, because laying out texts takes nearly all the
// time of a fingerprint, and most texts of a batch do not change between edits.
Letters lettersOf(const TextLayer& layer, const RenderSource& source)
{
    static Memory memory;
    const QByteArray key = keyOf(layer, source);
    if (const auto known = memory.find(key))
        return *known;
    const ItemLayout layout = layOutAlone(layer, source);
    Letters letters;
    for (const LaidOutTextLayer& text : layout.texts) {
        if (isSeen(extentOfLetters(text), layout.canvas))
            letters = describedLetters(text);
    }
    memory.keep(key, letters);
    return letters;
}

QString inHexadecimal(const QByteArray& digest)
{
    return QString::fromLatin1(digest.toHex());
}

// A copy of the item with empty texts; their boxes stay where they are.
PublicationItem withoutWords(PublicationItem item)
{
    for (TextLayer& layer : item.layers)
        layer.text.clear();
    return item;
}

// Computes a fingerprint in two steps: the ground, which is everything but the letters, then the
// letters.
class Fingerprint {
public:
    explicit Fingerprint(const RenderSource& source) : m_source(source)
    {
        const ItemLayout layout =
            layOut(withoutWords(source.item), source.outputSize, source.reference);
        Description ground;
        ground.begin(Part::canvas);
        ground.add(quint32(rendererVersion));
        ground.add(QRect(QPoint(), layout.canvas));
        const auto place = photoPlace(layout, layout.canvas);
        if (place && !place->shown.isEmpty()) {
            ground.begin(Part::photo);
            ground.add(source.photoDigest);
            ground.add(quint32(ExportCanvasRenderer::photoLevel(
                source.item.image, source.item.placement, source.outputSize)));
            ground.add(place->whole);
        }
        for (const LaidOutShape& shape : layout.shapes) {
            if (isSeen(extentOf(shape), layout.canvas))
                describeShape(ground, shape);
        }
        for (const LaidOutTextLayer& layer : layout.texts) {
            describeBox(ground, layer, layout.canvas);
            m_partsBelow.append(ground.partCount());
        }
        m_ground = u"render-"_s + inHexadecimal(digestOf(ground.bytes()).first(16));
    }

    const QString& ground() const { return m_ground; }
    QString whole() const
    {
        Description words;
        qsizetype visible = 0;
        for (const TextLayer& layer : m_source.item.layers) {
            if (!layer.isVisible)
                continue;
            const quint32 below = m_partsBelow[visible++];
            const Letters letters = lettersOf(layer, m_source);
            const QColor pen = layer.foreground.color();
            if (!letters.penned.isEmpty() && !isTransparent(pen)) {
                words.add(below);
                words.add(pen);
                words.add(letters.penned);
            }
            if (!letters.coloured.isEmpty()) {
                words.add(below);
                words.add(letters.coloured);
            }
        }
        return m_ground + u'-' + inHexadecimal(digestOf(words.bytes()).first(16));
    }

private:
    const RenderSource& m_source;
    QString m_ground;
    // For each visible text layer, the number of parts of the ground that are painted before its
    // letters.
    QList<quint32> m_partsBelow;
};

}    // namespace

QString renderFingerprint(const RenderSource& source)
{
    return Fingerprint(source).whole();
}

bool isRenderAmong(const QSet<QString>& fingerprints, const RenderSource& source)
{
    if (fingerprints.isEmpty())
        return false;
    const Fingerprint fingerprint(source);
    const bool mayBe = std::ranges::any_of(
        fingerprints, [&](const QString& known) { return known.startsWith(fingerprint.ground()); });
    return mayBe && fingerprints.contains(fingerprint.whole());
}

QString pixelFingerprint(const QByteArray& png)
{
    return u"pixels-"_s + inHexadecimal(digestOf(png));
}
