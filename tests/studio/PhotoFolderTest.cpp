#include "studio/PhotoFolder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fstream>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(PhotoFolder, givesPhotosInNaturalOrderWithoutHiddenFilesAndSubfolders)
{
    const QTemporaryDir folder;
    for (const QString& name :
         {u"foto10.jpg"_s, u"foto2.JPG"_s, u"Árbol.jpeg"_s, u"b.PNG"_s, u"c.heic"_s, u"d.TIFF"_s,
          u".oculta.jpg"_s, u"e.tif"_s, u"f.webp"_s, u"notas.txt"_s, u"jpg"_s, u"g.jpg.zip"_s})
        ASSERT_TRUE(QFile(folder.filePath(name)).open(QIODevice::WriteOnly));
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"dentro.jpg"_s));

    QStringList names;
    for (const QUrl& url : photosInFolder(folder.path()))
        names.append(url.fileName());
    EXPECT_EQ(names, (QStringList{u"Árbol.jpeg"_s, u"b.PNG"_s, u"c.heic"_s, u"d.TIFF"_s,
                                  u"foto2.JPG"_s, u"foto10.jpg"_s}))
        << qPrintable(names.join(u' '));

    // A file that is named itself, and not found in a folder, is taken whatever its extension.
    const QUrl odd = QUrl::fromLocalFile(folder.filePath(u"f.webp"_s));
    const QList<QUrl> mixed = photosIn({odd, QUrl::fromLocalFile(folder.path())}).photos;
    EXPECT_EQ(mixed.size(), 7);
    EXPECT_EQ(mixed.first(), odd);
    EXPECT_TRUE(photosInFolder(u"/no/such/folder"_s).isEmpty());
    EXPECT_TRUE(unreachablePhotosInFolder(u"/no/such/folder"_s).isEmpty());

    // Names that are not in UTF-8 have no URL, so they are reported.
    for (const char* name : {"/ca\xf1"
                             "a.jpg",
                             "/.ca\xf1"
                             "a.jpg",
                             "/ca\xf1"
                             "a.txt"})
        ASSERT_TRUE(std::ofstream(folder.path().toStdString() + name).put('x'));
    const FoundPhotos found = photosIn({QUrl::fromLocalFile(folder.path())});
    EXPECT_EQ(found.photos.size(), 6);
    EXPECT_EQ(found.unreachable, QStringList{u"ca\uFFFDa.jpg"_s});
}
