#include "templates/CatalogueCopy.h"
#include "platform/PlainFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class CatalogueCopyTest : public ::testing::Test {
protected:
    static QByteArray design(int number, const QByteArray& name = "Oferta")
    {
        return R"({"id":")" + QUuid::createUuid().toByteArray() + R"(","order":)" +
               QByteArray::number(number) + R"(,"name":")" + name +
               R"(","previewPNGBase64":"e30=","textLayers":[],"shapeLayers":[]})";
    }
    static QString nameOf(int number)
    {
        return u"00000000-0000-4000-8000-%1.json"_s.arg(number, 12, 10, QChar(u'0'));
    }
    static CatalogueEntry entry(int number, const QByteArray& bytes)
    {
        const QByteArray digest = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
        return {nameOf(number), QString::fromLatin1(digest.toHex()), bytes.size(), 2};
    }
    void expectStored(const CatalogueEntry& one, const QByteArray& bytes) const
    {
        const auto stored = m_copy.store(one, bytes);
        EXPECT_TRUE(stored.isRight && stored.problem.isEmpty()) << stored.problem.toStdString();
    }
    QString onlyFolder() const
    {
        const QStringList folders =
            QDir(path(u"catalogue"_s)).entryList(QDir::AllDirs | QDir::NoDotAndDotDot);
        EXPECT_EQ(folders.size(), 1);
        return path(u"catalogue/"_s + folders.value(0));
    }
    QStringList files() const
    {
        return QDir(onlyFolder()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }
    QString path(const QString& name) const { return m_home.filePath(name); }
    static void write(const QString& file, const QByteArray& bytes)
    {
        QFile target(file);
        EXPECT_TRUE(target.open(QIODevice::WriteOnly) && target.write(bytes) == bytes.size());
    }

    QTemporaryDir m_home;
    CatalogueCopy m_copy{path(u"catalogue"_s), "https://s.es"};
};

}    // namespace

TEST_F(CatalogueCopyTest, aListReplacesTheWholeCopyAndNothingElseStays)
{
    EXPECT_FALSE(m_copy.read().isThere);
    const QByteArray one = design(2, "Uno\\n\\u0007dos"), two = design(1), three = design(3);
    expectStored(entry(1, one), one);
    expectStored(entry(2, two), two);
    const QUuid withdrawn = QUuid::createUuid();
    const QDateTime copied = QDateTime::fromString(u"2026-11-21T09:00:00Z"_s, Qt::ISODate);
    EXPECT_EQ(m_copy.replace({u"v1"_s, copied, {entry(1, one), entry(2, two)}, {withdrawn}}),
              QString());
    CatalogueCopy::Contents contents = m_copy.read();
    EXPECT_EQ(contents.list.version, u"v1"_s);
    EXPECT_EQ(contents.list.copied, copied);
    EXPECT_EQ(contents.list.withdrawn, QSet{withdrawn});
    ASSERT_EQ(contents.designs.size(), 2);
    EXPECT_EQ(contents.designs[0].fileName, nameOf(2)) << "by their order";
    EXPECT_EQ(contents.designs[1].definition.id, catalogueId(nameOf(1)))
        << "whatever the file says";
    EXPECT_EQ(contents.designs[1].keptVersions, 2);
    EXPECT_FALSE(contents.designs[1].definition.previewImage());
    EXPECT_FALSE(CatalogueCopy(path(u"catalogue"_s), "https://other.es").read().isThere);

    EXPECT_FALSE(m_copy.store(entry(3, three), three.chopped(1)).isRight) << "a cut download";
    EXPECT_FALSE(m_copy.holds(entry(3, three)));
    expectStored(entry(3, three), three);
    EXPECT_EQ(m_copy.read().designs.size(), 2) << "a download counts with the list only";
    write(onlyFolder() + u"/.moltiva-.half"_s, "half");
    write(path(u"outside.json"_s), "mine");
    QFile::link(path(u"outside.json"_s), onlyFolder() + u"/link.json"_s);
    EXPECT_EQ(m_copy.replace({u"v2"_s, copied, {entry(3, three), entry(4, one + ' ')}, {}}),
              QString());
    contents = m_copy.read();
    EXPECT_EQ(contents.designs.size(), 1);
    EXPECT_TRUE(contents.list.version.isEmpty()) << "a file was not stored: all is asked for again";
    EXPECT_EQ(contents.damaged, 0);
    EXPECT_EQ(files().size(), 2) << files().join(u' ').toStdString();
    EXPECT_TRUE(QFile::exists(path(u"outside.json"_s)));
}

