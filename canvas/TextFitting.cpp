#include "canvas/TextFitting.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QHash>
#include <QMutex>
#include <QRawFont>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double smallestType = 8, largestType = 128;    // design units
constexpr double fitTolerance = 0.5;                     // canvas pixels, for width and height each

// The type of a slot. Its font size is the smaller of heightShare · height and widthShare · width
// of the text's area. Its weight applies to the system font.
struct SlotType {
    CopySlot slot;
    double heightShare, widthShare;
    QFont::Weight weight;
};
constexpr std::array slotTypes{
    SlotType{CopySlot::title, 0.42, 0.13, QFont::Black},
    SlotType{CopySlot::subtitle, 0.34, 0.075, QFont::DemiBold},
    SlotType{CopySlot::tagline, 0.42, 0.08, QFont::DemiBold},
    SlotType{CopySlot::callToAction, 0.42, 0.085, QFont::Bold},
};
static_assert(std::ranges::all_of(slotTypes, [](const SlotType& type) {
    return &slotTypes[std::size_t(type.slot)] == &type;
}));

const SlotType& typeOf(CopySlot slot)
{
    return slotTypes[std::size_t(slot)];
}

QFont atDesignSize(QFont font)
{
    font.setPixelSize(DesignFont::designPixelSize);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QString withoutSpaces(QStringView text)
{
    return text.toString().remove(u' ').toCaseFolded();
}

struct FaceStyle {
    int weight = QFont::Normal;
    bool italic = false;
    bool operator==(const FaceStyle&) const = default;
};

// The style that an English style name describes; nothing for unknown words. `words` is in lower
// case and has no spaces: "semibolditalic".
std::optional<FaceStyle> faceStyle(const QString& words)
{
    struct Word {
        QStringView word;
        int weight;
    };
    static constexpr std::array weights{
        Word{u"", QFont::Normal},           Word{u"regular", QFont::Normal},
        Word{u"thin", QFont::Thin},         Word{u"extralight", QFont::ExtraLight},
        Word{u"light", QFont::Light},       Word{u"medium", QFont::Medium},
        Word{u"semibold", QFont::DemiBold}, Word{u"demibold", QFont::DemiBold},
        Word{u"bold", QFont::Bold},         Word{u"extrabold", QFont::ExtraBold},
        Word{u"black", QFont::Black},
    };
    QString weight = words;
    const bool italic = weight.endsWith(u"italic"_s) || weight.endsWith(u"oblique"_s);
    weight.remove(u"italic"_s).remove(u"oblique"_s);
    const auto known = std::ranges::find(weights, weight, &Word::word);
    return known == weights.end() ? std::nullopt : std::optional(FaceStyle{known->weight, italic});
}

// The installed style named `wanted`, or else one with the weight and slant that `wanted`
// describes. The system may list styles in the user's language, but a stored English name must find
// the same style in every language.
std::optional<QString> styleNamed(const QString& family, const QString& wanted)
{
    const QStringList styles = QFontDatabase::styles(family);
    const auto named = std::ranges::find(styles, wanted, &withoutSpaces);
    if (named != styles.end())
        return *named;
    const auto face = faceStyle(wanted);
    const auto alike = std::ranges::find_if(styles, [&](const QString& style) {
        return face == FaceStyle{QFontDatabase::weight(family, style),
                                 QFontDatabase::italic(family, style)};
    });
    return face && alike != styles.end() ? std::optional(*alike) : std::nullopt;
}

std::optional<QFont> lookUpNamedFont(const QString& name)
{
    // A full name is a family followed by one of its styles. As nothing marks where the style
    // begins, every space is tried, but no family has more words than these: each try searches the
    // list of installed fonts, and a file may contain any name.
    int wordsLeft = 8;
    for (auto space = name.indexOf(u' '); space != -1 && wordsLeft > 0;
         space = name.indexOf(u' ', space + 1), --wordsLeft) {
        const QString family = name.left(space);
        if (!QFontDatabase::hasFamily(family))
            continue;
        if (const auto style = styleNamed(family, withoutSpaces(QStringView(name).mid(space))))
            return atDesignSize(QFontDatabase::font(family, *style, 12));
    }
    if (name.isEmpty() || !QFontDatabase::hasFamily(name))
        return std::nullopt;
    return atDesignSize(QFont(name));
}

// Caches the results of lookUpNamedFont(), which searches the list of installed fonts. The texts of
// a batch use few fonts.
std::optional<QFont> namedFont(const QString& name)
{
    static QMutex mutex;
    static QHash<QString, std::optional<QFont>> known;
    const QMutexLocker lock(&mutex);
    if (known.size() > 1000)
        known.clear();
    const auto found = known.constFind(name);
    return found != known.cend() ? *found : *known.insert(name, lookUpNamedFont(name));
}

// Whether the layer uses the system font and only characters that this font certainly has: European
// Latin letters and signs.
bool isInSystemFont(const TextLayer& layer)
{
    return layer.fontName == "System"_L1 && std::ranges::all_of(layer.text, [](QChar c) {
               return c == u'\n' || (c >= u' ' && c <= u'~') || (c >= u'\u00a1' && c <= u'\u017f');
           });
}

// The font sizes at which a text certainly does not fit its area, found from a single measurement.
// fittedText() skips them without laying the text out. A size at which the text fits is never among
// them.
class ImpossibleSizes {
public:
    ImpossibleSizes(const TextLayer& layer, QSizeF area) : m_area(area)
    {
        const StyledText unit =
            ExportCanvasRenderer::styledText(layer, DesignFont::designPixelSize);
        const LaidOutText oneLine(unit, 1e9);
        const QFontMetricsF metrics(unit.font.face);
        m_widest = oneLine.narrowestWidth();
        m_lineHeight = metrics.ascent() + metrics.descent();
        double blank = metrics.horizontalAdvance(u' ');
        // A line may be entirely in another font, for example that of emoji: takes the smallest
        // line height and the widest blank of all fonts used.
        const QList<QGlyphRun> runs =
            isInSystemFont(layer) ? QList<QGlyphRun>() : oneLine.glyphRuns();
        for (const QGlyphRun& run : runs) {
            const QRawFont font = run.rawFont();
            m_lineHeight = std::min(m_lineHeight, font.ascent() + font.descent());
            const QList<quint32> glyphs = font.glyphIndexesForString(u" "_s);
            for (const QPointF& advance : font.advancesForGlyphIndexes(glyphs))
                blank = std::max(blank, advance.x());
        }
        m_isEmpty = layer.text.isEmpty();
        // m_ink leaves out all blanks, because a line may hide the blank at which it breaks. It
        // stays 0 if there are other kinds of blanks, whose width is not known.
        const bool hasPlainBlanks = std::ranges::all_of(
            layer.text, [](QChar c) { return c == u' ' || c == u'\n' || !c.isSpace(); });
        if (hasPlainBlanks) {
            const double blanks = double(layer.text.count(u' '));
            m_ink = oneLine.naturalWidth() - blanks * blank;
        }
    }

    bool contains(double size) const
    {
        if (m_isEmpty)
            return false;
        constexpr double surely = 0.98;    // factor that allows for rounding
        const double scale = surely * size / DesignFont::designPixelSize;
        const double width = m_area.width() + 1, height = m_area.height() + 1;
        const double lines = std::max(1.0, std::ceil(m_ink * scale / width));
        return m_widest * scale > width || lines * m_lineHeight * scale > height;
    }

private:
    QSizeF m_area;
    double m_widest = 0, m_ink = 0, m_lineHeight = 0;
    bool m_isEmpty = false;
};

}    // namespace

