#include "studio/export/BatchExport.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <set>

using namespace Qt::StringLiterals;

namespace {

QUrl paintedPhoto(const QTemporaryDir& folder, const QString& name, const QColor& color)
{
    QImage image(320, 200, QImage::Format_RGB32);
    image.fill(color);
    const QString path = folder.filePath(name);
    EXPECT_TRUE(image.save(path));
    return QUrl::fromLocalFile(path);
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}    // namespace

TEST(BatchExport, noOutputIsSharedOrFallsOnAPhotoOfTheBatch)
{
    QList<QUrl> photos;
    for (const QString& path :
         {u"/a/foto.jpg"_s, u"/a/otra.jpg"_s, u"/b/foto.png"_s, u"/c/FOTO.jpg"_s, u"/a/50%1.jpg"_s,
          u"/b/50%1.jpg"_s, u"/s/otra-publicacion.png"_s})
        photos.append(QUrl::fromLocalFile(path));
    EXPECT_EQ(exportPaths(photos, u"/s"_s),
              (QStringList{u"/s/foto-publicacion.png"_s, u"/s/otra-publicacion-2.png"_s,
                           u"/s/foto-publicacion-2.png"_s, u"/s/FOTO-publicacion-3.png"_s,
                           u"/s/50%1-publicacion.png"_s, u"/s/50%1-publicacion-2.png"_s,
                           u"/s/otra-publicacion-publicacion.png"_s}));
}

TEST(BatchExport, anOutputReachedThroughALinkDoesNotFallOnAPhoto)
{
    const QTemporaryDir folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"d"_s));
    ASSERT_TRUE(QFile::link(folder.filePath(u"d"_s), folder.filePath(u"link"_s)));
    const QList<QUrl> photos{QUrl::fromLocalFile(folder.filePath(u"d/x.jpg"_s)),
                             QUrl::fromLocalFile(folder.filePath(u"d/x-publicacion.png"_s))};
    for (const QUrl& photo : photos)
        ASSERT_TRUE(QFile(photo.toLocalFile()).open(QIODevice::WriteOnly));
    EXPECT_EQ(exportPaths(photos, folder.filePath(u"link"_s)).first(),
              folder.filePath(u"link/x-publicacion-2.png"_s));
    const QString elsewhere = folder.filePath(u"y.png"_s);    // a link to a photo of another name
    ASSERT_TRUE(QFile::link(photos[1].toLocalFile(), elsewhere));
    EXPECT_EQ(exportPaths({photos[0], QUrl::fromLocalFile(elsewhere)}, folder.filePath(u"d"_s)),
              (QStringList{folder.filePath(u"d/x-publicacion-2.png"_s),
                           folder.filePath(u"d/y-publicacion.png"_s)}));
}

TEST(BatchExport, aFolderExportedIntoItselfGivesTheSamePhotosAgain)
{
    QList<QUrl> photos;
    for (const QString& name : {u"a.jpg"_s, u"a-publicacion.png"_s, u"a-publicacion-2.png"_s,
                                u"b-publicacion.png"_s, u"a-publicacion.jpg"_s})
        photos.append(QUrl::fromLocalFile(u"/f/"_s + name));
    QStringList kept;
    for (const QUrl& photo : withoutOwnOutputs(photos))
        kept.append(photo.fileName());
    EXPECT_EQ(kept, (QStringList{u"a.jpg"_s, u"b-publicacion.png"_s, u"a-publicacion.jpg"_s}));
}

TEST(BatchExport, aNameThatIsTooLongIsShortenedAtACharacter)
{
    const QTemporaryDir folder;
    const QString family = u"👩\u200d👩\u200d👧"_s;    // 18 bytes, one character
    const QString stem = family.repeated(14), fits = family.repeated(13);
    QList<QUrl> photos;
    for (const QString& name : {u"a/%1.jpg"_s, u"b/%1.jpg"_s, u"c/x%1.jpg"_s, u"d/%1.jpg"_s})
        photos.append(
            QUrl::fromLocalFile(folder.filePath(name.arg(name.startsWith(u'd') ? fits : stem))));
    QStringList names;
    for (const QString& path : exportPaths(photos, folder.filePath(u"new/folder"_s)))
        names.append(QFileInfo(path).fileName());
    EXPECT_EQ(names,
              (QStringList{fits + u"-publicacion.png"_s, fits + u"-publicacion-2.png"_s,
                           u"x"_s + fits + u"-publicacion.png"_s, fits + u"-publicacion-3.png"_s}));
    EXPECT_EQ(exportName(photos[0], folder.path()), names[0]);
    const QList<QUrl> again{photos[0], QUrl::fromLocalFile(folder.filePath(u"a/"_s + names[1]))};
    EXPECT_EQ(withoutOwnOutputs(again), QList<QUrl>{photos[0]});
}