TEST_F(CatalogueCopyTest, damageIsToldAndNotShown)
{
    const QByteArray one = design(1), two = design(2), list = "[]";
    for (const QByteArray& bytes : {one, two})
        expectStored(entry(bytes == one ? 1 : 2, bytes), bytes);
    expectStored(entry(3, list), list);
    const CatalogueList all{u"v"_s, {}, {entry(1, one), entry(2, two), entry(3, list)}, {}};
    m_copy.replace(all);
    EXPECT_EQ(m_copy.read().unreadable, 1) << "a whole file that is no design";
    const QString first = onlyFolder() + u'/' + entry(1, one).sha256 + u".json"_s;

    QByteArray changed = one;
    changed[5] = 'X';
    write(first, changed);
    const CatalogueCopy::Contents damaged = m_copy.read();
    EXPECT_EQ(damaged.damaged, 1);
    EXPECT_EQ(damaged.designs.size(), 1);
    EXPECT_TRUE(damaged.list.version.isEmpty());
    EXPECT_FALSE(m_copy.holds(entry(1, one)));

    write(path(u"elsewhere"_s), one);
    QFile::remove(first);
    QFile::link(path(u"elsewhere"_s), first);
    EXPECT_EQ(m_copy.read().damaged, 1) << "a link is not followed";
    expectStored(entry(1, one), one);
    EXPECT_EQ(m_copy.read().damaged, 0);
    EXPECT_FALSE(QFileInfo(first).isSymLink());

    for (const QByteArray& bad : {QByteArray("{"), QByteArray(5 << 20, '['), QByteArray("{}")}) {
        write(onlyFolder() + u"/list.json"_s, bad);
        EXPECT_FALSE(m_copy.read().isThere);
        EXPECT_EQ(m_copy.read().damaged, 1);
    }
    const QString folder = onlyFolder();
    QDir(folder).removeRecursively();
    QDir().mkpath(path(u"foreign"_s));
    QFile::link(path(u"foreign"_s), folder);
    expectStored(entry(1, one), one);
    EXPECT_TRUE(QDir(path(u"foreign"_s)).isEmpty()) << "nothing is written through a link";
}

TEST_F(CatalogueCopyTest, aHostileListIsReducedToWhatACopyTakes)
{
    const CatalogueEntry good = entry(1, "{}");
    CatalogueList list{QString(10'000, u'v'), {}, {good}, {}};
    for (const QString& name :
         {u"../x.json"_s, u"a.json"_s, u"/etc/passwd"_s, QString(),
          u"../00000000-0000-4000-8000-000000000007.json"_s,
          u"{00000000-0000-4000-8000-000000000007}.json"_s,
          u"00000000-0000-4000-8000-000000000007.jsonx"_s,
          u"00000000-0000-4000-8000-000000000007/json"_s, nameOf(7) + QChar(u'\0'),
          u"00000000000040008000000000000007/../.json"_s, nameOf(1).toUpper()}) {
        CatalogueEntry bad = good;
        bad.fileName = name;
        list.entries.append(bad);
    }
    for (const QString& digest : {QString(), u"../../x"_s, QString(64, u'g'), QString(63, u'a')}) {
        CatalogueEntry bad = entry(8, "{}");
        bad.sha256 = digest;
        list.entries.append(bad);
    }
    for (const qint64 bytes : {qint64(-1), qint64(0)}) {
        CatalogueEntry bad = entry(9, "{}");
        bad.bytes = bytes;
        list.entries.append(bad);
    }
    list.withdrawn = {QUuid(), catalogueId(nameOf(1)), catalogueId(nameOf(5))};
    EXPECT_EQ(list.sanitize(), 0);
    EXPECT_EQ(list.entries, QList{good});
    EXPECT_EQ(list.version.size(), 200);
    EXPECT_EQ(list.withdrawn, QSet{catalogueId(nameOf(5))}) << "what is shared is not withdrawn";

    CatalogueEntry large = entry(10, "{}");
    large.bytes = std::numeric_limits<qint64>::max();
    list.entries.append(large);
    for (int i = 11; i < 21; ++i) {
        large = entry(i, "{}");
        large.bytes = 15 << 20;
        list.entries.append(large);
    }
    EXPECT_EQ(list.sanitize(), 7) << "64 MB";
    EXPECT_EQ(list.entries.size(), 5);
    for (int i = 100; i < 100'100; ++i)
        list.entries.append(entry(i, "{}"));
    EXPECT_EQ(list.sanitize(), 100'005 - 2000);
}

TEST_F(CatalogueCopyTest, whatCannotBeWrittenIsToldAndTheCopyStays)
{
    const QByteArray one = design(1), two = design(2);
    expectStored(entry(1, one), one);
    m_copy.replace({u"v1"_s, {}, {entry(1, one)}, {}});
    QDir(onlyFolder()).mkdir(entry(2, two).sha256 + u".json"_s);
    const auto stored = m_copy.store(entry(2, two), two);
    EXPECT_TRUE(stored.isRight && !stored.problem.isEmpty());
    EXPECT_EQ(m_copy.read().list.version, u"v1"_s);
    EXPECT_FALSE(plainFile(onlyFolder(), 1 << 20)) << "a folder is no file";
    write(path(u"large"_s), "1234");
    EXPECT_FALSE(plainFile(path(u"large"_s), 3));
    EXPECT_EQ(plainFile(path(u"large"_s), 4), "1234");
}
