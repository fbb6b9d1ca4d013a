#include "studio/sheet/TextSheetFile.h"
#include "tests/cli/CommandTest.h"
#include "tests/support/StandInProvider.h"

#include <QScopeGuard>

using namespace Qt::StringLiterals;

namespace {

class GenerateCommandTest : public CommandTest {
protected:
    void SetUp() override
    {
        for (const QByteArray operation : {"reserve", "refund"})
            m_account.answer("POST /api/credits/social-copy/" + operation,
                             R"({"ok":true,"cost":10,"balance":4000})");
        write("Uno");
    }
    void write(const QByteArray& title)
    {
        m_account.answer(generate, R"({"ok":true,"copy":{"title":")" + title +
                                       R"(","subtitle":"S; \"s\"","tagline":"P","callToAction":)"
                                       R"("Ver","publicationCaption":"C\nc","imageNotes":""}})");
    }
    Outcome runCloud(const QStringList& photos, const QString& objective = u"Vender"_s,
                     const QString& sheet = u"textos.csv"_s)
    {
        return run(QStringList{u"generate"_s, u"--mode"_s, u"cloud"_s, u"--objective"_s, objective,
                               u"--csv"_s, path(sheet)} +
                   photos);
    }
    // "reserve", "generate", "refund" of the requests since the last call.
    QStringList requests()
    {
        QStringList found;
        for (const QByteArray& request : m_account.log().mid(m_seen)) {
            for (const QString& word : {u"reserve"_s, u"generate"_s, u"refund"_s}) {
                if (request.startsWith("POST") &&
                    request.split(' ').value(1).endsWith(word.toLatin1()))
                    found.append(word);
            }
        }
        m_seen = m_account.log().size();
        return found;
    }
    // "file: title" of the rows.
    QStringList rows() const
    {
        const TextSheet sheet = readTextSheetFile(path(u"textos.csv"_s));
        EXPECT_EQ(sheet.error, QString());
        QStringList rows;
        for (const SheetRow& row : sheet.rows) {
            EXPECT_FALSE(row.fault);
            rows.append(row.file() + u": "_s + row.cell(SheetColumn::title).value_or(QString()));
        }
        return rows;
    }

    const QByteArray generate = "POST /api/publicaciones/generate";
    qsizetype m_seen = 0;
};

}    // namespace

TEST_F(GenerateCommandTest, writesARowPerPhotoAndNeverPaysForOneTwice)
{
    const QStringList photos{photo(u"a.png"_s), textFile(u"x.jpg"_s)};
    const Outcome outcome = runCloud(photos);
    EXPECT_EQ(outcome.status, 1) << "a file that is no photo";
    EXPECT_EQ(requests(), (QStringList{u"reserve"_s, u"generate"_s}));
    EXPECT_EQ(rows(), QStringList{u"a.png: Uno"_s});
    const SheetRow row = readTextSheetFile(path(u"textos.csv"_s)).rows.value(0);
    EXPECT_EQ(row.cell(SheetColumn::subtitle), u"S; \"s\""_s);
    EXPECT_EQ(row.cell(SheetColumn::caption), u"C\nc"_s);

    // As if the command had been killed in the middle of a row.
    QFile sheet(path(u"textos.csv"_s));
    ASSERT_TRUE(sheet.open(QIODevice::Append) && sheet.write("b.png;\"a medias\r\n") > 0);
    sheet.close();
    write("Dos");
    EXPECT_EQ(runCloud({photo(u"a.png"_s)}).status, 0);
    EXPECT_TRUE(requests().isEmpty());
    EXPECT_EQ(rows(), QStringList{u"a.png: Uno"_s});
    ASSERT_TRUE(sheet.remove());
    EXPECT_TRUE(runCloud({photo(u"a.png"_s)}).err.contains(u"1 ya estaba generada."_s));
    EXPECT_EQ(rows(), QStringList{u"a.png: Uno"_s}) << "written from what is stored";

    EXPECT_EQ(runCloud({photo(u"a.png"_s)}, u"Regalar"_s).status, 0);
    EXPECT_EQ(requests(), (QStringList{u"reserve"_s, u"generate"_s}));
    EXPECT_EQ(rows(), QStringList{u"a.png: Dos"_s}) << "another objective has other texts";
    for (int times = 0; times < 2; ++times) {
        EXPECT_EQ(runCloud({photo(u"a.png"_s)}).status, 0);
        EXPECT_EQ(requests(), QStringList());
        EXPECT_EQ(rows(), QStringList{u"a.png: Uno"_s}) << "the first objective's again";
    }
}

