#include "studio/publish/PublishChecks.h"

#include "canvas/RenderFingerprint.h"
#include "canvas/WarningSentences.h"
#include "copygen/EngineProfile.h"
#include "model/PlainText.h"

#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Kind = PublishCheckKind;

constexpr int mostHashtags = 30, mostMentions = 20;    // that Instagram takes
constexpr int fewHashtags = 5;                         // with more, a note is given

// "el título", as a part of a sentence.
QString nameInSentence(CopySlot slot)
{
    const QString name = row(slot).displayName.toString();
    return u"el "_s + (slot == CopySlot::callToAction ? name : name.toLower());
}

// "el título, el subtítulo y el CTA".
QString joinedNames(QStringList names)
{
    const QString last = names.takeLast();
    return names.isEmpty() ? last : names.join(u", "_s) + u" y "_s + last;
}

QString capitalizedSentence(const QString& sentence)
{
    return sentence.left(1).toUpper() + sentence.mid(1);
}

// Whether somebody, or a model, has written texts for the item.
bool hasWrittenCopy(const PublicationItem& item)
{
    const GeneratedCopy& placeholder = GeneratedCopy::placeholder();
    return item.analysis.title != placeholder.title ||
           item.analysis.subtitle != placeholder.subtitle ||
           item.analysis.tagline != placeholder.tagline;
}

// The call to action of the placeholder is also one that a model writes.
bool isPlaceholder(const PublicationItem& item, const TextLayer& layer)
{
    return layer.text.trimmed() == GeneratedCopy::placeholder().text(layer.slot) &&
           (layer.slot != CopySlot::callToAction || !hasWrittenCopy(item));
}

struct Subject {
    QUuid item;
    qsizetype index = 0, count = 1;    // of the item among all
};

// A check of one image; its number is only told if there are several.
PublishCheck checkOfImage(Kind kind, const Subject& subject, const QString& sentence,
                          QStringView separator = u": ", QUuid layer = {})
{
    PublishCheck check;
    check.kind = kind;
    const QString number = QString::number(subject.index + 1);
    const bool isAlone = subject.count == 1;
    check.sentence = isAlone ? capitalizedSentence(sentence)
                             : u"Imagen "_s + number + separator.toString() + sentence;
    check.item = subject.item;
    check.layer = layer;
    check.link = isAlone ? u"Ver la imagen"_s : u"Ver imagen "_s + number;
    return check;
}

PublishCheck checkOfCaption(Kind kind, const QString& sentence)
{
    PublishCheck check;
    check.kind = kind;
    check.sentence = sentence;
    return check;
}

template <typename Test>
void appendTextCheck(QList<PublishCheck>& found, Kind kind, const Subject& subject,
                     const PublicationItem& item, const Test& test, const QString& one,
                     const QString& several)
{
    QStringList names;
    QUuid first;
    for (const TextLayer& layer : item.layers) {
        if (!layer.isVisible || !test(layer))
            continue;
        names.append(nameInSentence(layer.slot));
        first = first.isNull() ? layer.id : first;
    }
    if (names.isEmpty())
        return;
    found.append(checkOfImage(
        kind, subject, joinedNames(names) + (names.size() == 1 ? one : several), u": ", first));
}

bool isUnwritten(const TextLayer& layer)
{
    return isOfMissingAnswer(layer.text);
}

void appendTextChecks(QList<PublishCheck>& found, const Subject& subject,
                      const PublicationItem& item)
{
    const auto isExample = [&](const TextLayer& layer) { return isPlaceholder(item, layer); };
    appendTextCheck(found, Kind::placeholder, subject, item, isExample,
                    u" sigue siendo el de ejemplo."_s, u" siguen siendo los de ejemplo."_s);
    appendTextCheck(found, Kind::missingAnswer, subject, item, isUnwritten,
                    u" dice que el modelo no respondió."_s,
                    u" dicen que el modelo no respondió."_s);
}

