#include "studio/export/ExportPaths.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(ExportPaths, noOutputIsSharedOrFallsOnAPhotoOfTheBatch)
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

TEST(ExportPaths, anOutputReachedThroughALinkDoesNotFallOnAPhoto)
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
    const QString elsewhere = folder.filePath(u"y.png"_s);    // will link to d/x-publicacion.png
    ASSERT_TRUE(QFile::link(photos[1].toLocalFile(), elsewhere));
    EXPECT_EQ(exportPaths({photos[0], QUrl::fromLocalFile(elsewhere)}, folder.filePath(u"d"_s)),
              (QStringList{folder.filePath(u"d/x-publicacion-2.png"_s),
                           folder.filePath(u"d/y-publicacion.png"_s)}));
}

TEST(ExportPaths, aFolderExportedIntoItselfGivesTheSamePhotosAgain)
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

TEST(ExportPaths, aNameThatIsTooLongIsShortenedAtACharacter)
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
