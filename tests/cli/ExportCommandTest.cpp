#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

struct Outcome {
    int status = -1;
    QString out, err;
};

class ExportCommandTest : public ::testing::Test {
protected:
    QString photo(const QString& name)
    {
        QImage image(300, 200, QImage::Format_RGB32);
        image.fill(Qt::darkGreen);
        QDir().mkpath(QFileInfo(path(name)).path());
        EXPECT_TRUE(image.save(path(name)));
        return path(name);
    }
    QString textFile(const QString& name)
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("hola") > 0);
        return path(name);
    }
    QString textSheet(const QByteArray& rows) { return holding(u"textos.csv"_s, rows); }
    QString holding(const QString& name, const QByteArray& bytes)
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) > 0);
        return file.fileName();
    }
    QString path(const QString& name) const { return m_folder.filePath(name); }
    QStringList written() const
    {
        return QDir(path(u"out"_s)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    Outcome run(const QStringList& arguments)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        // As on a machine without a display.
        for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
            environment.remove(QString::fromLatin1(name));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(MOLTIVA_PROGRAM), arguments);
        EXPECT_TRUE(process.waitForFinished(60000));
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
    Outcome runExport(const QStringList& arguments)
    {
        return run(QStringList{u"export"_s, u"--out"_s, path(u"out"_s)} + arguments);
    }

    QTemporaryDir m_folder;
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
}

TEST_F(ExportCommandTest, jsonIsOneObjectAFileAndASummaryAndNothingElse)
{
    const Outcome outcome =
        runExport({u"--json"_s, u"--jobs"_s, u"1"_s, photo(u"f.jpg"_s), textFile(u"x.jpg"_s)});
    const QStringList lines = outcome.out.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 3);
    QList<QJsonObject> objects;
    for (const QString& line : lines)
        objects.append(QJsonDocument::fromJson(line.toUtf8()).object());
    EXPECT_EQ(objects[0][u"file"_s].toString(), path(u"out/f-publicacion.png"_s));
    EXPECT_FALSE(objects[1][u"error"_s].toString().isEmpty());
    EXPECT_EQ(objects[2][u"written"_s].toInt(), 1);
    EXPECT_EQ(objects[2][u"skipped"_s].toInt(), 1);
    EXPECT_GT(objects[2][u"peakMemoryBytes"_s].toDouble(), 1e6);
}

TEST_F(ExportCommandTest, fillsTextsFromASheetAndTellsItsWrongRows)
{
    const QStringList photos{photo(u"a/f.jpg"_s), photo(u"b/f.jpg"_s), photo(u"g.jpg"_s)};
    const QString sheet = textSheet("archivo,titulo\nf,Uno\nf,Dos\n\nh,x\n");
    const Outcome outcome = runExport(QStringList{u"--json"_s, u"--texts"_s, sheet} + photos);
    EXPECT_EQ(outcome.status, 1) << "a row was not applied";
    EXPECT_EQ(outcome.out.count(u"\"file\""_s), 3);
    EXPECT_TRUE(outcome.err.endsWith(u"fila 5: no hay ninguna imagen con ese nombre («h»)\n"_s))
        << qPrintable(outcome.err);
    const QImage first(path(u"out/f-publicacion.png"_s)),
        second(path(u"out/f-publicacion-2.png"_s)), untouched(path(u"out/g-publicacion.png"_s));
    EXPECT_NE(first, second);
    EXPECT_NE(second, untouched);
    EXPECT_EQ(runExport({photos[0]}).status, 0);
    EXPECT_EQ(QImage(path(u"out/f-publicacion.png"_s)), untouched) << "the texts it begins with";
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

TEST_F(ExportCommandTest, anInterruptLeavesOnlyWholeFiles)
{
    for (int i = 0; i < 60; ++i)
        photo(u"many/%1.jpg"_s.arg(i));
    QProcess process;
    process.start(QStringLiteral(MOLTIVA_PROGRAM),
                  {u"export"_s, u"--out"_s, path(u"out"_s), u"--jobs"_s, u"2"_s, path(u"many"_s)});
    ASSERT_TRUE(process.waitForReadyRead(60000)) << "the first file";
    ::kill(pid_t(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 130);
    const QStringList files = written();
    EXPECT_GE(files.size(), 1);
    EXPECT_LT(files.size(), 60);
    for (const QString& file : files)
        EXPECT_FALSE(QImage(path(u"out/"_s + file)).isNull()) << qPrintable(file);
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
        EXPECT_EQ(image.size(), QSize(1080, 1080));    // the format of the template
        EXPECT_EQ(image.pixelColor(540, 200), QColor(0xFF8000));
        EXPECT_EQ(image.pixelColor(540, 800), QColor(Qt::darkGreen));
    }
    const Outcome elsewhere = run({u"export"_s, u"--out"_s, path(u"out"_s), u"--template"_s, design,
                                   u"--format"_s, u"horizontal"_s, one});
    EXPECT_EQ(elsewhere.status, 0);
    EXPECT_TRUE(elsewhere.err.contains(u"Post cuadrado"_s));
    EXPECT_EQ(QImage(path(u"out/a-publicacion.png"_s)).size(), QSize(1920, 1080));
}
