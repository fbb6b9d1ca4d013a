// Gives damaged answers of models to everything that reads them, and ends at the first crash or
// text that must not come out.
//
//     fuzz_copy_answer [--seconds 60] [--seed 1]
//
// Where clang is installed, the target fuzz_copy_answer_guided builds the same for libFuzzer, which
// looks for inputs that reach new branches: `fuzz_copy_answer_guided -max_total_time=600 CORPUS`.

#include "copygen/CopyParser.h"
#include "copygen/text/CopyAnswer.h"
#include "copygen/text/CopyPrompt.h"
#include "model/Characters.h"
#include "model/PlainText.h"
#include "service/CopyForwarding.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

void require(bool holds, const char* what)
{
    if (!holds)
        qFatal("%s", what);
}

void requireShowable(const GeneratedCopy& copy)
{
    for (const QString& text : {copy.title, copy.subtitle, copy.tagline, copy.callToAction}) {
        require(!text.trimmed().isEmpty() && !text.contains(u'"'), "a text is missing or quoted");
        require(text == plainText(text), "a text holds control characters");
        require(text.size() <= 10'000, "a text is endless");
    }
    require(!copy.publicationCaption.isEmpty(), "the caption is missing");
    require(copy.imageNotes.size() < 5000, "the notes are endless");
    require(characterCount(copy.callToAction) <= 24, "the call to action is too long");
}

void requireClosed(const QString& raw)
{
    const std::optional<QString> closed = closedObject(raw);
    if (!closed)
        return;
    require(!closedObject(*closed), "a closed object is open");
    // An object of very many members is refused like any other.
    require(closed->count(u',') > 190 || readCopyAnswer(*closed), "a closed object is no JSON");
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArrayView bytes(data, qsizetype(size));
    for (const CopyWording& wording : {CopyWording::mlx(), CopyWording::llamaCpp()}) {
        if (const auto raw = answerText(bytes, wording))
            requireShowable(parseGeneratedCopy(*raw, u"vender"_s, SocialFormat::square, wording));
    }
    // Text of other origin may hold halves of characters.
    const QString damaged = QString::fromUtf8(bytes);
    requireClosed(damaged);
    const QString objective = CopyPromptBuilder::withoutControlWords(damaged);
    require(CopyPromptBuilder::withoutControlWords(objective) == objective,
            "a control word is left");

    QByteArray content = bytes.toByteArray().replace('\\', "\\\\").replace('"', "\\\"");
    content.replace('\n', "\\n");
    for (const QByteArray& answer :
         {bytes.toByteArray(), "{\"choices\":[{\"message\":{\"content\":\"" + content + "\"}}]}"}) {
        if (const auto copy = copyFromAnswer(answer))
            requireShowable(*copy);
    }
    return 0;
}

#ifndef MOLTIVA_GUIDED_FUZZING

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>

#include <random>

namespace {

QList<QByteArray> seeds()
{
    const QByteArray caption =
        "Hay veranos que se recuerdan por la luz y otros por cómo nos sentimos en nuestra propia "
        "piel. ☀️ Este protector nació para acompañarte sin que lo notes. #Piel";
    const QByteArray compact =
        "{\"title\":\"Tu casa, en calma\",\"subtitle\":\"Muebles \\u00fatiles\",\"tagline\":\"a\\n"
        "b \\ud83d\\ude00\",\"callToAction\":\"Ver colección\",\"publicationCaption\":\"" +
        caption + "\"}";
    return {
        compact,
        "```json\n" + QByteArray(compact).replace(",\"", ",\n  \"").chopped(30),
        "{\"choices\":[{\"message\":{\"content\":[{\"text\":\"{\\\"title\\\":\\\"T\\\"}\"}]}}]}",
        "SUBTITLE: B\nTITLE: A las 10:00\nCTA: Ven\nCAPTION: " + caption,
        "\n{ \"title\" : \"remapelas bodesu\n\n",
        "<|channel>thought {title: \"a\"} <channel|>" + compact};
}

class Mutator {
public:
    explicit Mutator(unsigned seed) : m_random(seed) {}

    QByteArray input()
    {
        QByteArray bytes = any(m_seeds);
        for (unsigned steps = below(8); steps > 0; --steps)
            change(bytes);
        return bytes;
    }

private:
    unsigned below(qsizetype end) { return unsigned(m_random() % std::uint64_t(end)); }
    QByteArray any(const QList<QByteArray>& list) { return list[below(list.size())]; }

    void change(QByteArray& bytes)
    {
        static const QList<QByteArray> pieces{"{",
                                              "}",
                                              "[",
                                              "]",
                                              "\"",
                                              ",",
                                              ":",
                                              "\\",
                                              "\n",
                                              "\\u",
                                              "\\ud83d",
                                              "\xf0\x9f",
                                              "\xe2\x80\xa8",
                                              "...",
                                              "`",
                                              "N/A",
                                              "<turn|>",
                                              "\"title\":",
                                              "\"tagline\":",
                                              "\"publicationCaption\":\"",
                                              "\xcc\x81",
                                              "\xef\xbf\xbd"};
        const unsigned at = below(bytes.size() + 1), length = below(bytes.size() - at + 1);
        switch (below(6)) {
        case 0:
            bytes.truncate(at);
            break;
        case 1:
            bytes.insert(at, any(pieces));
            break;
        case 2:
            bytes.remove(at, below(16));
            break;
        case 3:
            bytes.insert(at, any(m_seeds).left(below(80)));
            break;
        case 4:
            if (length > 0)
                bytes[at] = char(below(256));
            break;
        case 5:
            bytes.insert(at, bytes.sliced(at, std::min(length, 64u)).repeated(1 << below(10)));
            break;
        }
    }

    std::mt19937_64 m_random;
    const QList<QByteArray> m_seeds = seeds();
};

}    // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption seconds(u"seconds"_s, u"how long to try"_s, u"n"_s, u"60"_s);
    const QCommandLineOption seed(u"seed"_s, u"of the random numbers"_s, u"n"_s, u"1"_s);
    parser.addOptions({seconds, seed});
    parser.addHelpOption();
    parser.process(application);

    Mutator mutator(parser.value(seed).toUInt());
    QElapsedTimer timer;
    timer.start();
    qint64 inputs = 0, bytes = 0;
    for (; timer.elapsed() < parser.value(seconds).toLongLong() * 1000; ++inputs) {
        const QByteArray input = mutator.input();
        bytes += input.size();
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.constData()),
                               std::size_t(input.size()));
    }
    std::printf("%lld inputs, %lld bytes, no finding\n", static_cast<long long>(inputs),
                static_cast<long long>(bytes));
}

#endif
