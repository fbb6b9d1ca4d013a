#pragma once

#include "model/Vocabulary.h"

enum class SocialNetwork { instagram, facebook, linkedIn };

struct SocialNetworkRow {
    SocialNetwork value;
    QStringView rawValue, title;
    int mostImages;    // in one post
    bool hasStories;
};

template <>
struct Vocabulary<SocialNetwork> {
    static constexpr std::array rows{
        SocialNetworkRow{SocialNetwork::instagram, u"instagram", u"Instagram", 10, true},
        SocialNetworkRow{SocialNetwork::facebook, u"facebook", u"Facebook", 10, false},
        SocialNetworkRow{SocialNetwork::linkedIn, u"linkedin", u"LinkedIn", 9, false},
    };
};
static_assert(rowsAreInOrder<SocialNetwork>());