// One check for each problem that the canvas has found in a text.
void appendMarks(QList<PublishCheck>& found, const Subject& subject,
                 const QList<TextWarning>& warnings)
{
    const auto append = [&](Kind kind, const TextWarning& only) {
        for (const QString& sentence : warningSentences({only}))
            found.append(checkOfImage(kind, subject, sentence, u". ", only.layer));
    };
    for (const TextWarning& warning : warnings) {
        TextWarning blank;
        blank.layer = warning.layer;
        blank.slot = warning.slot;
        if (warning.overflows) {
            TextWarning only = blank;
            only.overflows = true;
            append(Kind::overflow, only);
        }
        if (warning.lacksGlyphs) {
            TextWarning only = blank;
            only.lacksGlyphs = true;
            append(Kind::glyphs, only);
        }
        if (warning.contrast) {
            TextWarning only = blank;
            only.contrast = warning.contrast;
            only.leastContrast = warning.leastContrast;
            append(Kind::contrast, only);
        }
    }
}

void appendSafeZone(QList<PublishCheck>& found, const Subject& subject,
                    const QList<TextWarning>& warnings)
{
    for (const TextWarning& warning : warnings) {
        if (warning.isOutsideSafeZone) {
            found.append(
                checkOfImage(Kind::safeZone, subject,
                             u"%1: fuera de la zona segura."_s.arg(row(warning.slot).displayName),
                             u". ", warning.layer));
        }
    }
}

std::optional<PublishCheck> formatCheck(const PublishSubject& subject)
{
    PublishCheck check;
    check.kind = Kind::format;
    const bool isStoryFormat = subject.format == SocialFormat::storyReel;
    if (subject.placement == SocialPublishPlacement::story && !isStoryFormat) {
        check.sentence = u"El formato %1 no llena una story: se verá con bandas."_s.arg(
            row(subject.format).rawValue);
        check.link = u"Adaptar a 9:16"_s;
        return check;
    }
    if (subject.network == SocialPublishNetwork::instagram && isStoryFormat &&
        subject.placement == SocialPublishPlacement::feed) {
        check.sentence =
            u"Instagram rechaza el formato %1 en el feed: admite de 4:5 a 1,91:1."_s.arg(
                row(subject.format).rawValue);
        check.link = u"Adaptar a 4:5"_s;
        return check;
    }
    return std::nullopt;
}

void appendCaptionChecks(QList<PublishCheck>& found, const PublishSubject& subject)
{
    const auto& network = row(subject.network);
    const QString& caption = subject.caption;
    if (caption.trimmed() == GeneratedCopy::placeholder().publicationCaption) {
        found.append(checkOfCaption(Kind::placeholder,
                                    u"El texto de la publicación sigue siendo el de ejemplo."_s));
    }
    if (isOfMissingAnswer(caption)) {
        found.append(checkOfCaption(
            Kind::missingAnswer, u"El texto de la publicación dice que el modelo no respondió."_s));
    }
    const qsizetype over = caption.size() - network.longestCaption;
    if (over > 0) {
        found.append(
            checkOfCaption(Kind::captionLength,
                           u"Al texto de la publicación le %1: %2 admite %3."_s.arg(
                               over == 1 ? u"sobra 1 carácter"_s
                                         : u"sobran %1 caracteres"_s.arg(QString::number(over)),
                               network.title, QString::number(network.longestCaption))));
    }
    const qsizetype hashtags = hashtagsIn(caption).size(), mentions = mentionsIn(caption).size();
    const bool isInstagram = subject.network == SocialPublishNetwork::instagram;
    if (isInstagram && hashtags > mostHashtags) {
        found.append(checkOfCaption(
            Kind::tags, u"%1 hashtags: Instagram admite %2."_s.arg(hashtags).arg(mostHashtags)));
    } else if (hashtags > fewHashtags) {
        PublishCheck note = checkOfCaption(
            Kind::manyHashtags,
            u"%1 hashtags. Con %2 o menos suele ir mejor."_s.arg(hashtags).arg(fewHashtags));
        note.isWarning = false;
        found.append(note);
    }
    if (isInstagram && mentions > mostMentions) {
        found.append(checkOfCaption(
            Kind::tags, u"%1 menciones: Instagram admite %2."_s.arg(mentions).arg(mostMentions)));
    }
}

