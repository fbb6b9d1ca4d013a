#include "copygen/CopyFallback.h"
#include "copygen/CopyParser.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array keys{"title", "subtitle", "tagline", "callToAction", "publicationCaption"};
constexpr int caption = 4;

QStringList textsOf(const GeneratedCopy& copy)
{
    return {copy.title, copy.subtitle, copy.tagline, copy.callToAction, copy.publicationCaption};
}

// What a model may write, and where in its bytes each text is complete.
struct Answer {
    QByteArray bytes;
    QStringList texts;
    std::array<qsizetype, 5> completeAt{};
};

class Writer {
public:
    explicit Writer(unsigned seed) : m_random(seed) {}

    Answer answer()
    {
        Answer answer;
        answer.texts = {text(2), text(4), text(8), u"Ven ya"_s, text(35)};
        const QByteArray blank = any({"", " ", "\n  ", "\r\n\t"});
        std::array<int, 5> order{};
        std::iota(order.begin(), order.end(), 0);
        if (below(3) == 0)
            std::shuffle(order.begin(), order.end(), m_random);

        answer.bytes = any({"", "\n", "```json\n", "¡Claro!\n"}) + '{';
        for (const int key : order) {
            answer.bytes += (answer.bytes.endsWith('{') ? "" : ",") + blank;
            if (below(8) == 0)
                answer.bytes +=
                    any({"\"n\":[1,{\"title\":\"no\"}],", "\"x\":null,", "\"y\":-1.5e3,"});
            answer.bytes += QByteArray("\"") + keys[key] + "\"" + blank + ":" + blank;
            answer.bytes += written(answer.texts[key]);
            answer.completeAt[key] = answer.bytes.size();
        }
        answer.bytes += blank + '}' + any({"", "\n\n\n", "\n```\n", " ¡Listo!"});
        return answer;
    }

private:
    unsigned below(unsigned end) { return unsigned(m_random() % end); }
    QByteArray any(const QList<QByteArray>& choices) { return choices[below(choices.size())]; }

    QString text(int words)
    {
        static const QStringList vocabulary{
            u"café"_s,      u"mañana."_s, u"¿Vienes?"_s, u"sol,"_s, u"☀️"_s,    u"😀"_s,
            u"#Luz"_s,      u"3.5"_s,     u"{plan}"_s,   u"a\\b"_s, u"dos\ntres"_s, u"Ven"_s,
            u"colección"_s, u"hoy"_s,     u"título:"_s,  u"[uno]"_s};
        QStringList chosen{u"La"_s};
        for (int i = 0; i < words; ++i)
            chosen.append(vocabulary[below(vocabulary.size())]);
        return chosen.join(u' ');
    }

    // Some writers escape what is not ASCII.
    QByteArray written(const QString& text)
    {
        const bool escapes = below(2) == 0;
        QByteArray json = "\"";
        for (const char32_t c : text.toUcs4()) {
            const QString character = QString::fromUcs4(&c, 1);
            if (c == U'\n')
                json += "\\n";
            else if (c == U'\\')
                json += "\\\\";
            else if (c <= 0x7f || !escapes)
                json += character.toUtf8();
            else
                for (const QChar unit : character)
                    json += "\\u" + QByteArray::number(unit.unicode(), 16).rightJustified(4, '0');
        }
        return json + '"';
    }

    std::mt19937 m_random;
};

}    // namespace

TEST(CutAnswers, atEveryByteTextsAreWholeOrReplaced)
{
    const CopyWording wording = CopyWording::llamaCpp();
    const QStringList composed = textsOf(composeCopy({}, {}, SocialFormat::square, wording.engine));
    Writer writer(20'260);
    for (int number = 0; number < 100; ++number) {
        const Answer answer = writer.answer();
        for (qsizetype cut = answer.bytes.indexOf('{') + 1; cut <= answer.bytes.size(); ++cut) {
            const QByteArray bytes = answer.bytes.first(cut) + (cut % 2 ? "\n\n" : "");
            const auto raw = answerText(bytes, wording);
            ASSERT_TRUE(raw);
            const QStringList given =
                textsOf(parseGeneratedCopy(*raw, {}, SocialFormat::square, wording));
            for (int key = 0; key < 5; ++key) {
                const bool isComplete = answer.completeAt[key] <= cut;
                const bool isSentences = key == caption && !isComplete &&
                                         given[key].size() >= 120 &&
                                         answer.texts[key].startsWith(given[key]) &&
                                         QStringView(u".?").contains(given[key].back());
                ASSERT_TRUE(isSentences ||
                            given[key] == (isComplete ? answer.texts : composed)[key])
                    << bytes.constData() << "\n"
                    << keys[key] << ": " << qPrintable(given[key]);
            }
        }
    }
}
