#include "copygen/text/CopyAnswer.h"

#include "model/Characters.h"
#include "model/GuardedJson.h"
#include "model/PlainText.h"
#include "model/TextLayer.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

template <>
struct json::JsonFields<CopyAnswer> {
    static constexpr auto fields =
        std::tuple{lenient("title", &CopyAnswer::title), lenient("subtitle", &CopyAnswer::subtitle),
                   lenient("tagline", &CopyAnswer::tagline),
                   lenient("callToAction", &CopyAnswer::callToAction),
                   lenient("publicationCaption", &CopyAnswer::publicationCaption)};
};

namespace {

constexpr int shortestCutCaption = 120;    // characters

// An object that a text leaves open. Positions are in that text.
struct OpenObject {
    QList<QStringView> members;    // those that a comma follows
    qsizetype lastMember = 0;      // where the member begins that no comma follows
    qsizetype tokenEnd = 0;        // behind the last string or bracket that ends in that member
    qsizetype textBegin = -1;      // behind the quotation mark of a string that does not end
    int depth = 1;                 // open brackets, its own included
};

std::optional<OpenObject> openObject(QStringView text)
{
    std::optional<OpenObject> object;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (!object) {
            if (c == u'{') {
                object.emplace();
                object->lastMember = object->tokenEnd = i + 1;
            }
        } else if (object->textBegin >= 0) {
            if (c == u'\\') {
                ++i;
            } else if (c == u'"') {
                object->textBegin = -1;
                object->tokenEnd = i + 1;
            }
        } else if (c == u'"') {
            object->textBegin = i + 1;
        } else if (c == u'{' || c == u'[') {
            ++object->depth;
        } else if (c == u'}' || c == u']') {
            object->tokenEnd = i + 1;
            if (--object->depth == 0)
                object.reset();
        } else if (c == u',' && object->depth == 1) {
            object->members.append(text.mid(object->lastMember, i - object->lastMember));
            object->lastMember = object->tokenEnd = i + 1;
        }
    }
    return object;
}

// Whether the last string ends and a brace closes the object. If the quotation marks before do not
// come in pairs, the answer is damaged, but was not cut off.
bool endsLikeObject(const QString& text)
{
    static const QRegularExpression end(u"[\"'“”]\\s*\\}[\\s`]*$"_s);
    return text.contains(end);
}

json::Value objectOf(QStringView members)
{
    return json::parsedWithCare('{' + members.toUtf8() + '}');
}

// The string between quotation marks, whose last escape may be incomplete.
std::optional<QString> decodedCutString(QStringView inside)
{
    QString text = plainText(inside.toString());
    text.replace(u'\n', u"\\n"_s).replace(u'\t', u"\\t"_s);
    constexpr int longestEscape = 12;    // a pair of surrogates
    for (int lost = 0; lost < longestEscape && lost <= text.size(); ++lost) {
        QString decoded;
        const json::Value value =
            json::parsedWithCare('"' + QStringView(text).chopped(lost).toUtf8() + '"');
        if (json::read(value, decoded))
            return decoded;
    }
    return std::nullopt;
}

QString completeSentences(const QString& text)
{
    // A full stop after a digit may be that of a list or of a number that was cut.
    static const QRegularExpression sentenceEnd(
        u"(?:(?<!\\d)\\.|[!?…])[\"'”’»)\\]]*(?=\\s+[^\\s\\p{Ll}]|$)"_s,
        QRegularExpression::UseUnicodePropertiesOption);
    qsizetype end = 0;
    for (auto matches = sentenceEnd.globalMatch(text); matches.hasNext();)
        end = matches.next().capturedEnd();
    return text.left(end);
}

// The caption as a member, when the string that is cut is the caption's.
QString cutCaptionMember(QStringView untilString, QStringView inside)
{
    const QLatin1StringView key("publicationCaption");
    const json::Value named = objectOf(untilString.toString() + u'"');
    if (!named.is_object() || !named.contains(key.data()))
        return {};
    const auto text = decodedCutString(inside.trimmed());
    const QString kept = completeSentences(text.value_or(QString()).trimmed());
    if (characterCount(kept) < shortestCutCaption)
        return {};
    return u"\"publicationCaption\":"_s + QString::fromUtf8(json::written(kept));
}

// The last member of an open object as far as it is complete; may be empty.
QString completeLastMember(QStringView text, const OpenObject& object)
{
    const auto part = [&](qsizetype begin, qsizetype end) { return text.mid(begin, end - begin); };
    if (object.textBegin >= 0)
        return cutCaptionMember(part(object.lastMember, object.textBegin),
                                text.mid(object.textBegin));
    // A code fence may end where the object should. Words there mean that the string went on behind
    // a quotation mark of its own text.
    const auto isNoise = [](QChar c) { return c.isSpace() || c == u'`'; };
    const QStringView behind = text.mid(object.tokenEnd);
    return std::ranges::all_of(behind, isNoise)
               ? part(object.lastMember, object.tokenEnd).toString()
               : QString();
}

}    // namespace

std::optional<QString> extractJSONObject(const QString& raw)
{
    const qsizetype begin = raw.indexOf(u'{'), end = raw.lastIndexOf(u'}');
    if (begin < 0 || end < begin)
        return std::nullopt;
    return raw.mid(begin, end - begin + 1);
}

std::optional<QString> closedObject(const QString& raw)
{
    const std::optional<OpenObject> open = openObject(raw);
    if (!open || (open->textBegin >= 0 && endsLikeObject(raw)))
        return std::nullopt;
    const QString last = completeLastMember(raw, *open);
    QString closed;
    for (const QStringView member : open->members + QList<QStringView>{last}) {
        if (const json::Value one = objectOf(member); !one.is_object() || one.empty())
            break;
        closed.append(closed.isEmpty() ? u'{' : u',').append(member);
    }
    return closed.isEmpty() ? u"{}"_s : closed + u'}';
}

std::optional<CopyAnswer> readCopyAnswer(const QString& raw)
{
    const std::optional<QString> object = extractJSONObject(raw);
    const json::Value value = json::parsedWithCare(object.value_or(QString()).toUtf8());
    if (CopyAnswer answer; json::read(value, answer))
        return answer;
    return std::nullopt;
}

std::optional<CopyAnswer> readClosedCopyAnswer(const QString& raw)
{
    if (const std::optional<CopyAnswer> whole = readCopyAnswer(raw))
        return whole;
    const std::optional<QString> closed = closedObject(raw);
    return closed ? readCopyAnswer(*closed).value_or(CopyAnswer()) : std::optional<CopyAnswer>();
}

QString cleanText(const std::optional<QString>& value, const QString& fallback)
{
    static constexpr std::array placeholders{
        QStringView(u""),  QStringView(u"."),   QStringView(u".."),  QStringView(u"..."),
        QStringView(u"…"), QStringView(u"N/A"), QStringView(u"null")};
    const QString text = plainText(value.value_or(QString())).remove(u'"').trimmed();
    const bool isPlaceholder =
        std::ranges::find(placeholders, QStringView(text)) != placeholders.end();
    return isPlaceholder || text.size() > longestText ? fallback : text;
}
