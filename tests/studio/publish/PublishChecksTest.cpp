#include "studio/publish/PublishChecks.h"

#include "platform/photo/PhotoCache.h"
#include "templates/BuiltInTemplateLibrary.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using CheckKind = PublishCheckKind;
using Network = SocialPublishNetwork;
using Placement = SocialPublishPlacement;

// A post of written images to the feed of Instagram.
PublishSubject ordinaryPost(int images = 1)
{
    PublishSubject post;
    for (int i = 0; i < images; ++i) {
        const GeneratedCopy copy(u"Respira otoño en los Picos"_s,
                                 u"Casas rurales con chimenea, a un paso del sendero."_s,
                                 u"Dos noches, desayuno y leña incluida."_s, u"Ver más"_s, {}, {});
        PublicationItem item = PublicationItem::make({}, {});
        item.analysis = copy;
        item.layers = PublicationItem::defaultLayers(copy);
        post.items.append(item);
    }
    post.caption = u"Hay fines de semana que se recuerdan por lo que no hiciste. En octubre, los "
                   "Picos se quedan en silencio: hayedos encendidos y leña preparada.\n\n"
                   "#PicosDeEuropa #CasaRural #Otoño"_s;
    return post;
}

QString repeated(const QString& text, int times)
{
    return text.repeated(times).trimmed();
}

struct BadPost {
    const char* label;
    std::function<void(PublishSubject&)> spoil;
    CheckKind kind;
    QString sentence;
    bool isWarning = true;
};

TextWarning warningOf(const PublicationItem& item, int layer)
{
    TextWarning warning;
    warning.layer = item.layers[layer].id;
    warning.slot = item.layers[layer].slot;
    return warning;
}

}    // namespace

