#include "platform/PreferencesStore.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(PreferencesStore, valuesOutliveTheProgram)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"deep/preferences.sqlite"_qs);
    const QByteArray zeros("a\0b", 3);
    {
        PreferencesStore store(file);
        ASSERT_TRUE(store.isOpen());
        EXPECT_FALSE(store.value(u"batch"_qs));
        EXPECT_TRUE(store.setValue(u"batch"_qs, "old"));
        EXPECT_TRUE(store.setValue(u"batch"_qs, zeros));
        EXPECT_TRUE(store.setValue(u"empty"_qs, QByteArray()));
        EXPECT_TRUE(store.setValue(u"gone"_qs, "x"));
        EXPECT_TRUE(store.remove(u"gone"_qs));
    }
    const PreferencesStore store(file);
    EXPECT_EQ(store.value(u"batch"_qs), zeros);
    EXPECT_EQ(store.value(u"empty"_qs), QByteArray(""));
    EXPECT_FALSE(store.value(u"gone"_qs));
}

TEST(PreferencesStore, isReadableByItsUserOnlyAndSoIsItsLog)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"preferences.sqlite"_qs);
    PreferencesStore store(file);
    store.setValue(u"key"_qs, "secret");
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther;
    EXPECT_FALSE(QFile::permissions(file) & others);
    ASSERT_TRUE(QFile::exists(file + u"-wal"_qs));
    EXPECT_FALSE(QFile::permissions(file + u"-wal"_qs) & others);
}

TEST(PreferencesStore, theLogDoesNotGrowWithoutEnd)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"preferences.sqlite"_qs);
    PreferencesStore store(file);
    for (int i = 0; i < 300; ++i)
        ASSERT_TRUE(store.setValue(u"batch"_qs, QByteArray(1'000'000 + i, 'x')));
    EXPECT_LT(QFile(file + u"-wal"_qs).size(), 200'000'000);
    EXPECT_EQ(store.value(u"batch"_qs)->size(), 1'000'299);
}

TEST(PreferencesStore, aFileThatIsNoDatabaseIsPutAsideNotOverwritten)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"preferences.sqlite"_qs));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QByteArray text("these are somebody's notes, not a database; longer than a header\n");
    file.write(text.repeated(20));
    file.close();
    {
        PreferencesStore store(file.fileName());
        EXPECT_TRUE(store.setValue(u"key"_qs, "value"));
        EXPECT_EQ(store.value(u"key"_qs), "value");
    }
    QFile aside(file.fileName() + u".damaged"_qs);
    ASSERT_TRUE(aside.open(QIODevice::ReadOnly));
    EXPECT_TRUE(aside.readAll().startsWith(text));
}

TEST(PreferencesStore, aTransactionIsStoredAsAWholeOrNotAtAll)
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"preferences.sqlite"_qs);
    PreferencesStore store(file), other(file);
    store.setValue(u"a.1"_qs, "one");
    const auto both = [&](bool isWanted) {
        return store.transaction(
            [&, isWanted] {
                store.setValue(u"a.2"_qs, "two");
                store.remove(u"a.1"_qs);
                return isWanted;
            },
            PreferencesStore::Durability::onDisk);
    };
    EXPECT_FALSE(both(false));
    EXPECT_EQ(other.keysBeginningWith(u"a."_qs), QStringList{u"a.1"_qs});
    EXPECT_TRUE(both(true));
    store.setValue(u"b"_qs, "");
    EXPECT_EQ(other.keysBeginningWith(u"a."_qs), QStringList{u"a.2"_qs});

    PreferencesStore nowhere(u"/proc/none/p.sqlite"_qs);
    EXPECT_FALSE(nowhere.transaction([] { return true; }));
}
