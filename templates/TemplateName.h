#pragma once

#include <QString>

// Turns a text into a name for a template or a style: one line of at most 80 characters; may be
// empty.
inline QString templateName(const QString& text)
{
    constexpr qsizetype longest = 80;
    return text.left(4 * longest).simplified().left(longest).trimmed();
}
