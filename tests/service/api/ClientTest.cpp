#include "account/AccountAPI.h"
#include "account/AccountError.h"
#include "account/PublishRequest.h"
#include "model/SocialPublishNetwork.h"
#include "platform/PreferencesStore.h"
#include "tests/account/Awaited.h"
#include "tests/service/TestService.h"

#include <QImage>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// Calls the endpoints of the service with the studio's own client.

namespace {

class ClientTest : public testing::Test {
protected:
    ServiceConfiguration configuration() const
    {
        const QUrl url(QString::fromStdString(service.address()));
        return {.service = url,
                .site = url,
                .siteName = u"Moltiva local"_s,
                .administratorEmail = {},
                .problem = {}};
    }
    template <typename Result>
    static QString refusal(QCoro::Task<Result> task)
    {
        try {
            awaited(std::move(task));
        } catch (const AccountError& error) {
            return error.code();
        }
        return u"none"_s;
    }
    // Pays on the page `page`, as a user does in the browser.
    void pay(const QUrl& page)
    {
        const std::string path = page.path().toStdString();
        EXPECT_LT(service.fill(path, path, {{"accion", "pagar"}}).status, 400);
    }

    void connect(SocialPublishNetwork network)
    {
        const QUrl page = awaited(api.socialConnectToken(rawValue(network))).url;
        const std::string path = page.path().toStdString();
        EXPECT_EQ(service.fill(path, path, {{"accion", "conectar"}, {"nombre", "Ana"}}).status,
                  200);
    }

    TestService service;
    QTemporaryDir folder;
    PreferencesStore preferences{folder.filePath(u"p.sqlite"_s)};
    AccountAPI api{configuration(), preferences};
};

}    // namespace

