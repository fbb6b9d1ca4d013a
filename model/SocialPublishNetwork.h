#pragma once

#include "model/Vocabulary.h"

// A network on which the service publishes posts for the user.
enum class SocialPublishNetwork { instagram, facebook, linkedIn };

struct SocialPublishNetworkRow {
    SocialPublishNetwork value;
    QStringView rawValue;    // also the service's name of the network
    QStringView title, symbol, description;
    int mostImages;    // in one post
    bool hasStories;
    qsizetype longestCaption;    // UTF-16 units
    qint64 largestImage;         // bytes
};

template <>
struct Vocabulary<SocialPublishNetwork> {
    static constexpr std::array rows{
        SocialPublishNetworkRow{SocialPublishNetwork::instagram, u"instagram", u"Instagram",
                                u"camera.aperture", u"Publicación o carrusel mediante Meta.", 10,
                                true, 2'200, 8'000'000},
        SocialPublishNetworkRow{SocialPublishNetwork::facebook, u"facebook", u"Facebook",
                                u"person.2.wave.2", u"Página conectada desde Moltiva.", 10, false,
                                63'206, 10'000'000},
        SocialPublishNetworkRow{SocialPublishNetwork::linkedIn, u"linkedin", u"LinkedIn",
                                u"briefcase", u"Perfil profesional conectado desde Moltiva.", 9,
                                false, 3'000, 5'000'000},
    };
};
static_assert(rowsAreInOrder<SocialPublishNetwork>());

// Where on a network a post appears. Networks without stories only have the feed.
enum class SocialPublishPlacement { feed, story };

struct SocialPublishPlacementRow {
    SocialPublishPlacement value;
    QStringView rawValue;    // also the service's name of the placement
    QStringView title, help;
};

template <>
struct Vocabulary<SocialPublishPlacement> {
    static constexpr std::array rows{
        SocialPublishPlacementRow{
            SocialPublishPlacement::feed, u"feed", u"Feed",
            u"Publica en el feed de Instagram. Permite una imagen o carrusel."},
        SocialPublishPlacementRow{SocialPublishPlacement::story, u"story", u"Story",
                                  u"Publica como story. Si hay varias imágenes seleccionadas, se "
                                  "envían como stories separadas."},
    };
};
static_assert(rowsAreInOrder<SocialPublishPlacement>());