// The network or the user would refuse each of these posts, or get something that was not meant.
TEST(PublishChecks, TellWhatIsWrongWithAPost)
{
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
            TextWarning warning = warningOf(post.items[1], layer);
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
        u"No se ha podido generar el texto completo de la publicación porque el modelo no quiso."_s;
    const auto toStory = [&](SocialFormat format) { return setFormat(Placement::story, format); };
    const QList<BadPost> rows{
        {"title", setText(1, 0, example.title), CheckKind::placeholder,
         u"Imagen 2: el título sigue siendo el de ejemplo."_s},
        {"subtitle", setText(0, 1, example.subtitle), CheckKind::placeholder,
         u"Imagen 1: el subtítulo sigue siendo el de ejemplo."_s},
        {"shown tagline",
         [&](PublishSubject& post) {
             post.items[0].layers[2].isVisible = true;
             post.items[0].layers[2].text = example.tagline;
         },
         CheckKind::placeholder, u"Imagen 1: el párrafo sigue siendo el de ejemplo."_s},
        {"call to action beside texts that somebody typed",
         [](PublishSubject& post) { post.items[1].analysis = GeneratedCopy::placeholder(); },
         CheckKind::placeholder, u"Imagen 2: el CTA sigue siendo el de ejemplo."_s},
        {"new image", [](PublishSubject& post) { post.items[1] = PublicationItem::make({}, {}); },
         CheckKind::placeholder,
         u"Imagen 2: el título, el subtítulo y el CTA siguen siendo los de ejemplo."_s},
        {"new image alone",
         [](PublishSubject& post) { post.items = {PublicationItem::make({}, {})}; },
         CheckKind::placeholder,
         u"El título, el subtítulo y el CTA siguen siendo los de ejemplo."_s},
        {"white space", setText(0, 0, example.title + u"\n "_s), CheckKind::placeholder,
         u"Imagen 1: el título sigue siendo el de ejemplo."_s},
        {"caption", setCaption(Network::facebook, example.publicationCaption),
         CheckKind::placeholder, u"El texto de la publicación sigue siendo el de ejemplo."_s},
        {"no answer", setText(1, 0, u"Gemma no respondió"_s), CheckKind::missingAnswer,
         u"Imagen 2: el título dice que el modelo no respondió."_s},
        {"no answer of a configured model", setText(0, 0, u"El modelo no respondió"_s),
         CheckKind::missingAnswer, u"Imagen 1: el título dice que el modelo no respondió."_s},
        {"no answer, named", setText(0, 1, u"qwen no ha dado una respuesta en 127.0.0.1."_s),
         CheckKind::missingAnswer, u"Imagen 1: el subtítulo dice que el modelo no respondió."_s},
        {"no answer in two texts",
         [](PublishSubject& post) {
             post.items[0].layers[0].text = u"Gemma no respondió"_s;
             post.items[0].layers[3].text = u"Reintentar"_s;
         },
         CheckKind::missingAnswer,
         u"Imagen 1: el título y el CTA dicen que el modelo no respondió."_s},
        {"no answer in the caption", setCaption(Network::linkedIn, noCaption),
         CheckKind::missingAnswer,
         u"El texto de la publicación dice que el modelo no respondió."_s},
        {"story to the feed", setFormat(Placement::feed, SocialFormat::storyReel),
         CheckKind::format,
         u"Instagram rechaza el formato Story / Reel en el feed: admite de 4:5 a 1,91:1."_s},
        {"horizontal story", toStory(SocialFormat::horizontal), CheckKind::format,
         u"El formato Horizontal no llena una story: se verá con bandas."_s},
        {"square story", toStory(SocialFormat::square), CheckKind::format,
         u"El formato Post cuadrado no llena una story: se verá con bandas."_s},
        {"portrait story", toStory(SocialFormat::carouselPortrait), CheckKind::format,
         u"El formato Carrusel / Post vertical no llena una story: se verá con bandas."_s},
        {"one too many", setCaption(Network::instagram, QString(2'201, u'a')),
         CheckKind::captionLength,
         u"Al texto de la publicación le sobra 1 carácter: Instagram admite 2200."_s},
        {"too long for Instagram", setCaption(Network::instagram, QString(2'310, u'a')),
         CheckKind::captionLength,
         u"Al texto de la publicación le sobran 110 caracteres: Instagram admite 2200."_s},
        {"emoji take two", setCaption(Network::instagram, u"🌲"_s.repeated(1'101)),
         CheckKind::captionLength,
         u"Al texto de la publicación le sobran 2 caracteres: Instagram admite 2200."_s},
        {"too long for LinkedIn", setCaption(Network::linkedIn, QString(3'005, u'a')),
         CheckKind::captionLength,
         u"Al texto de la publicación le sobran 5 caracteres: LinkedIn admite 3000."_s},
        {"too long for Facebook", setCaption(Network::facebook, QString(63'207, u'a')),
         CheckKind::captionLength,
         u"Al texto de la publicación le sobra 1 carácter: Facebook admite 63206."_s},
        {"hashtags", setCaption(Network::instagram, repeated(u"#otoño "_s, 31)), CheckKind::tags,
         u"31 hashtags: Instagram admite 30."_s},
        {"hashtags of another script", setCaption(Network::instagram, repeated(u"#日本 "_s, 40)),
         CheckKind::tags, u"40 hashtags: Instagram admite 30."_s},
        {"hashtags in a row", setCaption(Network::instagram, repeated(u"a #é_1, "_s, 34)),
         CheckKind::tags, u"34 hashtags: Instagram admite 30."_s},
        {"mentions", setCaption(Network::instagram, repeated(u"@ana "_s, 21)), CheckKind::tags,
         u"21 menciones: Instagram admite 20."_s},
        {"six hashtags", setCaption(Network::instagram, repeated(u"#sol "_s, 6)),
         CheckKind::manyHashtags, u"6 hashtags. Con 5 o menos suele ir mejor."_s, false},
        {"many hashtags elsewhere", setCaption(Network::linkedIn, repeated(u"#sol "_s, 31)),
         CheckKind::manyHashtags, u"31 hashtags. Con 5 o menos suele ir mejor."_s, false},
        {"published", published(PublishRecord::State::published), CheckKind::published,
         u"Ya se publicó el 12 de noviembre a las 9:05."_s},
        {"published long ago", published(PublishRecord::State::published, 2019),
         CheckKind::published, u"Ya se publicó el 12 de noviembre de 2019 a las 9:05."_s},
        {"perhaps published", published(PublishRecord::State::unknown), CheckKind::published,
         u"Puede que ya se publicara el 12 de noviembre a las 9:05."_s},
        {"outside the safe zone",
         mark(Placement::story, 0, [](TextWarning& one) { one.isOutsideSafeZone = true; }),
         CheckKind::safeZone, u"Imagen 2. Título: fuera de la zona segura."_s},
        {"overflow", mark(Placement::feed, 1, [](TextWarning& one) { one.overflows = true; }),
         CheckKind::overflow, u"Imagen 2. Subtítulo: no cabe en su caja."_s},
        {"overflow of a story",
         mark(Placement::story, 3, [](TextWarning& one) { one.overflows = true; }),
         CheckKind::overflow, u"Imagen 2. CTA: no cabe en su caja."_s},
        {"glyphs", mark(Placement::feed, 0, [](TextWarning& one) { one.lacksGlyphs = true; }),
         CheckKind::glyphs,
         u"Imagen 2. Título: alguno de sus signos no está en ninguna fuente instalada."_s},
        {"contrast",
         mark(Placement::feed, 0,
              [](TextWarning& one) {
                  one.contrast = 3.4;
                  one.leastContrast = 4.5;
              }),
         CheckKind::contrast, u"Imagen 2. Título: contraste bajo (3,4; lo mínimo es 4,5)."_s},
    };
    for (const BadPost& bad : rows) {
        SCOPED_TRACE(bad.label);
        PublishSubject post = ordinaryPost(2);
        bad.spoil(post);
        const CheckedPost checked = checkedPost(post);
        ASSERT_EQ(checked.found.size(), 1);
        EXPECT_EQ(checked.found[0].kind, bad.kind);
        EXPECT_EQ(checked.found[0].sentence, bad.sentence);
        EXPECT_EQ(checked.found[0].isWarning, bad.isWarning);
        const bool isOfCaption = checked.found[0].item.isNull() &&
                                 bad.kind != CheckKind::published && bad.kind != CheckKind::format;
        EXPECT_EQ(checked.found[0].link.isEmpty(), isOfCaption);
        EXPECT_GE(checked.passed, 7);
    }
}

TEST(PublishChecks, TellWhatIsWrongWithRenderedImages)
{
    struct Row {
        const char* label;
        Network network;
        QList<qint64> bytes;
        std::optional<double> rate;
        CheckKind kind;
        QString sentence;
    };
    const QList<Row> rows{
        {"for Instagram",
         Network::instagram,
         {8'000'001},
         {},
         CheckKind::imageBytes,
         u"Pesa 8,1 MB y Instagram admite 8 MB."_s},
        {"for Facebook",
         Network::facebook,
         {1, 10'400'000},
         {},
         CheckKind::imageBytes,
         u"Imagen 2: pesa 10,4 MB y Facebook admite 10 MB."_s},
        {"for LinkedIn",
         Network::linkedIn,
         {5'000'001, 5'000'000},
         {},
         CheckKind::imageBytes,
         u"Imagen 1: pesa 5,1 MB y LinkedIn admite 5 MB."_s},
        {"together",
         Network::facebook,
         {60'000'000 / 8, 60'000'000 / 8},
         {},
         CheckKind::requestBytes,
         u"La publicación ocupa 20 MB y el límite es de 12,5 MB."_s},
        {"a slow line",
         Network::facebook,
         {6'000'000},
         20'000.0,
         CheckKind::requestTime,
         u"A la velocidad del último envío tardaría 400 segundos y el límite es de 260 "
         "segundos."_s},
        {"a very slow line",
         Network::linkedIn,
         {3'000},
         1.0,
         CheckKind::requestTime,
         u"A la velocidad del último envío tardaría 4000 segundos y el límite es de 260 "
         "segundos."_s},
    };
    for (const Row& bad : rows) {
        SCOPED_TRACE(bad.label);
        PreparedPost post;
        post.bytes = bad.bytes;
        post.timeLimit = std::chrono::seconds(260);
        post.rate = bad.rate;
        for (const qint64 bytes : bad.bytes) {
            post.items.append(QUuid::createUuid());
            post.requestBytes += bytes / 3 * 4;
        }
        post.mostRequestBytes =
            bad.kind == CheckKind::requestBytes ? 12'500'000 : post.requestBytes;
        const QList<PublishCheck> found = checksOfPrepared(post, bad.network);
        ASSERT_EQ(found.size(), 1);
        EXPECT_EQ(found[0].kind, bad.kind);
        EXPECT_EQ(found[0].sentence, bad.sentence);
        EXPECT_EQ(found[0].item.isNull(), bad.kind != CheckKind::imageBytes);
        post.bytes = {1'000};
        post.mostRequestBytes = post.requestBytes;
        post.rate.reset();
        EXPECT_TRUE(checksOfPrepared(post, bad.network).isEmpty());
    }
}

TEST(PublishChecks, CountTagsAsTheNetworksDo)
{
    struct Row {
        QString caption;
        int hashtags, mentions;
    };
    const QList<Row> rows{
        {u""_s, 0, 0},
        {u"#uno #dos_3 #4"_s, 3, 0},
        {u"#uno#dos,#tres."_s, 2, 0},
        {u"# uno, #, ##"_s, 0, 0},
        {u"##doble"_s, 1, 0},
        {u"C#sharp ana@b.es"_s, 0, 0},
        {u"(#otoño) ¡#Ñandú! «#été»"_s, 3, 0},
        {u"#日本 #العربية #हिन्दी ＃東京"_s, 4, 0},
        {u"#نیم‌فاصله"_s, 1, 0},
        {u"❤️#amor 1️⃣#uno #️⃣"_s, 2, 0},
        {u"https://x.es/#abc http://x.es/@ana www.x.es/#a x.es/#b"_s, 0, 0},
        {u"mira https://x.es/a#b #sí @ana y @b.c_d"_s, 1, 2},
        {u"@ @@ana ana@ @ana@b"_s, 0, 2},
        {u"línea\n#otra\n@otra"_s, 1, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.caption.toStdString());
        EXPECT_EQ(hashtagsIn(row.caption).size(), row.hashtags);
        EXPECT_EQ(mentionsIn(row.caption).size(), row.mentions);
    }
    EXPECT_EQ(hashtagsIn(u"🌲#Año_2! ＃東京 #नि"_s), (QList<CaptionTag>{{2, 6}, {10, 3}, {14, 3}}));
    // Words that look like the beginning of an address as far as they go.
    for (const QString& part : {u"a"_s, u"a."_s, u"."_s, u"-"_s, u"a+"_s, u"1"_s, u"é.-"_s}) {
        const QString word = part.repeated(100'000);
        EXPECT_EQ(hashtagsIn(word + u" #sí"_s).size(), 1) << qPrintable(part);
        EXPECT_EQ(hashtagsIn(word + u"a.b/#no #sí"_s).size(), 1) << qPrintable(part);
    }
}

TEST(PublishChecks, SayNothingOfOrdinaryPosts)
{
    const QStringList captions{
        u"Hay fines de semana que se recuerdan por lo que no hiciste. En octubre, los Picos se "
        "quedan en silencio: hayedos encendidos, leña preparada y un sendero que sale desde la "
        "puerta. #PicosDeEuropa #CasaRural #Otoño"_s,
        u"Vino, leña y una mesa larga. Reserva tu cena de noviembre y trae a quien quieras: la "
        "cocina abre de jueves a domingo 🍷\n\n#Cocina #Vino #Temporada #KilómetroCero"_s,
        u"¿Y si este puente lo pasas mirando el mar? Dos noches con desayuno, bicicletas y un "
        "faro a diez minutos. Plazas limitadas. Escríbenos a hola@faro.es. #Faro #Mar #Norte"_s,
        u"Ver más no siempre es correr más. Rutas guiadas para familias, con paradas que los "
        "pequeños recuerdan: el arroyo, el roble y la ermita. Apúntate hoy. #Rutas #Familias "
        "#Naturaleza #Bosque #Otoño"_s,
        u"سنة جديدة في الجبل: بيت دافئ، شاي وكتاب. احجز الآن واستمتع بليلتين مع الإفطار، ومسار "
        "يبدأ من الباب. نراكم قريبا في البيت الأخضر بين الأشجار والهدوء. #جبل #شتاء #سفر"_s,
    };
    int posts = 0;
    const auto isTold = [](PublishSubject post, Placement placement) {
        post.format = SocialFormat::storyReel;
        post.placement = placement;
        post.caption = repeated(u"@ana #sol "_s, 500);
        return checkedPost(post).found.size() > 1;
    };
    EXPECT_TRUE(isTold(ordinaryPost(), Placement::feed));
    EXPECT_FALSE(isTold(ordinaryPost(), Placement::story)) << "a story shows no caption";
    for (const SocialFormat format : allCases<SocialFormat>()) {
        for (const Network network : allCases<Network>()) {
            for (const QString& caption : captions) {
                PublishSubject post = ordinaryPost(1 + posts % 9);
                post.format = format;
                post.network = network;
                post.caption = caption;
                if (format == SocialFormat::storyReel && network == Network::instagram)
                    post.placement = Placement::story;
                const CheckedPost checked = checkedPost(post);
                ++posts;
                EXPECT_TRUE(checked.found.isEmpty())
                    << checked.found.value(0).sentence.toStdString();
                EXPECT_GE(caption.size(), 130);
                EXPECT_LE(caption.size(), 280);
            }
        }
    }
}

TEST(PublishChecks, OfAnExportAreAboutWhatIsDrawn)
{
    PublicationItems items;
    EXPECT_EQ(noticeOfExport(items), QString());
    for (const PublicationItem& item : ordinaryPost(3).items)
        items.append(item);
    EXPECT_EQ(noticeOfExport(items), QString());
    items.append(PublicationItem::make({}, {}));
    EXPECT_EQ(noticeOfExport(items), u"Vas a exportar 1 imagen con textos de ejemplo."_s);
    items.append(PublicationItem::make({}, {}));
    items.edit(0).layers[0].text = u"Gemma no respondió"_s;
    EXPECT_EQ(noticeOfExport(items),
              u"Vas a exportar 2 imágenes con textos de ejemplo y 1 imagen con textos de un modelo "
              "que no respondió."_s);
    for (TextLayer& layer : items.edit(3).layers)
        layer.isVisible = false;
    EXPECT_EQ(checksOfTexts(items).size(), 2);
}

// Real photographs, whose folder is in MOLTIVA_PHOTOS, with the ready-made designs.
TEST(PublishChecks, SayNothingOfRealPhotosWithReadyMadeDesigns)
{
    if (!qEnvironmentVariableIsSet("MOLTIVA_PHOTOS"))
        GTEST_SKIP() << "MOLTIVA_PHOTOS names no folder of photographs";
    const QDir folder(qEnvironmentVariable("MOLTIVA_PHOTOS"));
    const QTemporaryDir own;
    PhotoCache cache(own.filePath(u"thumbnails"_s));
    const BuiltInTemplateLibrary library;
    for (const QString& name : folder.entryList({u"photo-*.jpg"_s}, QDir::Files)) {
        const auto photo = cache.accept(folder.filePath(name));
        ASSERT_TRUE(photo);
        for (const SocialFormat format : allCases<SocialFormat>()) {
            PublishSubject post = ordinaryPost();
            post.format = format;
            if (format == SocialFormat::storyReel)
                post.placement = Placement::story;
            PublicationItem& item = post.items[0];
            const QString path = folder.filePath(name);
            item.image = {path, photo->info.size, photo->info.reducible, photo->digest};
            library.definitions(format).first().application()(item);
            const QSize pixels(176, qRound(176 / row(format).aspectRatio));
            post.warnings.insert(item.id,
                                 judgedItem(layOut(item, exportSize(format), designSize(format)),
                                            pixels, cache.thumbnail({path, photo->digest}))
                                     .warnings);
            for (const PublishCheck& check : checkedPost(post).found)
                ADD_FAILURE() << name.toStdString() << ' ' << rawValue(format).toStdString() << ' '
                              << check.sentence.toStdString();
        }
    }
}