TEST_F(ClientTest, KeepsAnAccount)
{
    EXPECT_EQ(refusal(api.me()), u"unauthorized"_s);
    EXPECT_EQ(awaited(api.registerAccount(u"Ana@Ejemplo.es"_s, u"una-contraseña"_s)).balance,
              10'000);
    EXPECT_EQ(refusal(api.registerAccount(u"ana@ejemplo.es"_s, u"una-contraseña"_s)),
              u"email_exists"_s);
    EXPECT_EQ(awaited(api.updateProfile(u" Ana <b> "_s)).profile->fullName, u"Ana <b>"_s);
    EXPECT_EQ(refusal(api.changePassword(u"otra"_s, u"nueva-clave"_s, u"nueva-clave"_s)),
              u"invalid_credentials"_s);
    awaited(api.changePassword(u"una-contraseña"_s, u"nueva-clave"_s, u"nueva-clave"_s));
    awaited(api.logout());
    EXPECT_EQ(refusal(api.login(u"ana@ejemplo.es"_s, u"una-contraseña"_s)),
              u"invalid_credentials"_s);
    EXPECT_EQ(awaited(api.login(u"ana@ejemplo.es"_s, u"nueva-clave"_s)).profile->fullName,
              u"Ana <b>"_s);
    AccountAPI restarted(configuration(), preferences);
    EXPECT_EQ(awaited(restarted.me()).balance, 10'000);
    awaited(api.requestPasswordReset(u"nadie@ejemplo.es"_s));
    EXPECT_EQ(refusal(api.exchangeDesktopAuthToken(u"x"_s)), u"invalid_credentials"_s);
}

TEST_F(ClientTest, BuysAndSpendsCredits)
{
    awaited(api.registerAccount(u"ana@ejemplo.es"_s, u"una-contraseña"_s));
    EXPECT_EQ(refusal(api.startCheckout(1'500)), u"invalid_credit_amount"_s);
    const CheckoutStart start = awaited(api.startCheckout(20'000));
    ASSERT_TRUE(start.url && start.sessionId);
    EXPECT_EQ(refusal(api.confirmCheckout(*start.sessionId)), u"checkout_not_paid"_s);
    pay(*start.url);
    EXPECT_EQ(awaited(api.confirmCheckout(*start.sessionId)).balance, 30'000);
    const auto purchases = awaited(api.purchaseHistory()).purchases;
    ASSERT_EQ(purchases.size(), 1);
    EXPECT_EQ(purchases[0].amountCents, 2'000);
    EXPECT_TRUE(purchases[0].hasDocument());
    EXPECT_TRUE(awaited(api.purchaseDocumentLink(purchases[0].id)).url.path().startsWith(u'/'));
    EXPECT_EQ(refusal(api.purchaseDocumentLink(u"../1"_s)), u"invalid_purchase"_s);

    EXPECT_EQ(awaited(api.reserveSocialCopyCredits(50, u"r"_s)).balance, 29'950);
    EXPECT_EQ(awaited(api.reserveSocialCopyCredits(50, u"r"_s)).balance, 29'950);
    EXPECT_EQ(awaited(api.refundSocialCopyCredits(50, u"r"_s)).balance, 30'000);
    EXPECT_EQ(refusal(api.refundSocialCopyCredits(50, u"other"_s)), u"credit_not_reserved"_s);
    EXPECT_EQ(refusal(api.reserveSocialCopyCredits(30'001, u"s"_s)), u"insufficient_credits"_s);
}

TEST_F(ClientTest, WritesTextsAndPublishes)
{
    awaited(api.registerAccount(u"ana@ejemplo.es"_s, u"una-contraseña"_s));
    EXPECT_EQ(awaited(api.socialCopyConfig()).costCredits, 10);
    QImage picture(40, 30, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    const QString path = folder.filePath(u"a.png"_s);
    ASSERT_TRUE(picture.save(path));
    const QUrl photo = QUrl::fromLocalFile(path);
    awaited(api.reserveSocialCopyCredits(10, u"g"_s));
    EXPECT_EQ(refusal(api.generateSocialCopy(photo, u"vender"_s, SocialFormat::square, u"g"_s)),
              u"provider_key_missing"_s);

    EXPECT_EQ(awaited(api.socialStatus()).networks.size(), 3);
    EXPECT_EQ(refusal(api.socialConnectToken(u"otra"_s)), u"invalid_social_network"_s);
    EXPECT_EQ(awaited(api.socialConnectToken(u"facebook"_s)).url.scheme(), u"http"_s);
    SocialPublishRequest post{u"instagram"_s, u"¡Hola! 🌲\n#otoño \"سلام\""_s, {}, u"p"_s};
    for (int i = 1; i <= 10; ++i)
        post.images.append({u"%1-moltiva.png"_s.arg(i), u"image/png"_s, {}});
    const QString request = folder.filePath(u"request"_s);
    const QStringList files(post.images.size(), path);
    const qint64 bytes = writePublishRequest(post, files, request).bytes;
    EXPECT_EQ(bytes, sizeOfPublishRequest(
                         post, QList<qint64>(post.images.size(), QFileInfo(path).size())));
    EXPECT_EQ(refusal(api.publishSocialPost(request)), u"social_account_not_connected"_s);
    connect(SocialPublishNetwork::instagram);
    qint64 sent = 0;
    const auto url = awaited(api.publishSocialPost(request, [&](qint64 now) { sent = now; })).url;
    EXPECT_EQ(sent, bytes);
    EXPECT_EQ(awaited(api.publishSocialPost(request)).url, url) << "published once";
    ASSERT_TRUE(url);
    const std::string page = service.get(url->path().toStdString()).body;
    EXPECT_NE(page.find("¡Hola! 🌲\n#otoño &quot;سلام&quot;"), std::string::npos);
    size_t at = 0;
    for (int i = 1; i <= 10; ++i) {
        at = page.find(u"/%1\" alt=\"Imagen %1 de 10\""_s.arg(i).toStdString(), at + 1);
        EXPECT_NE(at, std::string::npos) << "image " << i << " in its order";
    }

    EXPECT_EQ(refusal(api.uploadTemplate(u"a.json"_s, "{}", std::nullopt)), u"admin_required"_s);
    awaited(api.registerAccount(u"jefa@ejemplo.es"_s, u"una-contraseña"_s));
    awaited(api.uploadTemplate(u"a.json"_s, "{}", std::nullopt));
    EXPECT_EQ(refusal(api.uploadTemplate(u"../a.json"_s, "{}", std::nullopt)),
              u"invalid_template"_s);
    awaited(api.deleteTemplate(u"a.json"_s));
}
