#pragma once

#include "studio/publish/PublishChecks.h"

#include <functional>

// A post of written images to the feed of Instagram, which has nothing wrong.
inline PublishSubject ordinaryPost(int images = 1)
{
    PublishSubject post;
    for (int i = 0; i < images; ++i) {
        const GeneratedCopy copy(u"Respira otoño en los Picos"_qs,
                                 u"Casas rurales con chimenea, a un paso del sendero."_qs,
                                 u"Dos noches, desayuno y leña incluida."_qs, u"Ver más"_qs, {},
                                 {});
        PublicationItem item = PublicationItem::make({}, {});
        item.analysis = copy;
        item.layers = PublicationItem::defaultLayers(copy);
        post.items.append(item);
    }
    post.caption = u"Hay fines de semana que se recuerdan por lo que no hiciste. En octubre, los "
                   "Picos se quedan en silencio: hayedos encendidos y leña preparada.\n\n"
                   "#PicosDeEuropa #CasaRural #Otoño"_qs;
    return post;
}

struct BadPost {
    const char* label;
    std::function<void(PublishSubject&)> spoil;
    PublishCheckKind kind;
    QString sentence;
    bool isWarning = true;
};

inline TextWarning markOf(const PublicationItem& item, int layer)
{
    TextWarning warning;
    warning.layer = item.layers[layer].id;
    warning.slot = item.layers[layer].slot;
    return warning;
}

inline QString repeatedText(const QString& text, int times)
{
    return text.repeated(times).trimmed();
}

