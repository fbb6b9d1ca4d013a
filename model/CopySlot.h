#pragma once

#include "model/Vocabulary.h"

// The role of a text layer; an item has one layer of each slot.
enum class CopySlot { title, subtitle, tagline, callToAction };

struct CopySlotRow {
    CopySlot value;
    QStringView rawValue;
    QStringView displayName;    // only the tagline's differs from rawValue, which files hold
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

// The slot of a stored name; the name shown for the tagline is read as well.
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
