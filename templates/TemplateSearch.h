#pragma once

#include "model/SearchText.h"

#include <QStringList>

// What the user types to find templates: words in any order, without regard to case and accents.
class TemplateSearch {
public:
    explicit TemplateSearch(const QString& typed)
        : m_words(foldedForSearch(typed).split(u' ', Qt::SkipEmptyParts))
    {
    }

    // Whether all words occur in `folded`, a text from foldedForSearch().
    bool matches(const QString& folded) const
    {
        return std::ranges::all_of(m_words,
                                   [&](const QString& word) { return folded.contains(word); });
    }

private:
    QStringList m_words;
};
