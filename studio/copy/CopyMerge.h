#pragma once

#include "model/PublicationItem.h"

#include <array>
#include <optional>

// The texts that a copy gives an item: those of the four slots, and the caption.
enum class CopyField { title, subtitle, tagline, callToAction, caption };

struct CopyTexts {
    QString title, subtitle, tagline, callToAction, caption;
    bool operator==(const CopyTexts&) const = default;
};

struct CopyFieldRow {
    CopyField field;
    std::optional<CopySlot> slot;    // none: the caption
    QString CopyTexts::*text;
    QString GeneratedCopy::*copy;
};

inline constexpr std::array copyFields{
    CopyFieldRow{CopyField::title, CopySlot::title, &CopyTexts::title, &GeneratedCopy::title},
    CopyFieldRow{CopyField::subtitle, CopySlot::subtitle, &CopyTexts::subtitle,
                 &GeneratedCopy::subtitle},
    CopyFieldRow{CopyField::tagline, CopySlot::tagline, &CopyTexts::tagline,
                 &GeneratedCopy::tagline},
    CopyFieldRow{CopyField::callToAction, CopySlot::callToAction, &CopyTexts::callToAction,
                 &GeneratedCopy::callToAction},
    CopyFieldRow{CopyField::caption, std::nullopt, &CopyTexts::caption,
                 &GeneratedCopy::publicationCaption},
};
constexpr const CopyFieldRow& row(CopyField field)
{
    return copyFields[std::size_t(field)];
}
static_assert(std::ranges::all_of(copyFields, [](const auto& r) { return &row(r.field) == &r; }));

QString textOf(const PublicationItem& item, CopyField field);
CopyTexts textsOf(const PublicationItem& item);
// Whether the user wrote the text: it is neither generated nor the placeholder.
bool isOwnText(const PublicationItem& item, CopyField field);

// One text that an item had and one that it was to get.
struct CopyChange {
    QUuid item;
    CopyField field = CopyField::title;
    QString before, after;
    bool isOwn = false;    // the user wrote `before`
    bool operator==(const CopyChange&) const = default;
};

struct CopyMerge {
    QList<CopyChange> written;
    QList<CopyChange> kept;    // texts that were edited since they were `asked`
};

// Makes `copy` the item's analysis and writes its texts into the layers, hidden ones included, and
// its caption. `asked`: the item's texts when the copy was asked for; a text that differs from them
// is kept. `only`: the one slot to write; none: all and the caption.
CopyMerge applyCopy(PublicationItem& item, const GeneratedCopy& copy, const CopyTexts& asked,
                    std::optional<CopySlot> only = {});

// Writes the text as one of the user's own.
void writeOwnText(PublicationItem& item, CopyField field, const QString& text);
// Writes the text as a generated one.
void writeGeneratedText(PublicationItem& item, CopyField field, const QString& text);
