#include "studio/sheet/SheetMatch.h"

#include <QStringEncoder>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

PublicationItems itemsOf(const QStringList& paths)
{
    PublicationItems items;
    for (const QString& path : paths)
        items.append(PublicationItem::make(QUrl::fromLocalFile(path), {}));
    return items;
}

QString text(const PublicationItem& item, CopySlot slot)
{
    return PublicationItem(item).layer(slot)->text;
}

QStringList titlesOf(const PublicationItems& items)
{
    QStringList titles;
    for (const PublicationItem& item : items)
        titles.append(text(item, CopySlot::title));
    return titles;
}

QStringList told(const SheetMatch& match)
{
    QStringList lines;
    for (const RowProblem& problem : match.problems)
        lines.append(u"%1 %2"_s.arg(problem.row).arg(row(problem.fault).reason));
    return lines;
}

}    // namespace

TEST(TextSheet, wrongRowsAreToldByNumberAndSpoilNoOtherOne)
{
    const std::pair<QByteArray, QString> wrong[] = {
        {"nadie.jpg;x;y", u"no hay ninguna imagen con ese nombre"_s},
        {"f1.jpg;x", u"faltan columnas"_s},
        {"f1.jpg;x;y;;z", u"sobran columnas"_s},
        {";x;y", u"falta el nombre del archivo"_s},
        {"f1.jpg;a\xF1o;y", u"no está en UTF-8"_s},
        {"f1.jpg;cortada\xC3;y", u"no está en UTF-8"_s},
        {QByteArray("f1.jpg;nul\0;y", 12), u"tiene caracteres de control"_s},
        {"f1.jpg;campana\a;y", u"tiene caracteres de control"_s},
        {"f1.jpg;" + QByteArray(10'001, 'x') + ";y", u"un texto pasa de 10000 caracteres"_s},
        {"f1.jpg;una \"comilla;y", u"comillas mal puestas"_s},
        {"f1.jpg;\"dos\nlíneas\";una \"comilla", u"comillas mal puestas"_s},
        {"f1.jpg;\"una\" de más;y", u"comillas mal puestas"_s},
        {"f1.jpg;\"nunca se cierra;y", u"comillas mal puestas"_s},
    };
    QStringList names;
    QByteArray sheet = "archivo;titulo;cta\n";
    QStringList problems, titles;
    int number = 1, broken = 0;
    for (int i = 1; i <= 480; ++i) {
        names.append(u"/f%1.jpg"_s.arg(i));
        // A line break inside a cell starts no new row; empty rows count as rows.
        titles.append(i % 7 == 0 ? u"Título %1\n\"%1\""_s.arg(i) : u"Título %1"_s.arg(i));
        sheet += u"f%1;\"%2\";Ya\n"_s
                     .arg(QString::number(i), QString(titles.last()).replace(u'"', u"\"\""_s))
                     .toUtf8();
        ++number;
        if (i % 50 == 0) {
            sheet += i % 100 ? "\n" : ";;;\n";
            ++number;
        }
        if (i % 24 == 0) {
            const auto& [row, reason] = wrong[broken++ % std::size(wrong)];
            sheet += row + '\n';
            problems.append(u"%1 %2"_s.arg(QString::number(++number), reason));
        }
    }
    ASSERT_EQ(problems.size(), 20);
    PublicationItems items = itemsOf(names);
    const SheetMatch match = applyTextSheet(items, readTextSheet(sheet));
    EXPECT_EQ(told(match), problems);
    EXPECT_EQ(match.filledImages(), 480);
    EXPECT_EQ(titlesOf(items), titles);
    EXPECT_EQ(text(items[9], CopySlot::subtitle), GeneratedCopy::placeholder().subtitle);

    const SheetMatch cut =
        applyTextSheet(items, readTextSheet("archivo,titulo\nf1,\"sin fin\nf2,Dos\n"));
    EXPECT_EQ(told(cut), QStringList{u"2 comillas mal puestas"_s});
    EXPECT_EQ(text(items[1], CopySlot::title), u"Dos"_s) << "the end of the file closes nothing";
}

TEST(TextSheet, aRoundTripChangesNothing)
{
    const QStringList hostile{u"coma, punto; y \"comillas\""_s,
                              u"dos\nlíneas\n"_s,
                              u"👩‍🚀 ❤️"_s,
                              u"=1+1"_s,
                              u"'=1+1"_s,
                              u"''@x"_s,
                              u"'90"_s,
                              u"-5 %1"_s,
                              u"\tcon tabulador"_s,
                              u" a los lados "_s,
                              u""_s,
                              u"\""_s,
                              u"\xFEFFmarca"_s,
                              u"un texto que no es una llamada a la acción."_s};
    // File names that are easily confused or hard to write: two equal ones, one that equals another
    // without its extension, one like a formula, one with an accent as a combining character.
    PublicationItems items = itemsOf({u"/a/f.jpg"_s, u"/b/f.jpg"_s, u"/a/g.h.jpg"_s, u"/a/g.h"_s,
                                      u"/a/=x;.png"_s, u"/a/n\u0303.jpg"_s, u"/a/50%1.jpg"_s});
    for (qsizetype i = 0; i < items.size(); ++i) {
        PublicationItem& item = items.edit(i);
        for (qsizetype slot = 0; slot < 4; ++slot)
            item.layers[slot].text = hostile[(i * 2 + slot) % hostile.size()];
        item.analysis.publicationCaption = hostile[(i * 2 + 4) % hostile.size()];
    }
    items.edit(2).layers.removeAt(1);

    const QByteArray sheet = textSheetOf(items);
    EXPECT_TRUE(
        sheet.startsWith("\xEF\xBB\xBF"
                         "archivo;titulo;subtitulo;parrafo;cta;texto_publicacion\r\nf.jpg;"));
    EXPECT_TRUE(sheet.contains(";'=1+1;''=1+1;'''@x;'90")) << sheet.constData();
    PublicationItems same = items;
    const SheetMatch match = applyTextSheet(same, readTextSheet(sheet));
    EXPECT_EQ(told(match), QStringList());
    EXPECT_EQ(same, items);

    PublicationItems emptied = items;
    for (qsizetype i = 0; i < items.size(); ++i) {
        for (TextLayer& layer : emptied.edit(i).layers)
            layer.text.clear();
        emptied.edit(i).analysis.publicationCaption.clear();
    }
    applyTextSheet(emptied, readTextSheet(sheet));
    // A caption that a sheet has changed is the user's.
    for (qsizetype i = 0; i < items.size(); ++i)
        items.edit(i).isCaptionOwn = !items[i].analysis.publicationCaption.isEmpty();
    EXPECT_EQ(emptied, items);
}

TEST(TextSheet, whatAnItemHoldsComesBackThoughItCouldNotBeTyped)
{
    PublicationItems items = itemsOf({u"/f.jpg"_s});
    items.edit(0).layers[0].text = u"a\vb\fc\u2028d\u2029e\r\nf\rg\a\th"_s;
    items.edit(0).layers[2].text = QString(10'001, u'x');
    PublicationItems same = items;
    const TextSheet sheet = readTextSheet(textSheetOf(items));
    EXPECT_EQ(told(applyTextSheet(same, sheet)), QStringList());
    EXPECT_EQ(titlesOf(same), QStringList{u"a\nb\nc\nd\ne\nf\ng\th"_s});
    EXPECT_EQ(text(same[0], CopySlot::tagline), QString(10'001, u'x'));
    same.edit(0).layers[2].text.chop(1);
    EXPECT_EQ(told(applyTextSheet(same, sheet)),
              QStringList{u"2 un texto pasa de 10000 caracteres"_s});
}

TEST(TextSheet, aQuoteThatIsNotClosedSpoilsNoOtherRow)
{
    const auto read = [](const QByteArray& rows, const QStringList& problems) {
        PublicationItems items = itemsOf({u"/f1"_s, u"/f2"_s, u"/f3"_s, u"/f4"_s});
        for (qsizetype i = 0; i < items.size(); ++i)
            items.edit(i).layers[0].text.clear();
        const TextSheet sheet = readTextSheet("archivo;titulo;cta\n" + rows);
        EXPECT_EQ(told(applyTextSheet(items, sheet)), problems) << rows.constData();
        return titlesOf(items).join(u'|');
    };
    const QString quotes = u"%1 comillas mal puestas"_s;
    EXPECT_EQ(read("f1;\"sin cerrar;x\nf2;Dos;y\nf3;Tres;\nf4;4;", {quotes.arg(2)}),
              u"|Dos|Tres|4"_s);
    EXPECT_EQ(
        read("f1;\"sin cerrar;x\nf2;Dos;y\nf3;Tres;\"\nf4;4;", {quotes.arg(2), quotes.arg(4)}),
        u"|Dos||4"_s)
        << "it ends where another is missing";
    EXPECT_EQ(read("f1;\"sin cerrar;x\nf2;\";\";y\nf3;\"Tres\";\n", {quotes.arg(2)}),
              u"|;|Tres|"_s);
    EXPECT_EQ(read("f1;\"dos\nlíneas\"\nf2;Dos;\nf3;\"3\n;;\";\n", {u"2 faltan columnas"_s}),
              u"|Dos|3\n;;|"_s)
        << "line breaks that are meant are no rows";
    EXPECT_EQ(read("f1;\"Uno\nDos; tres; cuatro\"\nf2;Dos;y\n", {u"2 faltan columnas"_s}),
              u"|Dos||"_s)
        << "nor are they with separators";
}

TEST(TextSheet, readsWhatSpreadsheetProgramsWrite)
{
    const QByteArray written[] = {
        // With a byte order mark, semicolons and CRLF, and LF inside a cell; empty columns at the
        // end.
        "\xEF\xBB\xBF"
        "Archivo;Título;Notas;TAGLINE;Texto publicación;;\r\n"
        "\"f.jpg\";\"Uno\nDos\";da igual; con aire ;\"Hola; \"\"tú\"\"\";;\r\n",
        // With commas and LF.
        "texto_publicacion,titulo,parrafo,archivo\n\"Hola; \"\"tú\"\"\",\"Uno\nDos\", con aire ,f",
        // With lone CR as line end, also inside a cell.
        " titulo ;archivo;párrafo;texto_publicacion\r\"Uno\rDos\";f.jpg; con aire ;\"Hola; "
        "\"\"tú\"\"\"\r",
        // With leftovers to ignore: empty rows and columns, a row "Sep=,", blanks around cells.
        "\n;;\nSep=,\n\narchivo,titulo,parrafo,texto_publicacion,;;;;;\n , ,\t\n"
        "  f.jpg ,\t\"Uno\nDos\" , con aire , \"Hola; \"\"tú\"\"\" ,\n"};
    QByteArrayList sheets;
    for (const QByteArray& sheet : written) {
        sheets.append(sheet);
        QString whole = QString::fromUtf8(sheet);
        whole.remove(QChar::ByteOrderMark);
        for (const char* encoding : {"windows-1252", "UTF-16LE", "UTF-16BE"})
            sheets.append(QStringEncoder(encoding)(whole));
        for (const char* encoding : {"UTF-16LE", "UTF-16BE"})
            sheets.append(QStringEncoder(encoding)(QChar::ByteOrderMark + whole));
    }
    for (const QByteArray& sheet : sheets) {
        PublicationItems items = itemsOf({u"/f.jpg"_s});
        items.edit(0).layers[0].isVisible = false;
        const SheetMatch match = applyTextSheet(items, readTextSheet(sheet));
        EXPECT_EQ(told(match), QStringList()) << sheet.constData();
        EXPECT_EQ(text(items[0], CopySlot::title), u"Uno\nDos"_s);
        EXPECT_EQ(text(items[0], CopySlot::tagline), u" con aire "_s);
        EXPECT_EQ(text(items[0], CopySlot::callToAction),
                  GeneratedCopy::placeholder().callToAction);
        EXPECT_EQ(items[0].analysis.publicationCaption, u"Hola; \"tú\""_s);
        EXPECT_FALSE(items[0].layers[0].isVisible);
    }
}

TEST(TextSheet, saysWhyNothingOfAFileCanBeRead)
{
    const std::pair<QByteArray, QString> unreadable[] = {
        {"", u"está vacío"_s},
        {"\xEF\xBB\xBF\r\n", u"está vacío"_s},
        {QByteArray("\xFF\xFE"
                    "a\0r\0",
                    6),
         u"falta la columna «archivo»"_s},
        {QByteArray("\xFF\xFE"
                    "a\0r",
                    5),
         u"no es un archivo CSV"_s},
        {QByteArray("a\0\0\xD8", 4), u"no es un archivo CSV"_s},
        {QByteArray("\x89PNG\r\n\x1A\n\0\0\0", 11), u"no es un archivo CSV"_s},
        {"titulo;cta\nx;y\n", u"falta la columna «archivo»"_s},
        {"archivo;notas\nx;y\n", u"no tiene ninguna columna de textos"_s},
        {"archivo;parrafo;tagline\n", u"la columna «parrafo» está dos veces"_s},
        {"archivo;\"titulo\n", u"la primera fila tiene comillas mal puestas"_s},
        {"archivo,titulo" + QByteArray(20'000, ','), u"tiene más de 16384 columnas"_s},
        {"archivo,titulo\n" + QByteArray("x\n").repeated(20'001), u"tiene más de 20000 filas"_s},
    };
    for (const auto& [bytes, error] : unreadable)
        EXPECT_EQ(readTextSheet(bytes).error, error) << bytes.left(40).constData();
}

TEST(TextSheet, rowsOfOneNameAreForAsManyImagesInOrder)
{
    const QStringList names{u"/a/f.jpg"_s, u"/b/f.jpg"_s, u"/c/f.jpg"_s};
    const auto filled = [&](const QByteArray& rows, const QStringList& problems) {
        PublicationItems items = itemsOf(names);
        const TextSheet sheet = readTextSheet("archivo;titulo\n" + rows);
        EXPECT_EQ(told(applyTextSheet(items, sheet)), problems);
        return titlesOf(items);
    };
    EXPECT_EQ(filled("f;1\n", {}), (QStringList{u"1"_s, u"1"_s, u"1"_s}));
    EXPECT_EQ(filled("f.jpg;1\nf.jpg;2\n", {}), (QStringList{u"1"_s, u"2"_s, u"2"_s}));
    EXPECT_EQ(filled("f;1\nf;2\nf;3\nf;4\n", {u"5 repite una imagen"_s}),
              (QStringList{u"1"_s, u"2"_s, u"3"_s}));
    EXPECT_EQ(filled("f;\a\nf;2\n", {u"2 tiene caracteres de control"_s}),
              (QStringList{u"2"_s, u"2"_s, u"2"_s}))
        << "a wrong row has no image";
    EXPECT_EQ(filled("f.jpg;1\nf;2\n", {u"3 repite una imagen"_s}),
              (QStringList{u"1"_s, u"1"_s, u"1"_s}));
    EXPECT_EQ(filled("f.jpg;1\nf;2\nf.jpg;3\n", {u"4 repite una imagen"_s}),
              (QStringList{u"1"_s, u"2"_s, u"2"_s}))
        << "another spelling fills what is left";
}
