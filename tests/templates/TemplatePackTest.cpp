#include "templates/TemplatePack.h"

#include "canvas/TextFitting.h"
#include "templates/MissingFonts.h"
#include "templates/TemplatePacks.h"
#include "templates/TemplateSearch.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <zip.h>

using namespace Qt::StringLiterals;

namespace {

const QByteArray design = R"({"name":"Uno","format":"square","textLayers":[]})";

struct Packed {
    QByteArray name, bytes = design;
    mode_t mode = 0;
    zip_uint16_t encryption = ZIP_EM_NONE;
};

class TemplatePackTest : public ::testing::Test {
protected:
    QString file(const QString& name, const QByteArray& bytes)
    {
        QFile made(folder.filePath(name));
        EXPECT_TRUE(made.open(QIODevice::WriteOnly) && made.write(bytes) == bytes.size());
        return made.fileName();
    }

    QByteArray zipped(const QList<Packed>& files)
    {
        const QString path = folder.filePath(u"hecho.zip"_s);
        zip_t* zip = zip_open(path.toUtf8().constData(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
        for (const Packed& each : files) {
            const auto index = zip_uint64_t(zip_file_add(
                zip, each.name.constData(),
                zip_source_buffer(zip, each.bytes.constData(), zip_uint64_t(each.bytes.size()), 0),
                ZIP_FL_ENC_UTF_8));
            if (each.mode)
                zip_file_set_external_attributes(zip, index, 0, ZIP_OPSYS_UNIX,
                                                 zip_uint32_t(each.mode) << 16);
            EXPECT_EQ(zip_file_set_encryption(zip, index, each.encryption, "clave"), 0);
        }
        EXPECT_EQ(zip_close(zip), 0);
        QFile made(path);
        EXPECT_TRUE(made.open(QIODevice::ReadOnly));
        return made.readAll();
    }

    // The archive with `bytes` at `offset` from each `magic` in it.
    static QByteArray patched(QByteArray zip, const char* magic, qsizetype offset, QByteArray bytes)
    {
        for (auto at = zip.indexOf(magic); at >= 0; at = zip.indexOf(magic, at + 4))
            zip.replace(at + offset, bytes.size(), bytes);
        return zip;
    }

    QTemporaryDir folder;
};

const char *const local = "PK\3\4", *const central = "PK\1\2", *const ending = "PK\5\6";

}    // namespace

TEST_F(TemplatePackTest, RefusesHostilePacks)
{
    QList<Packed> many, large;
    for (int i = 0; i <= TemplatePack::mostFiles; ++i)
        many.append({QByteArray::number(i) + ".json"});
    for (int i = 0; i < 10; ++i)
        large.append({QByteArray::number(i) + ".json", QByteArray(10 << 20, ' ') + design});
    const QByteArray bomb = zipped(large), good = zipped({{"a.json"}});
    const QByteArray size("\x10\0\0\0", 4);    // what the headers say: 16 bytes
    const QByteArray layers = "{\"shapeLayers\":[" +
                              QByteArray(R"({"kind":"Línea","frame":{"x":0,"y":0,"width":1,)"
                                         R"("height":1},"fill":"#000000","fillOpacity":1},)")
                                  .repeated(499) +
                              "0]}";
    QList<Packed> layered;
    for (int i = 0; i < 90; ++i)
        layered.append({QByteArray::number(i) + ".json", layers});

    struct Row {
        const char* what;
        QByteArray bytes;
        QString reason;
    };
    const QList<Row> rows{
        {"leads up", zipped({{"../a.json"}}), u"fuera de su carpeta («../a.json»)"_s},
        {"leads up from within", zipped({{"b/../../a.json"}}), u"fuera de su carpeta"_s},
        {"leads up in Windows", zipped({{"..\\a.json"}}), u"fuera de su carpeta"_s},
        {"absolute", zipped({{"/tmp/a.json"}}), u"fuera de su carpeta"_s},
        {"a drive", zipped({{"C:\\a.json"}}), u"fuera de su carpeta"_s},
        {"another file leads up", zipped({{"a.json"}, {"../.bashrc"}}), u"fuera de su carpeta"_s},
        {"a link", zipped({{"a.json"}, {"b.json", "/etc/passwd", S_IFLNK | 0777}}),
         u"contiene un enlace («b.json»)"_s},
        {"a pipe", zipped({{"a.json", design, S_IFIFO | 0666}}), u"contiene un enlace"_s},
        {"many files", zipped(many), u"tiene más de 2000 archivos"_s},
        {"many files, few announced", patched(zipped(many), ending, 8, QByteArray("\1\0\1\0", 4)),
         u"incompleto o dañado"_s},
        {"a bomb", bomb, u"ocupa más de 64 MB"_s},
        {"a bomb that denies it", patched(patched(bomb, local, 22, size), central, 24, size),
         u"ocupa más de 64 MB"_s},
        {"encrypted", zipped({{"a.json", design, 0, ZIP_EM_AES_256}}), u"con contraseña"_s},
        {"encrypted in the old way", zipped({{"a.json", design, 0, ZIP_EM_TRAD_PKWARE}}),
         u"con contraseña"_s},
        {"one encrypted", zipped({{"a.json"}, {"b.json", design, 0, ZIP_EM_AES_128}}),
         u"con contraseña"_s},
        {"nothing", zipped({{"leeme.txt"}, {"pack.json", "{}"}}), u"ninguna plantilla"_s},
        {"nothing that can be read", zipped({{"a.json", "{"}}),
         u"que se pueda leer («a.json» no es una plantilla de Moltiva)"_s},
        {"many layers", zipped(layered), u"demasiadas capas"_s},
        {"not a .zip file", "hola", u"no es una carpeta ni un archivo .zip"_s},
        {"empty", "", u"no es una carpeta ni un archivo .zip"_s},
        {"cut", good.left(good.size() - 30), u"incompleto o dañado"_s},
        {"cut at the start", good.left(40), u"incompleto o dañado"_s},
        {"damaged directory", patched(good, central, 0, "PKPK"), u"incompleto o dañado"_s},
        {"endless directory", patched(good, ending, 12, "\xff\xff\xff\x7f"),
         u"incompleto o dañado"_s},
        {"Zip64", QByteArray(good).insert(good.indexOf(ending), "PK\6\7" + QByteArray(16, '\1')),
         u"Zip64"_s},
        {"another compression",
         patched(patched(good, local, 8, QByteArray("\x0e\0", 2)), central, 10,
                 QByteArray("\x0e\0", 2)),
         u"compresión"_s},
        {"damaged contents", patched(good, local, 36, "????"), u"«a.json» está dañado"_s},
        {"a name that turns", zipped({{"../\u202e\u2067.json"}}),
         u"fuera de su carpeta («../.json»)"_s},
    };
    for (const Row& row : rows) {
        const PackFile read = readPack(file(u"paquete.zip"_s, row.bytes));
        EXPECT_FALSE(read.pack) << row.what;
        EXPECT_TRUE(read.error.contains(row.reason))
            << row.what << ": " << read.error.toStdString();
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 2) << row.what;
    }
    EXPECT_EQ(readPack(folder.filePath(u"no-está"_s)).error, u"no existe"_s);
    QFile endless(folder.filePath(u"enorme.zip"_s));
    EXPECT_TRUE(endless.open(QIODevice::WriteOnly) && endless.resize(qint64(1) << 40));
    EXPECT_EQ(readPack(endless.fileName()).error, u"ocupa más de 64 MB"_s);
}

TEST_F(TemplatePackTest, ReadsFoldersWithoutFollowingLinks)
{
    const QDir own(folder.filePath(u"Mercado"_s));
    QDir().mkpath(own.path());
    file(u"Mercado/b.json"_s, design);
    file(u"Mercado/roto.json"_s, "{");
    file(u"Mercado/leeme.txt"_s, "hola");
    EXPECT_EQ(::mkfifo(own.filePath(u"tubo.json"_s).toUtf8().constData(), 0600), 0);
    const PackFile read = readPack(own.path());
    ASSERT_TRUE(read.pack) << read.error.toStdString();
    EXPECT_EQ(read.pack->name, u"Mercado"_s);
    ASSERT_EQ(read.pack->designs.size(), 1);
    EXPECT_EQ(read.pack->designs[0].definition.sourceURL,
              QUrl::fromLocalFile(own.filePath(u"b.json"_s)));
    ASSERT_EQ(read.pack->unread.size(), 2);
    EXPECT_EQ(read.pack->unread[0].name, u"roto.json"_s);
    EXPECT_EQ(read.pack->unread[1].reason, u"no se puede abrir"_s);

    EXPECT_TRUE(QFile::link(u"/etc/hostname"_s, own.filePath(u"c.json"_s)));
    EXPECT_EQ(readPack(own.path()).error, u"contiene un enlace («c.json»)"_s);
}

TEST_F(TemplatePackTest, ComesBackFromItsFileAsItWas)
{
    const QByteArray second = QByteArray(design).replace("Uno", "Dos\u202e\\u0007");
    const QByteArray manifest = R"({"name":" Mercado\n local ","author":"Ana","other":[1],
        "order":["b.json",7,"a.json","no-está.json"],
        "tags":{"a.json":["Oferta","oferta",3,""],"b.json":"cita"}})";
    const QByteArray preview = R"({"textLayers":[],"previewPNGBase64":"AAAA"})";
    const PackFile read = readPack(file(u"x.zip"_s, zipped({{"Mercado/pack.json", manifest},
                                                            {"Mercado/a.json"},
                                                            {"Mercado/b.json", second},
                                                            {"Mercado/c.json", preview},
                                                            {"Mercado/roto.json", "[]"},
                                                            {"Mercado/más/d.json"},
                                                            {"Mercado/._a.json"},
                                                            {"__MACOSX/a.json"}})));
    ASSERT_TRUE(read.pack) << read.error.toStdString();
    const TemplatePack& pack = *read.pack;
    EXPECT_EQ(pack.name, u"Mercado local"_s);
    QStringList names;
    for (const PackDesign& each : pack.designs)
        names.append(each.fileName);
    ASSERT_EQ(names, (QStringList{u"b.json"_s, u"a.json"_s, u"c.json"_s}));
    EXPECT_EQ(pack.designs[0].definition.name, u"Dos"_s);
    EXPECT_EQ(pack.designs[1].tags, QStringList{u"oferta"_s});
    EXPECT_FALSE(pack.designs[2].definition.previewImage());
    ASSERT_EQ(pack.unread.size(), 1);
    EXPECT_EQ(pack.unread[0].name, u"roto.json"_s);

