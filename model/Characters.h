#pragma once

#include <QString>
#include <QTextBoundaryFinder>

// A character is here what a reader counts as one, such as an accented letter or an emoji.

inline qsizetype characterCount(const QString& text)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (finder.toNextBoundary() != -1)
        ++count;
    return count;
}

inline QString firstCharacters(const QString& text, int count)
{
    // Marks can be piled on one letter without end. No emoji takes more than 16 code units.
    const QString begin = text.left(qsizetype(count) * 16);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, begin);
    for (int i = 0; i < count && finder.position() < begin.size(); ++i)
        finder.toNextBoundary();
    return begin.left(finder.position());
}
