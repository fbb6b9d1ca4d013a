#pragma once

#include <QList>
#include <QString>

#include <utility>

// A piece of a page. Texts become one only through html::text and attributes, which escape them.
struct Html {
    QString code;
};

inline Html operator+(const Html& before, const Html& after)
{
    return {before.code + after.code};
}

namespace html {

using Attributes = QList<std::pair<const char*, QString>>;

// What means something to a browser is written so that it means itself; also within quotes.
QString escaped(const QString& text);

Html text(const QString& text);
// Input and img have no end and no content.
Html tag(const char* name, const Html& content = {}, const Attributes& attributes = {});
Html paragraph(const QString& text, const QString& kind = {});
// What was wrong in a form; nothing when nothing was.
Html problem(const QString& sentence);
Html link(const QString& address, const QString& label, const QString& kind = {});

// A labelled field of a form.
Html field(const QString& name, const QString& label, const Attributes& attributes = {});
Html button(const QString& label, const QString& action, const QString& kind = {});

}    // namespace html