TEST(BatchExport, anExceptionFailsItsOwnFileOnly)
{
    int written = 0, failed = 0;
    runBatch(
        5, 2, false,
        [](qsizetype index) {
            if (index == 2)
                throw std::bad_alloc();
            return ExportedFile();
        },
        [&](qsizetype index, const ExportedFile& file) {
            ++(file.isWritten() ? written : failed);
            EXPECT_EQ(file.isWritten(), index != 2);
        });
    EXPECT_EQ(written, 4);
    EXPECT_EQ(failed, 1);
}

TEST(BatchExport, writesTheSameBytesEachTimeAndReplacesTheOldFile)
{
    const QTemporaryDir folder;
    const QUrl photo = paintedPhoto(folder, u"p.jpg"_s, Qt::darkCyan);
    const QString path = folder.filePath(u"p.png"_s);
    ASSERT_TRUE(exportPhoto(photo, SocialFormat::square, path).isWritten());
    const QByteArray first = contents(path);
    EXPECT_EQ(QImage::fromData(first).size(), QSize(1080, 1080));
    QFile::remove(path);
    ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
    const ExportedFile again = exportPhoto(photo, SocialFormat::square, path);
    EXPECT_EQ(contents(path), first);
    EXPECT_EQ(again.bytes, first.size());
}

TEST(BatchExport, whatFailsSaysWhyAndLeavesNothingBehind)
{
    const QTemporaryDir folder;
    const QUrl photo = paintedPhoto(folder, u"p.jpg"_s, Qt::red);
    QFile text(folder.filePath(u"t.jpg"_s));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly) && text.write("no photo") > 0);
    text.close();

    const ExportedFile unreadable = exportPhoto(QUrl::fromLocalFile(text.fileName()),
                                                SocialFormat::square, folder.filePath(u"t.png"_s));
    EXPECT_EQ(unreadable.error, u"No se pudo leer la foto."_s);
    const ExportedFile nowhere =
        exportPhoto(photo, SocialFormat::square, folder.filePath(u"no/p.png"_s));
    EXPECT_FALSE(nowhere.isWritten());
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"taken.png/inside"_s));
    const ExportedFile onFolder =
        exportPhoto(photo, SocialFormat::square, folder.filePath(u"taken.png"_s));
    EXPECT_FALSE(onFolder.isWritten());
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
              (QStringList{u"p.jpg"_s, u"t.jpg"_s}));
}

TEST(BatchExport, runsEachIndexOnceAndBeginsNothingAfterAStop)
{
    std::atomic_bool stop = false;
    std::atomic<int> begun = 0;
    std::multiset<qsizetype> finished;
    const auto work = [&](qsizetype) {
        ++begun;
        return ExportedFile();
    };
    runBatch(100, 4, stop, work,
             [&](qsizetype index, const ExportedFile&) { finished.insert(index); });
    EXPECT_EQ(finished.size(), 100u);
    EXPECT_EQ(std::set<qsizetype>(finished.begin(), finished.end()).size(), 100u);

    begun = 0;
    qsizetype told = 0;
    runBatch(
        100, 1, stop,
        [&](qsizetype index) {
            stop = index == 4;
            return work(index);
        },
        [&](qsizetype, const ExportedFile&) { ++told; });
    EXPECT_EQ(begun, 5);
    EXPECT_EQ(told, 5) << "what was begun is told";
    runBatch(0, 4, stop, work, [](qsizetype, const ExportedFile&) { FAIL(); });
}