// The kinds of checks that a post undergoes before it is rendered.
QList<Kind> kindsFor(const PublishSubject& subject)
{
    QList<Kind> kinds{Kind::placeholder, Kind::missingAnswer, Kind::format,  Kind::published,
                      Kind::overflow,    Kind::glyphs,        Kind::contrast};
    if (subject.placement == SocialPublishPlacement::story)
        kinds.append(Kind::safeZone);
    else
        kinds.append(Kind::captionLength);
    // With more, it is found, or the check of what the network takes is found instead.
    if (subject.placement == SocialPublishPlacement::feed &&
        hashtagsIn(subject.caption).size() <= fewHashtags)
        kinds.append(Kind::manyHashtags);
    if (subject.placement == SocialPublishPlacement::feed &&
        subject.network == SocialPublishNetwork::instagram)
        kinds.append(Kind::tags);
    return kinds;
}

// In megabytes with a decimal comma, rounded up, so that a size above a limit does not read like
// the limit.
QString roundedUpMegabytes(qint64 bytes)
{
    QString text = QString::number(std::ceil(double(bytes) / 100'000) / 10, 'f', 1);
    if (text.endsWith(u".0"_s))
        text.chop(2);
    return text.replace(u'.', u',') + u" MB"_s;
}

bool isWord(char32_t c)
{
    return QChar::isLetterOrNumber(c) || c == U'_';
}

// Whether `c` leaves a word unfinished: a combining mark or a joiner, but not the marks of emoji.
bool joinsWord(char32_t c)
{
    constexpr char32_t emojiStyle = 0xfe0f, keycap = 0x20e3, nonJoiner = 0x200c, joiner = 0x200d;
    return (QChar::isMark(c) && c != emojiStyle && c != keycap) || c == nonJoiner || c == joiner;
}

// Addresses. Each branch begins where a run of its characters does and never gives up what it has
// read, so that a long word is read once.
const QRegularExpression& addressPattern()
{
    static const QRegularExpression pattern(
        u"(?:(?<![a-z0-9+.-])[0-9+.-]*+[a-z][a-z0-9+.-]*+://|www\\.|"
        "(?<![\\w.-])(?:[\\w-]*+\\.)++(?<=[\\w-]\\.)[\\w-]++/)\\S*+"_s,
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

// The words that follow one of the signs, neither of them inside another word or an address.
QList<CaptionTag> tagsIn(const QString& caption, QStringView signs)
{
    QList<CaptionTag> tags;
    auto addresses = addressPattern().globalMatch(caption);
    bool isInWord = false, isInTag = false, isAfterSign = false;
    for (qsizetype at = 0; at < caption.size();) {
        if (addresses.hasNext() && addresses.peekNext().capturedStart() == at) {
            at = addresses.next().capturedEnd();
            isInWord = isInTag = isAfterSign = false;
            continue;
        }
        const bool isPair = caption[at].isHighSurrogate() && at + 1 < caption.size() &&
                            caption[at + 1].isLowSurrogate();
        const qsizetype next = at + (isPair ? 2 : 1);
        const char32_t c = isPair ? QChar::surrogateToUcs4(caption[at], caption[at + 1])
                                  : char32_t(caption[at].unicode());
        if (isAfterSign && isWord(c)) {
            tags.append({at - 1, 1});
            isInTag = true;
        }
        isAfterSign = !isInWord && signs.contains(caption[at]);
        isInWord = isWord(c) || (isInWord && joinsWord(c));
        isInTag = isInTag && isInWord;
        if (isInTag)
            tags.last().length = next - tags.last().start;
        at = next;
    }
    return tags;
}

}    // namespace

QStringList fingerprintsOf(const QList<PublicationItem>& items, SocialFormat format,
                           const OutputSize& outputSize)
{
    QStringList names;
    for (const PublicationItem& item : items) {
        names.append(
            renderFingerprint({item, item.image.digest, outputSize(format), designSize(format)}));
    }
    return names;
}

PublishCheck checkOfPublished(const PublishRecord& earlier)
{
    const QDateTime local = earlier.time.toLocalTime();
    const bool isThisYear = local.date().year() == QDate::currentDate().year();
    const QString time = QLocale(QLocale::Spanish)
                             .toString(local, isThisYear ? u"d 'de' MMMM 'a las' H:mm"_s
                                                         : u"d 'de' MMMM 'de' yyyy 'a las' H:mm"_s);
    PublishCheck check;
    check.kind = Kind::published;
    check.sentence =
        (earlier.state == PublishRecord::State::published ? u"Ya se publicó el %1."_s
                                                          : u"Puede que ya se publicara el %1."_s)
            .arg(time);
    check.link = u"Ver en el historial"_s;
    return check;
}

CheckedPost checkedPost(const PublishSubject& subject)
{
    CheckedPost post;
    if (subject.published)
        post.found.append(checkOfPublished(*subject.published));
    if (const auto check = formatCheck(subject))
        post.found.append(*check);
    const bool isStory = subject.placement == SocialPublishPlacement::story;
    if (!isStory)
        appendCaptionChecks(post.found, subject);
    for (qsizetype i = 0; i < subject.items.size(); ++i) {
        const PublicationItem& item = subject.items[i];
        const Subject of{item.id, i, subject.items.size()};
        appendTextChecks(post.found, of, item);
        const QList<TextWarning> warnings = subject.warnings.value(item.id);
        if (isStory)
            appendSafeZone(post.found, of, warnings);
        appendMarks(post.found, of, warnings);
    }
    std::ranges::stable_partition(post.found, &PublishCheck::isWarning);
    for (const Kind kind : kindsFor(subject))
        post.passed += std::ranges::find(post.found, kind, &PublishCheck::kind) == post.found.end();
    return post;
}

QList<PublishCheck> checksOfTexts(const PublicationItems& items)
{
    QList<PublishCheck> found;
    for (qsizetype i = 0; i < items.size(); ++i)
        appendTextChecks(found, {items[i].id, i, items.size()}, items[i]);
    return found;
}

QString noticeOfExport(const PublicationItems& items)
{
    const QList<PublishCheck> found = checksOfTexts(items);
    QStringList parts;
    for (const auto& [kind, what] :
         {std::pair(Kind::placeholder, u"textos de ejemplo"_s),
          std::pair(Kind::missingAnswer, u"textos de un modelo que no respondió"_s)}) {
        const auto count = std::ranges::count(found, kind, &PublishCheck::kind);
        if (count > 0)
            parts.append(u"%1 con %2"_s.arg(counted(count, u"imagen", u"imágenes"), what));
    }
    return parts.isEmpty() ? QString() : u"Vas a exportar %1."_s.arg(parts.join(u" y "_s));
}

QList<PublishCheck> checksOfPrepared(const PreparedPost& post, SocialPublishNetwork network)
{
    const auto& limits = row(network);
    QList<PublishCheck> found;
    for (qsizetype i = 0; i < post.bytes.size(); ++i) {
        if (post.bytes[i] > limits.largestImage) {
            found.append(checkOfImage(
                Kind::imageBytes, {post.items.value(i), i, post.bytes.size()},
                u"pesa %1 y %2 admite %3."_s.arg(roundedUpMegabytes(post.bytes[i]), limits.title,
                                                 roundedUpMegabytes(limits.largestImage))));
        }
    }
    if (post.requestBytes > post.mostRequestBytes) {
        PublishCheck check;
        check.kind = Kind::requestBytes;
        check.sentence = u"La publicación ocupa %1 y el límite es de %2."_s.arg(
            roundedUpMegabytes(post.requestBytes), roundedUpMegabytes(post.mostRequestBytes));
        found.append(check);
    }
    using Seconds = std::chrono::duration<double>;
    const double limit = Seconds(post.timeLimit).count();
    if (post.rate && double(post.requestBytes) > *post.rate * limit) {
        PublishCheck check;
        check.kind = Kind::requestTime;
        check.sentence = u"A la velocidad del último envío tardaría %1 y el límite es de %2."_s.arg(
            counted(qint64(std::ceil(double(post.requestBytes) / *post.rate)), u"segundo",
                    u"segundos"),
            counted(qint64(limit), u"segundo", u"segundos"));
        found.append(check);
    }
    return found;
}

QList<CaptionTag> hashtagsIn(const QString& caption)
{
    return tagsIn(caption, u"#＃");
}

QList<CaptionTag> mentionsIn(const QString& caption)
{
    return tagsIn(caption, u"@＠");
}
