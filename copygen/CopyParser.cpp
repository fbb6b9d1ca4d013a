#include "copygen/CopyParser.h"

#include "copygen/CopyFallback.h"
#include "copygen/text/CopyAnswer.h"
#include "model/Characters.h"
#include "model/PlainText.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int quotedCharacters = 240;    // of an answer, in the notes

// The bytes without half a character at their end, or before the line ends that llama-mtmd-cli
// writes behind an answer.
QByteArrayView withoutHalfCharacter(QByteArrayView bytes)
{
    bytes = bytes.trimmed();
    qsizetype begin = bytes.size();    // of the last character
    while (begin > 0 && bytes.size() - begin < 4) {
        --begin;
        if ((uchar(bytes[begin]) & 0xc0) != 0x80)
            break;
    }
    return QUtf8StringView(bytes.sliced(begin)).isValidUtf8() ? bytes : bytes.first(begin);
}

}    // namespace

CopyWording CopyWording::mlx()
{
    return {u"Gemma 4 E2B local"_s, u"Analizado con Gemma 4 E2B local via MLX."_s, false};
}

CopyWording CopyWording::llamaCpp()
{
    return {u"Gemma 4 E2B local"_s, u"Analizado con Gemma 4 E2B local via llama.cpp."_s, true};
}

std::optional<QString> answerText(QByteArrayView output, const CopyWording& wording)
{
    if (wording.closesCutAnswers)
        output = withoutHalfCharacter(output);
    if (output.isEmpty() || !QUtf8StringView(output).isValidUtf8())
        return std::nullopt;
    return QString::fromUtf8(output);
}

GeneratedCopy parseGeneratedCopy(const QString& raw, const QString& objective, SocialFormat format,
                                 const CopyWording& wording)
{
    const GeneratedCopy composed = composeCopy({}, objective, format, wording.engine);
    const auto answer = wording.closesCutAnswers ? readClosedCopyAnswer(raw) : readCopyAnswer(raw);
    if (answer) {
        return GeneratedCopy(cleanText(answer->title, composed.title),
                             cleanText(answer->subtitle, composed.subtitle),
                             cleanText(answer->tagline, composed.tagline),
                             cleanText(answer->callToAction, composed.callToAction),
                             cleanText(answer->publicationCaption, composed.publicationCaption),
                             wording.imageNotes);
    }
    const auto line = [&](const QStringList& keys, const QString& fallback) {
        return lineValue(raw, keys, fallback);
    };
    return GeneratedCopy(
        line({u"TITULO"_s, u"TITLE"_s}, composed.title),
        line({u"SUBTITULO"_s, u"SUBTITLE"_s}, composed.subtitle),
        line({u"TAGLINE"_s}, composed.tagline),
        line({u"CTA"_s, u"CALLTOACTION"_s, u"CALL TO ACTION"_s}, composed.callToAction),
        line({u"PUBLICATIONCAPTION"_s, u"PUBLICATION CAPTION"_s, u"CAPTION"_s,
              u"TEXTO PUBLICACION"_s, u"TEXTO DE PUBLICACION"_s},
             composed.publicationCaption),
        wording.imageNotes + u' ' + plainText(firstCharacters(raw, quotedCharacters)));
}

QString lineValue(const QString& raw, const QStringList& keys, const QString& fallback)
{
    const QString text = plainText(raw);
    for (const QStringView line : QStringView(text).split(u'\n')) {
        const QString upper = line.toString().toUpper();
        if (std::ranges::none_of(keys, [&](const QString& key) { return upper.contains(key); }))
            continue;
        const qsizetype colon = line.indexOf(u':');
        return cleanText(colon < 0 ? QString() : line.mid(colon + 1).toString(), fallback);
    }
    return fallback;
}
