#pragma once
#include "app/presets/Gallery.h"
#include "app/presets/TagChips.h"
#include "model/SocialFormat.h"

#include <QSet>

class SharedTemplates;
class TemplateLibrary;

// Keys of the sections that the program treats in a way of their own.
inline constexpr QStringView recentSection = u"recent", ownSection = u"own", teamSection = u"team",
                             programSection = u"moltiva", packSection = u"pack:";

// The sections of the gallery: the designs used last, unless a filter is set, then those of the
// library that pass the filter. `shared` may be null. `foldedFound`: keys of the sections that are
// folded while a filter is set; without one the library knows.
QList<GallerySection> gallerySections(const TemplateLibrary& library, const SharedTemplates* shared,
                                      SocialFormat format, const GalleryFilter& filter,
                                      const QSet<QString>& foldedFound);