    const TemplatePacks packs(folder.filePath(u"datos/packs"_s));
    EXPECT_EQ(packs.write(pack), QString());
    TemplatePack other = pack;
    other.name = u"../Árbol"_s;
    EXPECT_EQ(packs.write(other), QString());
    file(u"datos/packs/Roto.zip"_s, "PK");
    TemplatePacks::Installed installed = packs.read();
    EXPECT_EQ(installed.damaged, QStringList{u"Roto"_s});
    ASSERT_EQ(installed.packs.size(), 2);
    EXPECT_EQ(installed.packs[0].name, u"../Árbol"_s);
    const TemplatePack& again = installed.packs[1];
    EXPECT_EQ(again.author, u"Ana"_s);
    ASSERT_EQ(again.designs.size(), 3);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(again.designs[i].fileName, pack.designs[i].fileName);
        EXPECT_EQ(again.designs[i].tags, pack.designs[i].tags);
        EXPECT_EQ(again.designs[i].definition.id, pack.designs[i].definition.id);
    }
    EXPECT_EQ(packs.remove(TemplatePacks::keyOf(other)), QString());
    EXPECT_EQ(packs.read().packs.size(), 1);
    EXPECT_EQ(QDir(folder.filePath(u"datos"_s)).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
              QStringList{u"packs"_s});
}