TEST_F(GenerateCommandTest, aKilledCommandGoesOnWhereItStopped)
{
    QImage other(50, 40, QImage::Format_RGB32);
    other.fill(Qt::red);
    ASSERT_TRUE(other.save(path(u"b.png"_s)));
    const QStringList photos{photo(u"a.png"_s), path(u"b.png"_s)};
    ASSERT_EQ(runCloud({photos[0]}).status, 0);
    m_account.hold(generate);
    const qsizetype before = m_account.log().size();
    const auto process =
        started(QStringList{u"generate"_s, u"--mode"_s, u"cloud"_s, u"--objective"_s, u"Vender"_s,
                            u"--csv"_s, path(u"textos.csv"_s)} +
                photos);
    wait([&] {
        return m_account.log().size() > before && m_account.log().last().startsWith(generate);
    });
    process->kill();
    ended(*process);
    m_account.drop();
    requests();
    write("Dos");
    EXPECT_EQ(runCloud(photos).status, 0);
    EXPECT_EQ(requests(), (QStringList{u"refund"_s, u"reserve"_s, u"generate"_s}));
    EXPECT_EQ(rows(), (QStringList{u"a.png: Uno"_s, u"b.png: Dos"_s}));

    // Rows of another order go, also those of photos that this one is not for.
    write("Tres");
    ASSERT_TRUE(QFile::link(path(u"textos.csv"_s), path(u"enlace.csv"_s)));
    EXPECT_EQ(runCloud({photos[0]}, u"Regalar"_s, u"enlace.csv"_s).status, 0);
    EXPECT_EQ(rows(), QStringList{u"a.png: Tres"_s});
    EXPECT_EQ(runCloud({photos[1]}).status, 0);
    EXPECT_EQ(rows(), QStringList{u"b.png: Dos"_s});
    EXPECT_EQ(runCloud(photos).status, 0);
    EXPECT_EQ(rows(), (QStringList{u"b.png: Dos"_s, u"a.png: Uno"_s}));
}

TEST_F(GenerateCommandTest, aFailedPhotoGetsNoRowAndItsCreditsBack)
{
    m_account.answer(generate, R"({"error":"provider_request_failed"})", 502);
    const Outcome outcome = run({u"generate"_s, u"--mode"_s, u"cloud"_s, u"--json"_s, u"--csv"_s,
                                 path(u"textos.csv"_s), photo(u"a.png"_s)});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(requests(), (QStringList{u"reserve"_s, u"generate"_s, u"refund"_s}));
    EXPECT_TRUE(rows().isEmpty());
    const QList<QJsonObject> lines = objectsIn(outcome);
    ASSERT_EQ(lines.size(), 2) << qPrintable(outcome.out);
    EXPECT_TRUE(lines[0][u"error"_s].toString().endsWith(u"Se han devuelto los 10 créditos."_s))
        << qPrintable(outcome.out);
    EXPECT_EQ(lines[1][u"failed"_s].toInt(), 1);
}

TEST_F(GenerateCommandTest, theLocalEngineNeedsNoAccount)
{
    const QStringList arguments{u"generate"_s, u"--csv"_s, path(u"textos.csv"_s),
                                photo(u"a.png"_s)};
    const Outcome missing = run(arguments);
    EXPECT_EQ(missing.status, 1);
    EXPECT_FALSE(QFile::exists(path(u"textos.csv"_s))) << qPrintable(missing.err);

    StandInProvider engine;
    qputenv("MOLTIVA_LOCAL_COPY_URL", engine.address().toLatin1());
    const auto end = qScopeGuard([] { qunsetenv("MOLTIVA_LOCAL_COPY_URL"); });
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 0) << qPrintable(outcome.err);
    EXPECT_EQ(rows(), QStringList{u"a.png: T-1."_s});
    engine.set(StandInProvider::Mode::failing);
    EXPECT_EQ(run(arguments).status, 0) << "written for the earlier command";
    EXPECT_TRUE(m_account.log().isEmpty());
}

TEST_F(GenerateCommandTest, refusesWhatItCannotDo)
{
    const QString one = photo(u"a.png"_s);
    EXPECT_EQ(run({u"generate"_s, u"--mode"_s, u"nube"_s, one}).status, 2);
    EXPECT_EQ(run({u"generate"_s, u"--format"_s, u"Square"_s, one}).status, 2);
    EXPECT_EQ(run({u"generate"_s}).status, 2);
    const QString foreign = holding(u"textos.csv"_s, "archivo,titulo\na.png,Mío\n");
    EXPECT_EQ(runCloud({one}).status, 2);
    EXPECT_TRUE(requests().isEmpty());
    EXPECT_EQ(rows(), QStringList{u"a.png: Mío"_s}) << "a file of other columns stays as it is";

    m_account.answer("GET /api/auth/me", ScriptedAccount::summary("Ana", 9));
    QFile::remove(foreign);
    const Outcome poor = runCloud({one});
    EXPECT_EQ(poor.status, 4);
    EXPECT_TRUE(poor.err.contains(u"Necesitas 10 créditos para generar 1 imagen(es)."_s))
        << qPrintable(poor.err);
}
