#include "tests/cli/CommandTest.h"

#include <QSqlDatabase>
#include <QSqlQuery>

#include <fstream>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

class ExportCommandTest : public CommandTest {
protected:
    QString textSheet(const QByteArray& rows) { return holding(u"textos.csv"_s, rows); }
    QStringList written() const
    {
        return QDir(path(u"out"_s)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    QStringList exportTo(const QStringList& arguments) const
    {
        return QStringList{u"export"_s, u"--out"_s, path(u"out"_s)} + arguments;
    }
    Outcome runExport(const QStringList& arguments) { return run(exportTo(arguments)); }

    // The charges and refunds as "reserve 50 #1"; "#1" is the request identifier that was used
    // first.
    QStringList charges() const
    {
        QStringList charges, ids;
        for (const QByteArray& request : m_account.log()) {
            if (!request.startsWith("POST"))
                continue;
            const QJsonObject body =
                QJsonDocument::fromJson(request.mid(request.indexOf('{'))).object();
            const QString id = body[u"requestId"_s].toString();
            EXPECT_TRUE(id.startsWith(u"moltiva_render_download_"_s));
            if (!ids.contains(id))
                ids.append(id);
            charges.append(
                u"%1 %2 #%3"_s.arg(request.contains("reserve") ? u"reserve"_s : u"refund"_s)
                    .arg(body[u"cost"_s].toInt())
                    .arg(ids.indexOf(id) + 1));
        }
        return charges;
    }
    void SetUp() override
    {
        for (const QByteArray operation : {"reserve", "refund"})
            m_account.answer("POST /api/credits/social-copy/" + operation,
                             R"({"ok":true,"cost":50,"balance":4000})");
    }
};

}    // namespace

TEST_F(ExportCommandTest, exportsInEachFormatAndNamesItsFiles)
{
    const QString one = photo(u"una foto.jpg"_s);
    const std::pair<QString, QSize> formats[] = {{u"story-reel"_s, {1080, 1920}},
                                                 {u"horizontal"_s, {1920, 1080}},
                                                 {u"carousel-portrait"_s, {1080, 1350}},
                                                 {u"square"_s, {1080, 1080}}};
    for (const auto& [key, size] : formats) {
        const Outcome outcome = runExport({u"--format"_s, key, one});
        EXPECT_EQ(outcome.status, 0) << qPrintable(outcome.err);
        EXPECT_EQ(outcome.out, path(u"out/una foto-publicacion.png"_s) + u'\n');
        EXPECT_EQ(QImage(path(u"out/una foto-publicacion.png"_s)).size(), size);
    }
    EXPECT_EQ(written().size(), 1) << "an older file is replaced";
}

TEST_F(ExportCommandTest, skipsWhatIsNoPhotoAndKeepsEqualNamesApart)
{
    const Outcome outcome =
        runExport({photo(u"a/f.jpg"_s), photo(u"b/f.png"_s), textFile(u"x.jpg"_s)});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(written(), (QStringList{u"f-publicacion-2.png"_s, u"f-publicacion.png"_s}));
    EXPECT_TRUE(outcome.err.contains(u"f-publicacion-2.png"_s)) << qPrintable(outcome.err);
    EXPECT_TRUE(outcome.err.contains(path(u"x.jpg"_s) + u": No se pudo leer la foto."_s))
        << qPrintable(outcome.err);

    // Creates a file whose name is not in UTF-8.
    photo(u"c/g.jpg"_s);
    ASSERT_TRUE(std::ofstream(path(u"c"_s).toStdString() + "/ca\xf1"
                                                           "a.jpg")
                    .put('x'));
    const Outcome mixed = runExport({path(u"c"_s)});
    EXPECT_EQ(mixed.status, 1);
    EXPECT_TRUE(mixed.err.contains(u"ca\uFFFDa.jpg: No se pudo leer la foto."_s))
        << qPrintable(mixed.err);
    EXPECT_TRUE(written().contains(u"g-publicacion.png"_s));
}

TEST_F(ExportCommandTest, aPhotoThatFailsOnlyWhenItIsDrawnIsSkippedAndCostsNothing)
{
    const QString good = photo(u"f.jpg"_s), damaged = photo(u"a.png"_s);
    QFile file(damaged);
    ASSERT_TRUE(file.resize(file.size() / 2));    // keeps the header whole
    const QString skipped = damaged + u": No se pudo leer la foto.\n"_s;

    const Outcome dry = runExport({u"--dry-run"_s, damaged, good});
    EXPECT_EQ(dry.out, u"Coste: 100 créditos (sin pagar: 2 de 2).\n"_s);
    EXPECT_TRUE(dry.err.contains(u"cabecera"_s)) << qPrintable(dry.err);

    const Outcome outcome = runExport({damaged, good});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.err.contains(skipped + u"Coste: 50 créditos (sin pagar: 1 de 1).\n"_s))
        << qPrintable(outcome.err);
    EXPECT_TRUE(outcome.err.contains(u"Exportadas 1 imágenes. Coste: 50 créditos."_s));
    EXPECT_EQ(outcome.out, path(u"out/f-publicacion.png"_s) + u'\n');
    EXPECT_EQ(charges(), QStringList{u"reserve 50 #1"_s});

