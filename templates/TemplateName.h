#pragma once

#include "model/PlainText.h"

// Turns a text into a name for a template or a style: one line of at most 80 characters, without
// control characters and those that turn the writing direction; may be empty.
inline QString templateName(const QString& text)
{
    constexpr qsizetype longest = 80;
    QString name = text.left(4 * longest).simplified();
    name.removeIf(
        [](QChar c) { return c.category() == QChar::Other_Control || turnsDirection(c); });
    name.truncate(longest);
    if (!name.isEmpty() && name.back().isHighSurrogate())
        name.chop(1);
    return name.trimmed();
}
