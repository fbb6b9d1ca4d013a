#include "studio/sheet/SheetMatch.h"

#include "model/PlainText.h"

#include <QHash>

namespace {

// The images with the same name, and how many of them rows have filled.
struct SameNameImages {
    QList<qsizetype> images;
    qsizetype next = 0;        // index in `images`; all before it are filled
    qsizetype rowsLeft = 0;    // good rows of this name that fill() has not seen yet
};

class Matching {
public:
    explicit Matching(const PublicationItems& items) : m_items(items)
    {
        m_match.rowOfImage.resize(items.size());
        for (qsizetype i = 0; i < items.size(); ++i) {
            const PublicationItem& item = items[i];
            m_whole[sheetName(item.url.fileName())].images.append(i);
            m_withoutExtension[sheetName(item.filename())].images.append(i);
            m_holdsLongText.append(
                std::ranges::any_of(allCases<SheetColumn>(), [&](SheetColumn column) {
                    return textOf(item, column).value_or(QString()).size() > longestText;
                }));
        }
    }

    SheetMatch match(const QList<SheetRow>& rows)
    {
        QList<SameNameImages*> spellings;
        for (const SheetRow& row : rows) {
            spellings.append(spelling(row.name));
            if (spellings.last() && isGood(row, *spellings.last()))
                ++spellings.last()->rowsLeft;
        }
        for (qsizetype i = 0; i < rows.size(); ++i) {
            if (const auto fault = fill(i, rows[i], spellings[i]))
                m_match.problems.append({rows[i].number, rows[i].file(), *fault});
        }
        return m_match;
    }

private:
    // Prefers complete file names: "a.b" may also be "a.b.jpg" without its extension.
    SameNameImages* spelling(const QString& name)
    {
        for (auto* spellings : {&m_whole, &m_withoutExtension}) {
            if (const auto found = spellings->find(name); found != spellings->end())
                return &*found;
        }
        return nullptr;
    }

    bool canFill(const SheetRow& row, qsizetype image) const
    {
        if (row.fault != RowFault::tooLong || !m_holdsLongText[image])
            return !row.fault;
        return std::ranges::all_of(allCases<SheetColumn>(), [&](SheetColumn column) {
            const auto& cell = row.cell(column);
            return !cell || cell->size() <= longestText ||
                   cell == plainText(textOf(m_items[image], column).value_or(QString()));
        });
    }

    // Whether the row could fill any image of its name. Other rows must not use up an image that a
    // good row could fill.
    bool isGood(const SheetRow& row, const SameNameImages& spelling) const
    {
        const auto fits = [&](qsizetype image) { return canFill(row, image); };
        return !row.fault ||
               (row.fault == RowFault::tooLong && std::ranges::any_of(spelling.images, fits));
    }

    std::optional<RowFault> fill(qsizetype index, const SheetRow& row, SameNameImages* spelling)
    {
        if (!spelling || !isGood(row, *spelling))
            return row.fault.value_or(RowFault::unknownFile);
        const bool isLast = --spelling->rowsLeft == 0;
        const QList<qsizetype>& images = spelling->images;
        const auto isFilled = [&](qsizetype image) {
            return m_match.rowOfImage[image].has_value();
        };
        while (spelling->next < images.size() && isFilled(images[spelling->next]))
            ++spelling->next;
        bool hasFilled = false;
        for (qsizetype i = spelling->next; i < images.size() && (isLast || !hasFilled); ++i) {
            if (isFilled(images[i]) || !canFill(row, images[i]))
                continue;
            m_match.rowOfImage[images[i]] = index;
            hasFilled = true;
        }
        return hasFilled ? std::nullopt : std::optional(RowFault::repeated);
    }

    const PublicationItems& m_items;
    QList<bool> m_holdsLongText;    // by image: whether a text exceeds longestText
    QHash<QString, SameNameImages> m_whole, m_withoutExtension;
    SheetMatch m_match;
};

}    // namespace

qsizetype SheetMatch::filledImages() const
{
    return std::ranges::count_if(rowOfImage, [](const auto& row) { return row.has_value(); });
}

SheetMatch matchRows(const TextSheet& sheet, const PublicationItems& items)
{
    return Matching(items).match(sheet.rows);
}

SheetMatch applyTextSheet(PublicationItems& items, const TextSheet& sheet)
{
    SheetMatch match = matchRows(sheet, items);
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (const auto row = match.rowOfImage[i])
            fillTexts(items.edit(i), sheet.rows[*row]);
    }
    return match;
}
