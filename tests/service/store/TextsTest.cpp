#include "copygen/text/CopyPrompt.h"
#include "service/CopyForwarding.h"
#include "service/store/Accounts.h"
#include "service/store/Secrets.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace Qt::StringLiterals;

TEST(Accounts, addressesAreFoldedOrRefused)
{
    EXPECT_EQ(normalizedEmail(u" ANA@Ejemplo.es\n"_s), u"ana@ejemplo.es"_s);
    for (const QString& wrong :
         {QString(), u"ana"_s, u"@e.es"_s, u"ana@"_s, u"a@b@c"_s, u"a b@c.es"_s, u"a\r\nTo: x@y"_s,
          u"<a@b.es>"_s, QString(65, u'a') + u"@b.es"_s, u"a@"_s + QString(260, u'b')})
        EXPECT_EQ(normalizedEmail(wrong), std::nullopt) << qPrintable(wrong);
}

TEST(Secrets, passwordsFitOnlyTheirHash)
{
    const QByteArray hash = hashedPassword(u"contraseña"_s);
    EXPECT_TRUE(passwordFits(hash, u"contrasen\u0303a"_s)) << "the same letters, typed otherwise";
    EXPECT_FALSE(passwordFits(hash, u"contrasena"_s));
    EXPECT_FALSE(passwordFits({}, u"contraseña"_s));
    EXPECT_FALSE(passwordFits("no es un hash", u"contraseña"_s));
    EXPECT_NE(hash, hashedPassword(u"contraseña"_s));
}

TEST(CopyForwarding, takesOnlyWholeAnswers)
{
    const auto answer = [](const QByteArray& content) {
        return "{\"choices\":[{\"message\":{\"content\":" + content + "}}]}";
    };
    const QByteArray whole = "{\\\"title\\\":\\\"T\\\",\\\"subtitle\\\":\\\"S\\\",\\\"tagline\\\":"
                             "\\\"P\\\",\\\"callToAction\\\":\\\"Ven\\\","
                             "\\\"publicationCaption\\\":\\\"C\\\"}";
    EXPECT_TRUE(copyFromAnswer(answer('"' + whole + '"')));
    EXPECT_TRUE(copyFromAnswer(answer("[{\"type\":\"text\",\"text\":\"" + whole + "\"}]")));
    QByteArray missing = whole, number = whole, empty = whole;
    missing.replace("subtitle", "otro");
    number.replace("\\\"S\\\"", "5");
    empty.replace("\\\"T\\\"", "\\\" \\\"");
    QByteArray placeholder = whole, cutCaption = whole, cutTagline = whole;
    placeholder.replace("\\\"S\\\"", "\\\"N/A\\\"");
    // Ends inside the caption, behind sentences of more than 120 characters.
    cutCaption.replace("\\\"C\\\"}",
                       "\\\"" + QByteArray("Ven a verlo hoy. ").repeated(8) + "Y mañ");
    cutTagline.truncate(cutTagline.indexOf("P") + 1);
    const auto cut = copyFromAnswer(answer('"' + cutCaption + '"'));
    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->publicationCaption, u"Ven a verlo hoy. "_s.repeated(8).trimmed());
    EXPECT_EQ(cut->title, u"T"_s);
    for (const QByteArray& wrong :
         {answer('"' + placeholder + '"'), answer('"' + cutTagline + '"'),
          answer("\"TITLE: T\\nSUBTITLE: S\\nTAGLINE: P\\nCTA: Ven\\nCAPTION: C\""), QByteArray(),
          QByteArray("<html>"), QByteArray("[]"), QByteArray("{\"choices\":[]}"),
          QByteArray("{\"choices\":[5]}"), answer("null"), answer("\"}{\""),
          answer('"' + missing + '"'), answer('"' + number + '"'), answer('"' + empty + '"')})
        EXPECT_FALSE(copyFromAnswer(wrong)) << wrong.constData();
}

TEST(CopyForwarding, asksWithThePromptOfLocalCopy)
{
    const CopyOrder order{u"Vender \"más\""_s, SocialFormat::square, u"image/png"_s, "png"};
    const auto body = nlohmann::json::parse(
        preparedCopyOrder({u"http://127.0.0.1:1"_s, {}, u"m"_s}, order).body.toStdString());
    const auto& parts = body["messages"][0]["content"];
    EXPECT_EQ(QString::fromStdString(parts[0]["text"]),
              CopyPromptBuilder::marketing(order.objective, order.format));
    EXPECT_EQ(parts[1]["image_url"]["url"], "data:image/png;base64,cG5n");
}
