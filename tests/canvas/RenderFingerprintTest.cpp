#include "canvas/RenderFingerprint.h"

#include "model/SocialFormat.h"
#include <QCoreApplication>
#include <QProcess>

#include <gtest/gtest.h>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

using Edit = std::function<void(PublicationItem&)>;

PublicationItem sample()
{
    auto item = PublicationItem::make(
        QUrl::fromLocalFile(u"/fotos/a.jpg"_s),
        {.path = u"/fotos/a.jpg"_s, .size = {3000, 2000}, .reducible = true, .digest = {}});
    item.shapeLayers = {{QUuid::createUuid(), ShapeKind::rectangle, {0.1, 0.1, 0.3, 0.2}},
                        {QUuid::createUuid(), ShapeKind::circle, {0.5, 0.6, 0.3, 0.2}},
                        {QUuid::createUuid(), ShapeKind::line, {0.2, 0.9, 0.5, 0.01}}};
    return item;
}

RenderSource sourceOf(const PublicationItem& item,
                      SocialFormat format = SocialFormat::carouselPortrait)
{
    return {item, QByteArray(32, 'd'), exportSize(format), designSize(format)};
}

QString fingerprintAfter(const Edit& edit)
{
    PublicationItem item = sample();
    edit(item);
    return renderFingerprint(sourceOf(item));
}

}    // namespace

TEST(RenderFingerprint, NothingThatCannotBeSeenIsInIt)
{
    const QString original = renderFingerprint(sourceOf(sample()));
    const QList<Edit> unseen{
        [](PublicationItem& i) { i.id = QUuid::createUuid(); },
        [](PublicationItem& i) { i.url = i.image.path = u"/otra/b.jpg"_s; },
        [](PublicationItem& i) { i.analysis.title = u"Otro"_s; },
        [](PublicationItem& i) { i.paidRenderFingerprints = {u"x"_s}; },
        [](PublicationItem& i) { i.layers[2].text = u"Oculto"_s; },
        [](PublicationItem& i) {
            i.placement.offset = {-0.0, -0.0};
        },
        [](PublicationItem& i) { i.layers[0].text += u"  "_s; },
        [](PublicationItem& i) { i.layers[0].shadowColor.alpha = 0.5; },    // not drawn
        [](PublicationItem& i) { i.shapeLayers[0].stroke = codableBlack; },
        [](PublicationItem& i) { i.shapeLayers[1].cornerRadius = 40; },
        [](PublicationItem& i) { i.shapeLayers[2].fill = codableWhite; },
        [](PublicationItem& i) {
            i.shapeLayers.append({{}, ShapeKind::circle, {2, 2, 0.1, 0.1}});
        },
        [](PublicationItem& i) {
            ShapeLayer glass({}, ShapeKind::rectangle, {0, 0, 1, 1});
            glass.fillOpacity = 0;
            i.shapeLayers.append(glass);
        },
        [](PublicationItem& i) {
            TextLayer blank = i.layers[0];
            blank.text = u" \n "_s;
            blank.hasBox = false;
            i.layers.append(blank);
        },
    };
    for (qsizetype n = 0; n < unseen.size(); ++n)
        EXPECT_EQ(fingerprintAfter(unseen[n]), original) << n;

    const auto boxless = [](const Edit& more) {
        return [more](PublicationItem& i) {
            i.layers[0].hasBox = false;
            more(i);
        };
    };
    const QString withoutBox = fingerprintAfter(boxless([](auto&) {}));
    for (const Edit& edit : {Edit([](PublicationItem& i) { i.layers[0].cornerRadius = 3; }),
                             Edit([](PublicationItem& i) { i.layers[0].shadowAngle = 3; }),
                             Edit([](PublicationItem& i) { i.layers[0].background = {}; })})
        EXPECT_EQ(fingerprintAfter(boxless(edit)), withoutBox);

    const auto rounded = [](double radius) {
        return fingerprintAfter([radius](PublicationItem& i) {
            i.layers[0].cornerRadius = i.shapeLayers[0].cornerRadius = radius;
        });
    };
    EXPECT_EQ(rounded(80), rounded(500)) << "as round as they get";
}

