#pragma once

#include <QList>
#include <QString>

#include <utility>

// A piece of HTML code. Plain text becomes Html only through html::text() and Attributes, which
// escape it.
struct Html {
    QString code;
};

inline Html operator+(const Html& before, const Html& after)
{
    return {before.code + after.code};
}

namespace html {

using Attributes = QList<std::pair<const char*, QString>>;

// Replaces the characters that mean something in HTML, quotes included, by their entities.
QString escaped(const QString& text);

Html text(const QString& text);
// For input and img, which have no end tag, `content` is dropped.
Html tag(const char* name, const Html& content = {}, const Attributes& attributes = {});
Html paragraph(const QString& text, const QString& kind = {});
// A paragraph with an error message; empty for an empty sentence.
Html problem(const QString& sentence);
Html link(const QString& address, const QString& label, const QString& kind = {});

// A labelled field of a form.
Html field(const QString& name, const QString& label, const Attributes& attributes = {});
Html button(const QString& label, const QString& action, const QString& kind = {});

}    // namespace html