// The network or the user would refuse each of these posts of two images, or get something that was
// not meant. One check finds it before the images are rendered.
inline QList<BadPost> badPosts()
{
    using CheckKind = PublishCheckKind;
    using Network = SocialPublishNetwork;
    using Placement = SocialPublishPlacement;
    const auto setText = [](int item, int layer, const QString& text) {
        return [=](PublishSubject& post) { post.items[item].layers[layer].text = text; };
    };
    const auto setCaption = [](Network network, const QString& caption) {
        return [=](PublishSubject& post) {
            post.network = network;
            post.caption = caption;
        };
    };
    const auto setFormat = [](Placement placement, SocialFormat format) {
        return [=](PublishSubject& post) {
            post.placement = placement;
            post.format = format;
        };
    };
    const auto mark = [](Placement placement, int layer, const auto& set) {
        return [=](PublishSubject& post) {
            post.placement = placement;
            if (placement == Placement::story)
                post.format = SocialFormat::storyReel;
            TextWarning warning = markOf(post.items[1], layer);
            set(warning);
            post.warnings.insert(post.items[1].id, {warning});
        };
    };
    const auto published = [](PublishRecord::State state, int year = QDate::currentDate().year()) {
        return [=](PublishSubject& post) {
            post.published = PublishRecord();
            post.published->state = state;
            post.published->time = QDateTime(QDate(year, 11, 12), QTime(9, 5));
        };
    };
    const GeneratedCopy& example = GeneratedCopy::placeholder();
    const QString noCaption =
        u"No se ha podido generar el texto completo de la publicación porque el modelo no quiso."_qs;
    const auto toStory = [&](SocialFormat format) { return setFormat(Placement::story, format); };
    return {
        {"title", setText(1, 0, example.title), CheckKind::placeholder,
         u"Imagen 2: el título sigue siendo el de ejemplo."_qs},
        {"subtitle", setText(0, 1, example.subtitle), CheckKind::placeholder,
         u"Imagen 1: el subtítulo sigue siendo el de ejemplo."_qs},
        {"shown tagline",
         [&](PublishSubject& post) {
             post.items[0].layers[2].isVisible = true;
             post.items[0].layers[2].text = example.tagline;
         },
         CheckKind::placeholder, u"Imagen 1: el párrafo sigue siendo el de ejemplo."_qs},
        {"call to action beside texts that somebody typed",
         [](PublishSubject& post) { post.items[1].analysis = GeneratedCopy::placeholder(); },
         CheckKind::placeholder, u"Imagen 2: el CTA sigue siendo el de ejemplo."_qs},
        {"new image", [](PublishSubject& post) { post.items[1] = PublicationItem::make({}, {}); },
         CheckKind::placeholder,
         u"Imagen 2: el título, el subtítulo y el CTA siguen siendo los de ejemplo."_qs},
        {"new image alone",
         [](PublishSubject& post) { post.items = {PublicationItem::make({}, {})}; },
         CheckKind::placeholder,
         u"El título, el subtítulo y el CTA siguen siendo los de ejemplo."_qs},
        {"white space", setText(0, 0, example.title + u"\n "_qs), CheckKind::placeholder,
         u"Imagen 1: el título sigue siendo el de ejemplo."_qs},
        {"caption", setCaption(Network::facebook, example.publicationCaption),
         CheckKind::placeholder, u"El texto de la publicación sigue siendo el de ejemplo."_qs},
        {"no answer", setText(1, 0, u"Gemma no respondió"_qs), CheckKind::missingAnswer,
         u"Imagen 2: el título dice que el modelo no respondió."_qs},
        {"no answer of a configured model", setText(0, 0, u"El modelo no respondió"_qs),
         CheckKind::missingAnswer, u"Imagen 1: el título dice que el modelo no respondió."_qs},
        {"no answer, named", setText(0, 1, u"qwen no ha dado una respuesta en 127.0.0.1."_qs),
         CheckKind::missingAnswer, u"Imagen 1: el subtítulo dice que el modelo no respondió."_qs},
        {"no answer in two texts",
         [](PublishSubject& post) {
             post.items[0].layers[0].text = u"Gemma no respondió"_qs;
             post.items[0].layers[3].text = u"Reintentar"_qs;
         },
         CheckKind::missingAnswer,
         u"Imagen 1: el título y el CTA dicen que el modelo no respondió."_qs},
        {"no answer in the caption", setCaption(Network::linkedIn, noCaption),
         CheckKind::missingAnswer,
         u"El texto de la publicación dice que el modelo no respondió."_qs},
        {"story to the feed", setFormat(Placement::feed, SocialFormat::storyReel),
         CheckKind::format,
         u"Instagram rechaza el formato Story / Reel en el feed: admite de 4:5 a 1,91:1."_qs},
        {"horizontal story", toStory(SocialFormat::horizontal), CheckKind::format,
         u"El formato Horizontal no llena una story: se verá con bandas."_qs},
        {"square story", toStory(SocialFormat::square), CheckKind::format,
         u"El formato Post cuadrado no llena una story: se verá con bandas."_qs},
        {"portrait story", toStory(SocialFormat::carouselPortrait), CheckKind::format,
         u"El formato Carrusel / Post vertical no llena una story: se verá con bandas."_qs},
        {"one too many", setCaption(Network::instagram, QString(2'201, u'a')),
         CheckKind::captionLength,
         u"Al texto de la publicación le sobra 1 carácter: Instagram admite 2200."_qs},
        {"too long for Instagram", setCaption(Network::instagram, QString(2'310, u'a')),
         CheckKind::captionLength,
         u"Al texto de la publicación le sobran 110 caracteres: Instagram admite 2200."_qs},
        {"emoji take two", setCaption(Network::instagram, u"🌲"_qs.repeated(1'101)),
         CheckKind::captionLength,
         u"Al texto de la publicación le sobran 2 caracteres: Instagram admite 2200."_qs},
        {"too long for LinkedIn", setCaption(Network::linkedIn, QString(3'005, u'a')),
         CheckKind::captionLength,
         u"Al texto de la publicación le sobran 5 caracteres: LinkedIn admite 3000."_qs},
        {"too long for Facebook", setCaption(Network::facebook, QString(63'207, u'a')),
         CheckKind::captionLength,
         u"Al texto de la publicación le sobra 1 carácter: Facebook admite 63206."_qs},
        {"hashtags", setCaption(Network::instagram, repeatedText(u"#otoño "_qs, 31)),
         CheckKind::tags, u"31 hashtags: Instagram admite 30."_qs},
        {"hashtags of another script",
         setCaption(Network::instagram, repeatedText(u"#日本 "_qs, 40)), CheckKind::tags,
         u"40 hashtags: Instagram admite 30."_qs},
        {"hashtags in a row", setCaption(Network::instagram, repeatedText(u"a #é_1, "_qs, 34)),
         CheckKind::tags, u"34 hashtags: Instagram admite 30."_qs},
        {"mentions", setCaption(Network::instagram, repeatedText(u"@ana "_qs, 21)), CheckKind::tags,
         u"21 menciones: Instagram admite 20."_qs},
        {"six hashtags", setCaption(Network::instagram, repeatedText(u"#sol "_qs, 6)),
         CheckKind::manyHashtags, u"6 hashtags. Con 5 o menos suele ir mejor."_qs, false},
        {"many hashtags elsewhere", setCaption(Network::linkedIn, repeatedText(u"#sol "_qs, 31)),
         CheckKind::manyHashtags, u"31 hashtags. Con 5 o menos suele ir mejor."_qs, false},
        {"published", published(PublishRecord::State::published), CheckKind::published,
         u"Ya se publicó el 12 de noviembre a las 9:05."_qs},
        {"published long ago", published(PublishRecord::State::published, 2019),
         CheckKind::published, u"Ya se publicó el 12 de noviembre de 2019 a las 9:05."_qs},
        {"perhaps published", published(PublishRecord::State::unknown), CheckKind::published,
         u"Puede que ya se publicara el 12 de noviembre a las 9:05."_qs},
        {"outside the safe zone",
         mark(Placement::story, 0, [](TextWarning& one) { one.isOutsideSafeZone = true; }),
         CheckKind::safeZone, u"Imagen 2. Título: fuera de la zona segura."_qs},
        {"overflow", mark(Placement::feed, 1, [](TextWarning& one) { one.overflows = true; }),
         CheckKind::overflow, u"Imagen 2. Subtítulo: no cabe en su caja."_qs},
        {"overflow of a story",
         mark(Placement::story, 3, [](TextWarning& one) { one.overflows = true; }),
         CheckKind::overflow, u"Imagen 2. CTA: no cabe en su caja."_qs},
        {"glyphs", mark(Placement::feed, 0, [](TextWarning& one) { one.lacksGlyphs = true; }),
         CheckKind::glyphs,
         u"Imagen 2. Título: alguno de sus signos no está en ninguna fuente instalada."_qs},
        {"contrast",
         mark(Placement::feed, 0,
              [](TextWarning& one) {
                  one.contrast = 3.4;
                  one.leastContrast = 4.5;
              }),
         CheckKind::contrast, u"Imagen 2. Título: contraste bajo (3,4; lo mínimo es 4,5)."_qs},
        {"mentions of another script",
         setCaption(Network::instagram, u"@日本, "_qs.repeated(21).trimmed()), CheckKind::tags,
         u"21 menciones: Instagram admite 20."_qs},
        {"glyphs of a story",
         mark(Placement::story, 1, [](TextWarning& one) { one.lacksGlyphs = true; }),
         CheckKind::glyphs,
         u"Imagen 2. Subtítulo: alguno de sus signos no está en ninguna fuente instalada."_qs},
        {"contrast of a story",
         mark(Placement::story, 3,
              [](TextWarning& one) {
                  one.contrast = 1.2;
                  one.leastContrast = 3;
              }),
         CheckKind::contrast, u"Imagen 2. CTA: contraste bajo (1,2; lo mínimo es 3)."_qs},
    };
}
