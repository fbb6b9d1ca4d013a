#pragma once

#include "model/Vocabulary.h"

// The role of a text layer. Each item has one text layer for each slot.
enum class CopySlot { title, subtitle, tagline, callToAction };

struct CopySlotRow {
    CopySlot value;
    QStringView rawValue;
    QStringView displayName;    // shown to the user; differs from rawValue only for the tagline
    QStringView icon;
};

template <>
struct Vocabulary<CopySlot> {
    static constexpr std::array rows{
        CopySlotRow{CopySlot::title, u"Título", u"Título", u"slot-title"},
        CopySlotRow{CopySlot::subtitle, u"Subtítulo", u"Subtítulo", u"slot-subtitle"},
        CopySlotRow{CopySlot::tagline, u"Tagline", u"Párrafo", u"slot-tagline"},
        CopySlotRow{CopySlot::callToAction, u"CTA", u"CTA", u"slot-call-to-action"},
    };
};
static_assert(rowsAreInOrder<CopySlot>());

// The slot with the raw value `name`. Also accepts the displayName of the tagline.
inline std::optional<CopySlot> storedValue(QStringView name)
{
    return name == row(CopySlot::tagline).displayName ? CopySlot::tagline
                                                      : fromRawValue<CopySlot>(name);
}

template <>
inline std::optional<CopySlot> fromStored(QStringView name)
{
    return storedValue(name);
}
