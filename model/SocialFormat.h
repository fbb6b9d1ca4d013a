#pragma once

#include "model/Vocabulary.h"

#include <QSizeF>

// The post format of the whole batch.
enum class SocialFormat { storyReel, horizontal, carouselPortrait, square };

struct SocialFormatRow {
    SocialFormat value;
    QStringView rawValue;       // the Spanish title; written to files
    QStringView templateKey;    // used in template files, by the service and on the command line
    QStringView icon;
    QStringView ratioLabel;
    double aspectRatio;    // width / height
    QSizeF exportSize;     // pixels
};

template <>
struct Vocabulary<SocialFormat> {
    static constexpr std::array rows{
        SocialFormatRow{SocialFormat::storyReel, u"Story / Reel", u"story-reel", u"ratio-9-16",
                        u"9:16", 9.0 / 16.0, QSizeF(1080, 1920)},
        SocialFormatRow{SocialFormat::horizontal, u"Horizontal", u"horizontal", u"ratio-16-9",
                        u"16:9", 16.0 / 9.0, QSizeF(1920, 1080)},
        SocialFormatRow{SocialFormat::carouselPortrait, u"Carrusel / Post vertical",
                        u"carousel-portrait", u"ratio-4-5", u"4:5", 0.8, QSizeF(1080, 1350)},
        SocialFormatRow{SocialFormat::square, u"Post cuadrado", u"square", u"ratio-1-1", u"1:1",
                        1.0, QSizeF(1080, 1080)},
    };
};
static_assert(rowsAreInOrder<SocialFormat>());

constexpr QSizeF exportSize(SocialFormat format)
{
    return row(format).exportSize;
}

// The canvas size in design units: half the export size, whatever the size of the window. Type
// sizes, padding, radii and shadows are in these units.
inline QSizeF designSize(SocialFormat format)
{
    return exportSize(format) / 2;
}

// The format with the templateKey `key`; case-sensitive.
inline std::optional<SocialFormat> fromTemplateKey(QStringView key)
{
    for (const auto& r : Vocabulary<SocialFormat>::rows) {
        if (r.templateKey == key)
            return r.value;
    }
    return std::nullopt;
}