    m_account.answer("GET /api/auth/me", ScriptedAccount::summary("Ana", 50));
    const QList<QJsonObject> objects =
        objectsIn(runExport({u"--json"_s, u"--format"_s, u"square"_s, damaged, good}));
    ASSERT_EQ(objects.size(), 3) << "it is not what the credits lack for";
    EXPECT_EQ(objects[0][u"photo"_s].toString(), damaged);
    EXPECT_EQ(objects[2][u"outcome"_s].toString(), u"done"_s);
    EXPECT_EQ(objects[2][u"skipped"_s].toInt(), 1);
    EXPECT_EQ(charges().size(), 2);

    EXPECT_EQ(runExport({damaged}).status, 1);
    EXPECT_EQ(charges().size(), 2);
}

TEST_F(ExportCommandTest, jsonIsOneObjectAFileAndASummaryAndNothingElse)
{
    const Outcome outcome =
        runExport({u"--json"_s, u"--jobs"_s, u"1"_s, photo(u"f.jpg"_s), textFile(u"x.jpg"_s)});
    const QList<QJsonObject> objects = objectsIn(outcome);
    ASSERT_EQ(objects.size(), 3);
    EXPECT_FALSE(objects[0][u"error"_s].toString().isEmpty());
    EXPECT_EQ(objects[1][u"file"_s].toString(), path(u"out/f-publicacion.png"_s));
    EXPECT_GT(objects[1][u"bytes"_s].toInt(), 1000);
    EXPECT_EQ(objects[2][u"written"_s].toInt(), 1);
    EXPECT_EQ(objects[2][u"skipped"_s].toInt(), 1);
    EXPECT_EQ(objects[2][u"cost"_s].toInt(), 50);
    EXPECT_GT(objects[2][u"peakMemoryBytes"_s].toDouble(), 1e6);
}

TEST_F(ExportCommandTest, fillsTextsFromASheetAndTellsItsWrongRows)
{
    const QStringList photos{photo(u"a/f.jpg"_s), photo(u"b/f.jpg"_s), photo(u"g.jpg"_s)};
    const QString sheet = textSheet("archivo,titulo\nf,Uno\nf,Dos\n\nh,x\n");
    const Outcome outcome = runExport(QStringList{u"--json"_s, u"--texts"_s, sheet} + photos);
    EXPECT_EQ(outcome.status, 1) << "a row was not applied";
    EXPECT_EQ(outcome.out.count(u"\"file\""_s), 3);
    EXPECT_TRUE(outcome.err.contains(u"fila 5: no hay ninguna imagen con ese nombre («h»)\n"_s))
        << qPrintable(outcome.err);
    const QImage first(path(u"out/f-publicacion.png"_s)),
        second(path(u"out/f-publicacion-2.png"_s)), untouched(path(u"out/g-publicacion.png"_s));
    EXPECT_NE(first, second);
    EXPECT_NE(second, untouched);
    EXPECT_EQ(runExport({photos[0]}).status, 0);
    EXPECT_EQ(QImage(path(u"out/f-publicacion.png"_s)), untouched) << "the texts it begins with";

    const QStringList paid = charges();
    const Outcome none =
        runExport({u"--json"_s, u"--texts"_s, textSheet("archivo,titulo\nx,Uno\nno,Dos\n"),
                   photo(u"nueva.jpg"_s), textFile(u"no.jpg"_s)});
    EXPECT_EQ(none.status, 1);
    const auto reason = u"Ninguna fila de los textos corresponde a una foto legible."_s;
    EXPECT_EQ(none.err.count(reason), 1) << qPrintable(none.err);
    EXPECT_TRUE(none.out.contains(u"\"message\":\""_s + reason)) << qPrintable(none.out);
    EXPECT_EQ(charges(), paid) << "a row for a photo that cannot be read fills nothing";
}

