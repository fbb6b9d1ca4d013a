#pragma once

#include <QString>

// What may stand as the name of a template or a style: one line, not too long; may be empty.
inline QString templateName(const QString& text)
{
    constexpr qsizetype longest = 80;
    return text.left(4 * longest).simplified().left(longest).trimmed();
}
