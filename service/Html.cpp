#include "service/Html.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace html {

namespace {

Attributes ofKind(const QString& kind)
{
    return kind.isEmpty() ? Attributes{} : Attributes{{"class", kind}};
}

}    // namespace

QString escaped(const QString& text)
{
    return text.toHtmlEscaped().replace(u'\'', u"&#39;"_s);
}

Html text(const QString& text)
{
    return {escaped(text)};
}

Html tag(const char* name, const Html& content, const Attributes& attributes)
{
    const QString word = QString::fromLatin1(name);
    QString code = u"<"_s + word;
    for (const auto& [key, value] : attributes)
        code += u" "_s + QString::fromLatin1(key) + u"=\""_s + escaped(value) + u"\""_s;
    code += u">"_s;
    if (!QStringList{u"input"_s, u"img"_s}.contains(word))
        code += content.code + u"</"_s + word + u">"_s;
    return {code};
}

Html paragraph(const QString& content, const QString& kind)
{
    return tag("p", text(content), ofKind(kind));
}

Html problem(const QString& sentence)
{
    return sentence.isEmpty()
               ? Html{}
               : tag("p", text(sentence), {{"class", u"mal"_s}, {"role", u"alert"_s}});
}

Html link(const QString& address, const QString& label, const QString& kind)
{
    return tag("a", text(label), Attributes{{"href", address}} + ofKind(kind));
}

Html field(const QString& name, const QString& label, const Attributes& attributes)
{
    return tag("label", text(label), {{"for", name}}) +
           tag("input", {}, Attributes{{"id", name}, {"name", name}} + attributes);
}

Html button(const QString& label, const QString& action, const QString& kind)
{
    return tag("button", text(label),
               Attributes{{"type", u"submit"_s}, {"name", u"accion"_s}, {"value", action}} +
                   ofKind(kind));
}

}    // namespace html
