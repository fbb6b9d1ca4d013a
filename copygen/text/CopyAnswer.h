#pragma once

#include <QString>

#include <optional>

// The texts of an answer as its JSON object has them. Nothing: the key is missing or its value is
// no string.
struct CopyAnswer {
    std::optional<QString> title, subtitle, tagline, callToAction, publicationCaption;
};

// The part from the first "{" to the last "}", both included.
std::optional<QString> extractJSONObject(const QString& raw);

// The object that `raw` ends in the middle of, closed after its last complete member; nothing when
// no object is left open. A caption that was cut is kept up to its last complete sentence, if that
// leaves enough of it.
std::optional<QString> closedObject(const QString& raw);

// The texts of the object in `raw`; nothing when there is no JSON object. Of two members with the
// same key the last one counts.
std::optional<CopyAnswer> readCopyAnswer(const QString& raw);

// As readCopyAnswer(), but an object that is left open is closed if there is no whole one.
std::optional<CopyAnswer> readClosedCopyAnswer(const QString& raw);

// The value as plain text without quotation marks and surrounding white space; the fallback when it
// is missing, empty or a placeholder such as "N/A".
QString cleanText(const std::optional<QString>& value, const QString& fallback);