TEST_F(ExportCommandTest, wrongUseIsSaidAndHasItsOwnStatus)
{
    const QString one = photo(u"f.jpg"_s);
    for (const QStringList& wrong : {QStringList{},
                                     {u"--format"_s, u"Square"_s, one},
                                     {u"--jobs"_s, u"0"_s, one},
                                     {u"--jobs"_s, u"x"_s, one},
                                     {u"--nothing"_s, one},
                                     {u"--template"_s, path(u"missing.json"_s), one},
                                     {u"--template"_s, textFile(u"no.json"_s), one},
                                     {u"--texts"_s, path(u"missing.csv"_s), one},
                                     {u"--texts"_s, textSheet("titulo\n"), one},
                                     {u"--texts"_s, u"/dev/zero"_s, one},
                                     {u"--template"_s, u"/dev/zero"_s, one},
                                     {path(u"missing.jpg"_s)}}) {
        const Outcome outcome = runExport(wrong);
        EXPECT_EQ(outcome.status, 2) << qPrintable(wrong.join(u' '));
        EXPECT_TRUE(outcome.err.startsWith(u"moltiva export: "_s)) << qPrintable(outcome.err);
    }
    EXPECT_EQ(run({u"--unknown"_s}).status, 2);
    EXPECT_TRUE(run({u"exprot"_s, one}).err.contains(u"exprot"_s));
    EXPECT_EQ(run({}).status, 2) << "no display for a window";
    EXPECT_EQ(run({u"moltiva://pago"_s}).err, run({}).err) << "a link is for the window";
    EXPECT_TRUE(written().isEmpty());
    EXPECT_TRUE(m_account.log().isEmpty()) << "nobody was asked";
}

TEST_F(ExportCommandTest, helpAndVersionAnswerOnStandardOutput)
{
    EXPECT_EQ(run({u"--help"_s}).status, 0);
    EXPECT_TRUE(run({u"--help"_s}).out.contains(u"export"_s));
    EXPECT_TRUE(run({u"export"_s, u"--help"_s}).out.contains(u"carousel-portrait"_s));
    EXPECT_TRUE(run({u"--version"_s}).out.startsWith(u"moltiva "_s));
}

TEST_F(ExportCommandTest, aFolderWithoutPhotosIsSaidAlsoAsJson)
{
    QDir().mkpath(path(u"empty"_s));
    const Outcome outcome = runExport({u"--json"_s, path(u"empty"_s)});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.err.contains(u"No he encontrado imágenes compatibles."_s));
    EXPECT_EQ(QJsonDocument::fromJson(outcome.out.toUtf8()).object()[u"written"_s].toInt(-1), 0);
}

TEST_F(ExportCommandTest, theSampleBatchNeedsNoPhotos)
{
    EXPECT_EQ(runExport({u"--sample"_s}).status, 0);
    EXPECT_EQ(written().size(), 3);
}

TEST_F(ExportCommandTest, whatIsPaidOnceIsFreeUntilItIsAnother)
{
    const QString one = photo(u"f.jpg"_s);
    const Outcome dry = runExport({u"--dry-run"_s, one});
    EXPECT_EQ(dry.status, 0);
    EXPECT_EQ(dry.out, u"Coste: 50 créditos (sin pagar: 1 de 1).\n"_s);
    EXPECT_FALSE(QDir(path(u"out"_s)).exists());
    EXPECT_EQ(charges(), QStringList());

    EXPECT_TRUE(runExport({one}).err.contains(u"Exportadas 1 imágenes. Coste: 50 créditos."_s));
    QFile::remove(path(u"out/f-publicacion.png"_s));
    const Outcome again = runExport({one});
    EXPECT_EQ(again.status, 0) << qPrintable(again.err);
    EXPECT_TRUE(again.err.startsWith(u"Coste: 0 créditos"_s)) << qPrintable(again.err);
    EXPECT_TRUE(again.err.contains(u"Sin coste adicional."_s));
    EXPECT_EQ(written(), QStringList{u"f-publicacion.png"_s});
    EXPECT_EQ(charges(), QStringList{u"reserve 50 #1"_s});

    const QStringList other{u"--texts"_s, textSheet("archivo,titulo\nf,Otro\n"), one};
    EXPECT_EQ(runExport(other).status, 0);
    EXPECT_EQ(charges(), (QStringList{u"reserve 50 #1"_s, u"reserve 50 #2"_s}));
    m_account.answer("GET /api/auth/me", R"({"balance":90,"profile":{"id":"2","email":"o@b.es"}})");
    EXPECT_EQ(runExport({u"--dry-run"_s, one}).out, dry.out) << "another account";
}

