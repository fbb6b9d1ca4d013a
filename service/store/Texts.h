#pragma once

#include <QDateTime>
#include <QString>

#include <algorithm>
#include <optional>

// Whether the text is free of control characters, unassigned code points and lone surrogates.
inline bool isPrintable(const QString& text)
{
    const QList<uint> characters = text.toUcs4();
    return text.isValidUtf16() &&
           std::ranges::all_of(characters, [](uint c) { return QChar::isPrint(char32_t(c)); });
}

// The text trimmed; nothing when it is longer than `longest` or holds control characters. The
// invisible joiner in emojis is allowed.
inline std::optional<QString> lineOfText(const QString& text, qsizetype longest)
{
    const QString trimmed = text.trimmed();
    const auto isControl = [](QChar c) { return c.category() == QChar::Other_Control; };
    if (trimmed.size() > longest || !trimmed.isValidUtf16() ||
        std::ranges::any_of(trimmed, isControl))
        return std::nullopt;
    return trimmed;
}

inline QString isoTime(qint64 milliseconds)
{
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC).toString(Qt::ISODate);
}