double ExportCanvasRenderer::designScale(QSizeF exportSize, QSizeF reference)
{
    if (reference.width() <= 1 || reference.height() <= 1)
        return 1;
    return std::min(exportSize.width() / reference.width(),
                    exportSize.height() / reference.height());
}

DesignFont ExportCanvasRenderer::nsFont(const TextLayer& layer, double size)
{
    if (layer.fontName != "System"_L1) {
        if (const auto font = namedFont(layer.fontName))
            return {*font, size};
    }
    return {atDesignSize(QFont(u"Inter"_s, -1, typeOf(layer.slot).weight)), size};
}

bool ExportCanvasRenderer::isInstalled(const QString& fontName)
{
    return fontName == "System"_L1 || namedFont(fontName);
}

QString ExportCanvasRenderer::familyOf(const QString& fontName)
{
    for (auto space = fontName.indexOf(u' '); space > 0;
         space = fontName.indexOf(u' ', space + 1)) {
        if (faceStyle(withoutSpaces(QStringView(fontName).mid(space))))
            return fontName.left(space);
    }
    return fontName;
}

StyledText ExportCanvasRenderer::styledText(const TextLayer& layer, double size)
{
    return {layer.text, nsFont(layer, size), layer.alignment};
}

bool ExportCanvasRenderer::fits(QSizeF measured, QSizeF area)
{
    return measured.width() <= area.width() + fitTolerance &&
           measured.height() <= area.height() + fitTolerance;
}

double ExportCanvasRenderer::baseFontSize(CopySlot slot, QSizeF area)
{
    const SlotType& type = typeOf(slot);
    return std::min(area.height() * type.heightShare, area.width() * type.widthShare);
}

double ExportCanvasRenderer::wantedFontSize(const TextLayer& layer, QSizeF area, double designScale)
{
    return clamp(baseFontSize(layer.slot, area) * layer.fontScale, smallestType * designScale,
                 largestType * designScale);
}

LaidOutText ExportCanvasRenderer::fittedText(const TextLayer& layer, QSizeF area,
                                             double designScale)
{
    const double lower = smallestType * designScale;
    // Makes the width at least 2: even a text that does not fit is drawn, but LaidOutText is empty
    // for a width of 1 or less.
    const auto smallest = [&] {
        return LaidOutText(styledText(layer, lower), std::max(area.width(), 2.0));
    };
    if (!(area.width() > 8) || !(area.height() > 8))
        return smallest();
    const double start = wantedFontSize(layer, area, designScale);
    const double step = std::max(1.0, designScale);
    const ImpossibleSizes impossible(layer, area);

    StyledText text = styledText(layer, start);
    for (int k = 0;; ++k) {
        const double size = start - k * step;
        if (!(size > lower))
            return smallest();
        if (impossible.contains(size))
            continue;
        text.font.size = size;
        LaidOutText laidOut(text, area.width());
        if (fits(TextLayoutMetrics::measuredSize(laidOut), area))
            return laidOut;
    }
}

double ExportCanvasRenderer::fittedFontSize(const TextLayer& layer, QSizeF area, double designScale)
{
    return fittedText(layer, area, designScale).fontSize();
}