TEST_F(ExportCommandTest, whoCannotPayGetsNothingAndAStatusOfItsOwn)
{
    const QString one = photo(u"f.jpg"_s);
    const QByteArray me = "GET /api/auth/me", reserve = "POST /api/credits/social-copy/reserve";
    m_account.answer(me, ScriptedAccount::summary("Ana", 40));
    const Outcome poor = runExport({one});
    EXPECT_EQ(poor.status, 4);
    EXPECT_TRUE(poor.err.contains(u"Necesitas 50 créditos para descargar estas imágenes."_s));
    m_account.answer(me, ScriptedAccount::summary());
    m_account.answer(reserve, R"({"error":"insufficient_credits"})", 402);
    EXPECT_EQ(runExport({one}).status, 4);
    m_account.answer(reserve, R"({"error":"unauthorized"})", 401);
    EXPECT_EQ(runExport({one}).status, 3);
    const QStringList asked = charges();
    m_account.answer(me, R"({"error":"unauthorized"})", 401);
    for (const QStringList& arguments : {QStringList{one}, QStringList{u"--dry-run"_s, one}}) {
        const Outcome nobody = runExport(arguments);
        EXPECT_EQ(nobody.status, 3);
        EXPECT_TRUE(nobody.err.contains(u"moltiva login --email"_s)) << qPrintable(nobody.err);
    }
    m_account.answer(me, R"({"error":"database_unavailable"})", 503);
    EXPECT_EQ(runExport({one}).status, 1) << "it answers";
    m_service = u"http://127.0.0.1:1"_s;
    const QList<QJsonObject> objects = objectsIn(runExport({u"--json"_s, one}));
    ASSERT_EQ(objects.size(), 2);
    EXPECT_EQ(objects[0][u"photo"_s].toString(), one);
    EXPECT_EQ(objects[1][u"outcome"_s].toString(), u"notReserved"_s);
    EXPECT_EQ(runExport({one}).status, 5);
    EXPECT_EQ(charges(), asked) << "nothing was asked for";
    EXPECT_FALSE(QDir(path(u"out"_s)).exists());
}

TEST_F(ExportCommandTest, aReservationWithoutAnAnswerIsWantOfAConnection)
{
    m_account.hold("POST");
    const auto process = started(exportTo({photo(u"f.jpg"_s)}));
    wait([&] { return !charges().isEmpty(); });
    m_account.drop();
    EXPECT_EQ(ended(*process).status, 5);
    EXPECT_FALSE(QDir(path(u"out"_s)).exists());
}

TEST_F(ExportCommandTest, whatCannotBeNotedDownIsToldAndComesBack)
{
    const QStringList arguments = exportTo({u"--json"_s, photo(u"f.jpg"_s)});
    const auto rename = [this](const QString& from, const QString& to) {
        {
            QSqlDatabase store = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"rename"_s);
            store.setDatabaseName(path(u"home/moltiva/moltiva.sqlite"_s));
            EXPECT_TRUE(store.open());
            EXPECT_TRUE(QSqlQuery(store).exec(u"ALTER TABLE %1 RENAME TO %2"_s.arg(from, to)));
        }
        QSqlDatabase::removeDatabase(u"rename"_s);
    };
    m_account.hold("POST");
    const auto process = started(arguments);
    wait([&] { return !charges().isEmpty(); });
    rename(u"preference"_s, u"gone"_s);
    m_account.release();
    const Outcome outcome = ended(*process);
    EXPECT_EQ(outcome.status, 1);
    const QJsonObject summary = objectsIn(outcome).value(1);
    EXPECT_TRUE(summary[u"message"_s].toString().contains(u"El pago no se ha podido anotar."_s));
    EXPECT_TRUE(summary[u"refundPending"_s].toBool());
    rename(u"gone"_s, u"preference"_s);
    run({u"account"_s});
    EXPECT_EQ(charges(), (QStringList{u"reserve 50 #1"_s, u"refund 50 #1"_s}));
}

