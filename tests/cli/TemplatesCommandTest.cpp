#include "tests/cli/CommandTest.h"
#include "tests/service/TestService.h"

using namespace Qt::StringLiterals;

namespace {

constexpr auto offer = "6f6b1c8e-0d5c-4a6e-9a55-0f3b1f0a7c01";

// Commands that share designs through a service in this process.
class TemplatesCommandTest : public CommandTest {
protected:
    TemplatesCommandTest() { m_service = QString::fromStdString(m_shared.address()); }

    void enter(const QString& mail)
    {
        const auto process = started({u"register"_s, u"--email"_s, mail});
        process->write("una-contraseña\n");
        process->closeWriteChannel();
        const Outcome outcome = ended(*process);
        EXPECT_EQ(outcome.status, 0) << outcome.err.toStdString();
    }
    Outcome templates(const QStringList& arguments)
    {
        return run(QStringList{u"templates"_s} + arguments);
    }
    QString design(const QString& name, const QByteArray& id)
    {
        return holding(name, R"({"id":")" + id +
                                 R"(","name":"Gran oferta","format":"square",)"
                                 R"("textLayers":[],"order":1})");
    }
    static std::string names(const Outcome& outcome)
    {
        QStringList names;
        for (const QJsonObject& line : objectsIn(outcome))
            names.append(line[u"name"].toString());
        return names.join(u", "_s).toStdString();
    }

    TestService m_shared;
};

}    // namespace

TEST_F(TemplatesCommandTest, DesignsAreSharedRenamedWithdrawnAndRestored)
{
    enter(u"jefa@ejemplo.es"_s);
    EXPECT_EQ(templates({u"list"_s}).out, u"Sin plantillas del equipo\n"_s);
    const Outcome pushed = templates(
        {u"push"_s, design(u"a.json"_s, offer), textFile(u"b.json"_s), path(u"missing.json"_s)});
    EXPECT_EQ(pushed.status, 1);
    EXPECT_EQ(pushed.out, u"«Gran oferta» se comparte con el equipo.\n"_s);
    EXPECT_TRUE(pushed.err.contains(u"b.json» no es una plantilla de Moltiva."_s) &&
                pushed.err.contains(u"missing.json» no se puede abrir."_s))
        << pushed.err.toStdString();
    const QString file = QString::fromLatin1(offer) + u".json"_s;
    EXPECT_EQ(templates({u"list"_s}).out, file + u"  square  Gran oferta\n"_s);

    EXPECT_EQ(templates({u"rename"_s, u"gran OFERTA"_s, u"Rebajas"_s}).out,
              u"Ahora se llama «Rebajas».\n"_s);
    const Outcome listed = templates({u"list"_s, u"--json"_s});
    EXPECT_EQ(names(listed), "Rebajas");
    EXPECT_EQ(objectsIn(listed).value(0)[u"versions"].toInt(), 1);
    EXPECT_EQ(templates({u"rename"_s, u"nada"_s, u"X"_s}).err,
              u"moltiva templates: no hay ninguna plantilla del equipo «nada».\n"_s);
    EXPECT_EQ(templates({u"restore"_s, u"Rebajas"_s}).status, 0);
    EXPECT_EQ(names(templates({u"list"_s, u"--json"_s})), "Gran oferta");
    EXPECT_EQ(templates({u"remove"_s, u"Gran oferta"_s}).out,
              u"Retirada. «moltiva templates restore %1» la recupera.\n"_s.arg(file));
    EXPECT_EQ(objectsIn(templates({u"pull"_s, u"--json"_s})).value(0)[u"withdrawn"].toInt(), 1);
    EXPECT_EQ(templates({u"restore"_s, file}).status, 0);
    EXPECT_TRUE(templates({u"pull"_s}).out.startsWith(u"1 plantilla del equipo, copia del "_s));

    const QStringList nowhere{u"--service"_s, u"http://127.0.0.1:1"_s};
    EXPECT_EQ(templates(QStringList{u"pull"_s} + nowhere).status, 5);
    EXPECT_EQ(templates({u"rename"_s, u"a"_s}).status, 2);
    EXPECT_EQ(templates({u"pull"_s, u"a"_s}).status, 2);
    EXPECT_EQ(templates({}).status, 2);
    enter(u"ana@ejemplo.es"_s);
    const Outcome refused = templates({u"remove"_s, u"Gran oferta"_s});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(
        refused.err,
        u"moltiva templates: Solo una cuenta administradora puede actualizar plantillas.\n"_s);
}

TEST_F(TemplatesCommandTest, WithoutAConnectionTheCopyIsListed)
{
    {
        TestService gone;
        m_service = QString::fromStdString(gone.address());
        enter(u"jefa@ejemplo.es"_s);
        EXPECT_EQ(templates({u"push"_s, design(u"a.json"_s, offer)}).status, 0);
        EXPECT_EQ(templates({u"pull"_s}).status, 0);
    }
    const Outcome listed = templates({u"list"_s, u"--json"_s});
    EXPECT_EQ(listed.status, 0);
    EXPECT_EQ(names(listed), "Gran oferta");
    EXPECT_TRUE(listed.err.startsWith(u"moltiva templates: No se ha podido conectar"_s) &&
                listed.err.contains(u" Se muestra la copia del "_s))
        << listed.err.toStdString();
    EXPECT_EQ(templates({u"push"_s, path(u"a.json"_s)}).status, 5);
}