TEST(RenderFingerprint, EverythingThatIsSeenIsInIt)
{
    QSet<QString> all{renderFingerprint(sourceOf(sample()))};
    const QList<Edit> seen{
        [](PublicationItem& i) {
            i.image.size = {2000, 3000};
        },
        [](PublicationItem& i) { i.placement.zoom = 1.2; },
        [](PublicationItem& i) { i.placement.mode = ImageFitMode::fit; },
        [](PublicationItem& i) { i.layers[0].text = u"Otro"_s; },
        [](PublicationItem& i) { i.layers[0].fontScale = 0.7; },
        [](PublicationItem& i) { i.layers[0].fontName = u"DejaVu Sans"_s; },
        [](PublicationItem& i) { i.layers[0].alignment = LayerTextAlignment::leading; },
        [](PublicationItem& i) { i.layers[0].foreground.alpha = 0.5; },
        [](PublicationItem& i) { i.layers[0].frame.x += 0.01; },
        [](PublicationItem& i) { i.layers[0].isVisible = false; },
        [](PublicationItem& i) { i.layers[0].hasBox = false; },
        [](PublicationItem& i) { i.layers[0].cornerRadius = 3; },
        [](PublicationItem& i) { i.layers[0].shadowAngle = 3; },
        [](PublicationItem& i) { i.layers[0].shadowRadius = 3; },
        [](PublicationItem& i) { i.layers[0].shadowOpacity = 0; },
        [](PublicationItem& i) { i.layers[0].shadowOpacity += 0.001; },
        [](PublicationItem& i) { i.layers[0].shadowColor.red = 1 / 255.0; },
        [](PublicationItem& i) { i.layers[0].foreground.red = 0.999; },
        [](PublicationItem& i) { i.layers[2].isVisible = true; },
        [](PublicationItem& i) { i.layers[2].text = u"Oculto"_s, i.layers[2].isVisible = true; },
        [](PublicationItem& i) { i.shapeLayers.swapItemsAt(0, 1); },
        [](PublicationItem& i) { i.shapeLayers[0].cornerRadius = 40; },
        [](PublicationItem& i) { i.shapeLayers[0].kind = ShapeKind::triangle; },
        [](PublicationItem& i) { i.shapeLayers[1].strokeWidth = 2; },
        [](PublicationItem& i) { i.shapeLayers[2].strokeOpacity = 1; },
    };
    for (const Edit& edit : seen)
        all.insert(fingerprintAfter(edit));
    for (const SocialFormat format : allCases<SocialFormat>())
        all.insert(renderFingerprint(sourceOf(sample(), format)));
    RenderSource otherPhoto = sourceOf(sample());
    PublicationItem item = sample();
    all.insert(renderFingerprint({item, "otra", otherPhoto.outputSize, otherPhoto.reference}));
    EXPECT_EQ(all.size(), 1 + seen.size() + 3 + 1);
}

// Uses emoji and letters that only a fallback font has: Qt returns their glyph runs in no fixed
// order.
TEST(RenderFingerprint, TellsLettersOfOtherFontsApartAndForgetsNothing)
{
    const auto written = [](const QString& text, const QString& font, double alpha = 1) {
        return fingerprintAfter([=](PublicationItem& i) {
            i.layers[0].text = text;
            i.layers[0].fontName = font;
            i.layers[0].hasBox = false;
            i.layers[0].foreground.alpha = alpha;
        });
    };
    const QString party = u"🎉"_s, regular = u"Inter Regular"_s;
    EXPECT_NE(written(u"你好"_s, regular), written(u"你好"_s, u"Inter Italic"_s)) << "slanted";
    EXPECT_NE(written(party, regular, 0), written(u"✨"_s, regular, 0));
    EXPECT_EQ(written(party, regular, 0), written(party, regular, 1)) << "brings its colours";

    // The box is outside the canvas, but its shadow reaches into it. The fingerprint must not
    // depend on earlier calls.
    const auto beside = [](PublicationItem& i, double shadow) {
        i.layers[0].frame = {-0.56, 0.3, 0.5, 0.2};
        i.layers[0].shadowDistance = shadow;
        i.layers[0].shadowAngle = 0;
        i.layers[0].text = u"Solo aquí"_s;
    };
    const QString far = fingerprintAfter([&](PublicationItem& i) { beside(i, 50); });
    fingerprintAfter([&](PublicationItem& i) { beside(i, 0); });
    EXPECT_EQ(fingerprintAfter([&](PublicationItem& i) { beside(i, 50); }), far);
}

// Paid renders are recognized by their stored fingerprints. A fingerprint that changes while the
// pixels stay the same makes users pay twice. When the pixels change too, increase rendererVersion.
TEST(RenderFingerprint, IsTheSameInEveryRun)
{
    PublicationItem item = sample();
    item.layers[0].text = u"Hola 🎉 שלום 你好"_s;
    const QString here = renderFingerprint(sourceOf(item));
    EXPECT_TRUE(isRenderAmong({u"render-x"_s, here}, sourceOf(item)));
    EXPECT_FALSE(isRenderAmong({here.chopped(1), u"pixels-x"_s}, sourceOf(item)));
    // Hash tables with addresses as keys have another order in each process, so the test starts its
    // program again.
    std::printf("fingerprint %s\n", qPrintable(here));
    if (qEnvironmentVariableIsSet("FINGERPRINT_ONLY"))
        return;
    for (int i = 0; i < 3; ++i) {
        QProcess again;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"FINGERPRINT_ONLY"_s, u"1"_s);
        again.setProcessEnvironment(environment);
        again.start(QCoreApplication::applicationFilePath(),
                    {u"--gtest_filter=RenderFingerprint.IsTheSameInEveryRun"_s});
        ASSERT_TRUE(again.waitForFinished());
        EXPECT_TRUE(again.readAllStandardOutput().contains("fingerprint " + here.toUtf8()));
    }

    PublicationItem wordless = sample();
    wordless.layers.clear();
    EXPECT_EQ(renderFingerprint(sourceOf(wordless)).toStdString(),
              "render-c529087b8f80f2cabb7c87477f428b7d-0e5751c026e543b2e8ab2eb06099daa1");
}