TEST_F(TemplatePackTest, NamesFilesAndMissingFontsAndFindsWords)
{
    EXPECT_EQ(packFileName(u"../Café: uno"_s, {}), u"-Café- uno.json"_s);
    EXPECT_EQ(packFileName(u"a"_s, {u"a.json"_s}), u"a 2.json"_s);
    EXPECT_EQ(packFileName(u"pack"_s, {}), u"pack 2.json"_s);

    const auto missing = [](const QByteArray& font, const char* visible = "true") {
        const DefinitionFile read = readDefinition(
            R"({"textLayers":[{"slot":"Título","frame":{"x":0,"y":0,"width":1,"height":1},)"
            R"("fontName":")" +
            font + R"(","visible":)" + visible + "}]}");
        return missingFont(*read.definition);
    };
    EXPECT_EQ(missing("System"), QString());
    EXPECT_EQ(missing("Inter Semi Bold Italic"), QString());
    EXPECT_EQ(missing("Bodoni Moda Semi Bold Italic"), u"Bodoni Moda"_s);
    EXPECT_EQ(missing("Bodoni Moda"), u"Bodoni Moda"_s);
    EXPECT_EQ(missing("Bodoni Moda", "false"), QString());
    EXPECT_EQ(missing(QByteArray(300, 'a')), QString());    // no font has such a name

    const QString text = foldedForSearch(u"Título de la Colina oferta"_s);
    EXPECT_TRUE(TemplateSearch(u" COLÍNA  titulo"_s).matches(text));
    EXPECT_TRUE(TemplateSearch(QString()).matches(text));
    EXPECT_FALSE(TemplateSearch(u"colina cita"_s).matches(text));
}
