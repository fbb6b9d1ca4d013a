#pragma once

#include <QString>

// The text as a name of a template or a style: one line of at most 80 characters; may be empty.
inline QString templateName(const QString& text)
{
    constexpr qsizetype longest = 80;
    return text.left(4 * longest).simplified().left(longest).trimmed();
}