TEST_F(ExportCommandTest, twoCommandsNeverPayForTheSame)
{
    const QStringList arguments =
        exportTo(QStringList{u"--jobs"_s, u"1"_s} + QStringList(12, photo(u"f.jpg"_s)));
    const auto slow = started(arguments);
    QByteArray said;
    wait([&] { return (said += slow->readAllStandardError()).contains("Coste:"); });
    ::kill(pid_t(slow->processId()), SIGSTOP);
    m_account.hold("POST");
    const auto quick = started(arguments);
    wait([&] { return !charges().isEmpty(); });
    const auto waiting = started(arguments);
    QByteArray told;
    wait([&] {
        return (told += waiting->readAllStandardError())
            .contains("Esperando a que termine otro pago");
    });
    m_account.release();
    EXPECT_EQ(ended(*quick).status, 0);
    EXPECT_EQ(ended(*waiting).status, 0);
    ::kill(pid_t(slow->processId()), SIGCONT);
    const Outcome last = ended(*slow);
    EXPECT_EQ(last.status, 0);
    EXPECT_TRUE(last.err.contains(u"Sin coste adicional."_s)) << qPrintable(last.err);
    EXPECT_EQ(charges(), QStringList{u"reserve 600 #1"_s});
}

TEST_F(ExportCommandTest, aPlaceThatCannotBeWrittenIsToldBeforeAnythingIsCharged)
{
    const QString one = photo(u"f.jpg"_s);
    textFile(u"file"_s);
    EXPECT_EQ(run({u"export"_s, u"--out"_s, path(u"file/out"_s), one}).status, 2);
    EXPECT_TRUE(m_account.log().isEmpty());
    QDir().mkpath(path(u"home/moltiva"_s));
    textFile(u"home/moltiva/exports"_s);
    const Outcome outcome = runExport({u"--json"_s, one});
    EXPECT_EQ(outcome.status, 1);
    const QList<QJsonObject> objects = objectsIn(outcome);
    ASSERT_EQ(objects.size(), 2);
    const QString error = objects[0][u"error"_s].toString();
    EXPECT_TRUE(error.contains(u"donde se preparan las imágenes"_s)) << qPrintable(error);
    EXPECT_TRUE(outcome.err.contains(error));
    EXPECT_EQ(objects[1][u"outcome"_s].toString(), u"notPrepared"_s);
    EXPECT_EQ(charges(), QStringList());
    EXPECT_FALSE(QDir(path(u"out"_s)).exists());
}

TEST_F(ExportCommandTest, namesOfFilesSteerNoTerminal)
{
    const QString name = textFile(u"x\033[2J\u202e.jpg"_s);
    const Outcome outcome = runExport({u"--json"_s, name});
    EXPECT_TRUE(outcome.err.contains(path(u"x\ufffd[2J\ufffd.jpg: No se pudo leer la foto."_s)))
        << qPrintable(outcome.err);
    EXPECT_EQ(objectsIn(outcome).first()[u"photo"_s].toString(), name) << "as it is";
}

TEST_F(ExportCommandTest, whatCannotBeWrittenIsGivenBack)
{
    const QStringList photos{photo(u"a.jpg"_s), photo(u"f.jpg"_s), photo(u"z.jpg"_s)};
    QDir().mkpath(path(u"out/f-publicacion.png"_s));
    const Outcome outcome = runExport(QStringList{u"--json"_s} + photos);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.err.contains(path(u"out/f-publicacion.png"_s) +
                                     u": No se pudo escribir el archivo (Is a directory).\n"_s))
        << qPrintable(outcome.err);
    EXPECT_EQ(charges(), (QStringList{u"reserve 150 #1"_s, u"refund 150 #1"_s}));
    const QList<QJsonObject> objects = objectsIn(outcome);
    ASSERT_EQ(objects.size(), 4);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(objects[i][u"photo"_s].toString(), photos[i]);
        EXPECT_EQ(objects[i].contains(u"error"_s), i == 1) << "the others were tried";
    }
    EXPECT_EQ(objects[3][u"cost"_s].toInt(), 0);
    EXPECT_EQ(objects[3][u"outcome"_s].toString(), u"notWritten"_s);
    EXPECT_EQ(objects[3][u"message"_s].toString(),
              u"No se pudieron guardar todas las imágenes. Se han devuelto los 150 créditos."_s);
    QDir().rmdir(path(u"out/f-publicacion.png"_s));
    EXPECT_EQ(runExport(photos).status, 0);
    EXPECT_EQ(charges().size(), 3) << "it was not paid yet";
}

