#include "studio/publish/PublishChecks.h"

#include "platform/photo/PhotoCache.h"
#include "templates/BuiltInTemplateLibrary.h"
#include "tests/studio/publish/BadPosts.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

using CheckKind = PublishCheckKind;
using Network = SocialPublishNetwork;
using Placement = SocialPublishPlacement;

}    // namespace

TEST(PublishChecks, TellWhatIsWrongWithAPost)
{
    for (const BadPost& bad : badPosts()) {
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
        post.caption = repeatedText(u"@ana #sol "_s, 500);
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
