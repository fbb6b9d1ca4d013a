#include "studio/copy/CopyMerge.h"

namespace {

const TextLayer* layerOf(const PublicationItem& item, CopySlot slot)
{
    const auto found = std::ranges::find(item.layers, slot, &TextLayer::slot);
    return found == item.layers.end() ? nullptr : &*found;
}

void writeText(PublicationItem& item, CopyField field, const QString& text)
{
    const auto slot = row(field).slot;
    if (!slot)
        item.analysis.publicationCaption = text;
    else if (TextLayer* layer = item.layer(*slot); layer && layer->text != text)
        layer->text = text;
}

}    // namespace

QString textOf(const PublicationItem& item, CopyField field)
{
    const auto slot = row(field).slot;
    if (!slot)
        return item.analysis.publicationCaption;
    const TextLayer* layer = layerOf(item, *slot);
    return layer ? layer->text : QString();
}

CopyTexts textsOf(const PublicationItem& item)
{
    CopyTexts texts;
    for (const CopyFieldRow& each : copyFields)
        texts.*each.text = textOf(item, each.field);
    return texts;
}

bool isOwnText(const PublicationItem& item, CopyField field)
{
    const auto slot = row(field).slot;
    if (!slot)
        return item.isCaptionOwn;
    const TextLayer* layer = layerOf(item, *slot);
    return layer && layer->text != item.analysis.text(*slot) &&
           layer->text != GeneratedCopy::placeholder().text(*slot);
}

CopyMerge applyCopy(PublicationItem& item, const GeneratedCopy& copy, const CopyTexts& asked,
                    std::optional<CopySlot> only)
{
    CopyMerge merge;
    const PublicationItem before = item;
    if (!only)
        item.analysis = copy;
    for (const CopyFieldRow& each : copyFields) {
        if (only && each.slot != only)
            continue;
        const QString current = textOf(before, each.field);
        const QString& text = copy.*each.copy;
        item.analysis.*each.copy = text;
        const CopyChange change{item.id, each.field, current, text, isOwnText(before, each.field)};
        if (current != asked.*each.text && current != text) {
            merge.kept.append(change);
            writeText(item, each.field, current);
            continue;
        }
        if (current != text)
            merge.written.append(change);
        writeText(item, each.field, text);
        if (!each.slot)
            item.isCaptionOwn = false;
    }
    return merge;
}

void writeOwnText(PublicationItem& item, CopyField field, const QString& text)
{
    writeText(item, field, text);
    if (field == CopyField::caption)
        item.isCaptionOwn = true;
}

void writeGeneratedText(PublicationItem& item, CopyField field, const QString& text)
{
    writeText(item, field, text);
    if (field == CopyField::caption)
        item.isCaptionOwn = false;
}