TEST_F(ExportCommandTest, anInterruptCostsNothing)
{
    const QString one = photo(u"f.jpg"_s);
    // The signal comes while the sixty images are still being drawn.
    const auto early = started(exportTo(QStringList{u"--jobs"_s, u"1"_s} + QStringList(60, one)));
    QByteArray said;
    wait([&] { return (said += early->readAllStandardError()).contains("Coste:"); });
    ::kill(pid_t(early->processId()), SIGINT);
    EXPECT_EQ(ended(*early).status, 130);
    EXPECT_EQ(charges(), QStringList());

    m_account.hold("POST");
    const auto late = started(exportTo({one}));
    wait([&] { return !charges().isEmpty(); });
    ::kill(pid_t(late->processId()), SIGHUP);    // its terminal was closed
    said.clear();
    wait([&] { return (said += late->readAllStandardError()).contains("Deteniendo"); });
    m_account.release();
    const Outcome outcome = ended(*late);
    EXPECT_EQ(outcome.status, 130);
    EXPECT_TRUE(outcome.err.contains(u"Se han devuelto los 50 créditos."_s));
    EXPECT_EQ(charges(), (QStringList{u"reserve 50 #1"_s, u"refund 50 #1"_s}));
    EXPECT_FALSE(QDir(path(u"out"_s)).exists());
}

TEST_F(ExportCommandTest, whatAKilledCommandLeftOpenComesBackBeforeTheNextPrice)
{
    const QStringList arguments = exportTo({photo(u"f.jpg"_s)});
    const QString told = u"Se han devuelto 50 créditos: una exportación no llegó a terminar.\n"_s;
    m_account.answer("POST /api/credits/social-copy/refund",
                     R"({"ok":true,"cost":50,"balance":4330})");
    for (const QStringList& next : {QStringList{u"account"_s}, arguments}) {
        const auto before = charges().size();
        m_account.hold("POST /api/credits/social-copy/reserve");
        const auto killed = started(arguments);
        wait([&] { return charges().mid(before).contains(u"reserve 50 #1"_s); });
        killed->kill();
        ended(*killed);
        m_account.release();
        const auto open = charges().size();
        const Outcome outcome = run(next);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_TRUE(outcome.err.startsWith(told)) << qPrintable(outcome.err);
        EXPECT_TRUE(next == arguments || outcome.out.endsWith(u"4330 créditos\n"_s));
        EXPECT_EQ(charges().value(open), u"refund 50 #1"_s);
    }
    EXPECT_EQ(charges().last(), u"reserve 50 #1"_s);
}

TEST_F(ExportCommandTest, laysATemplateOverEveryPhoto)
{
    const QString design = holding(u"diseño.json"_s, R"({"format":"square","textLayers":[
        {"slot":"Título","visible":false,"frame":{"x":0,"y":0,"width":1,"height":0.2}},
        {"slot":"Subtítulo","visible":false,"frame":{"x":0,"y":0,"width":1,"height":0.2}},
        {"slot":"CTA","visible":false,"frame":{"x":0,"y":0,"width":1,"height":0.2}}],
        "shapeLayers":[{"kind":"Rectángulo","frame":{"x":0,"y":0,"width":1,"height":0.5},
        "fill":"#FF8000","fillOpacity":1,"cornerRadius":0}]})");
    const QString one = photo(u"a.png"_s), other = photo(u"b.png"_s);
    const Outcome done =
        run({u"export"_s, u"--out"_s, path(u"out"_s), u"--template"_s, design, one, other});
    EXPECT_EQ(done.status, 0) << done.err.toStdString();
    for (const QString& name : {u"a"_s, u"b"_s}) {
        const QImage image(path(u"out/%1-publicacion.png"_s.arg(name)));
        EXPECT_EQ(image.size(), QSize(1080, 1080));    // the size of the template's format
        EXPECT_EQ(image.pixelColor(540, 200), QColor(0xFF8000));
        EXPECT_EQ(image.pixelColor(540, 800), QColor(Qt::darkGreen));
    }
    const Outcome elsewhere = run({u"export"_s, u"--out"_s, path(u"out"_s), u"--template"_s, design,
                                   u"--format"_s, u"horizontal"_s, one});
    EXPECT_EQ(elsewhere.status, 0);
    EXPECT_TRUE(elsewhere.err.contains(u"Post cuadrado"_s));
    EXPECT_EQ(QImage(path(u"out/a-publicacion.png"_s)).size(), QSize(1920, 1080));
}
