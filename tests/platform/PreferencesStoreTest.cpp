#include "platform/PreferencesStore.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
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

TEST(PreferencesStore, whatCannotBeUsedIsPutAsideAndTold)
{
    const auto fill = [](const QString& path) {
        PreferencesStore store(path);
        EXPECT_EQ(store.takeProblem(), QString());
        for (int i = 0; i < 20; ++i)
            store.setValue(u"key %1"_qs.arg(i), QByteArray(100'000, 'x'));
    };
    const auto overwrite = [](const QString& path, qint64 from, qint64 count) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(from));
        file.write(QByteArray(count, '\x5a'));
    };
    const auto rename = [](const QString& path) {
        {
            QSqlDatabase store = QSqlDatabase::addDatabase(u"QSQLITE"_qs, u"rename"_qs);
            store.setDatabaseName(path);
            EXPECT_TRUE(store.open());
            QSqlQuery(store).exec(u"ALTER TABLE preference RENAME COLUMN value TO worth"_qs);
        }
        QSqlDatabase::removeDatabase(u"rename"_qs);
    };
    struct Row {
        const char* label;
        std::function<void(const QString& path)> spoil;
        QString cause;
    };
    const QString damaged = u"el archivo está dañado"_qs;
    const Row rows[] = {
        {"its tree", [&](const QString& path) { overwrite(path, 65536, 400); }, damaged},
        {"its schema's page", [&](const QString& path) { overwrite(path, 100, 3000); }, damaged},
        {"cut short", [&](const QString& path) { QFile::resize(path, 70'000); }, damaged},
        {"other columns", rename, u"el archivo no es de esta versión de Moltiva"_qs},
        {"a folder",
         [](const QString& path) {
             QFile::remove(path);
             QDir().mkpath(path + u"/inside"_qs);
         },
         u"en su lugar hay una carpeta"_qs},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"p.sqlite"_qs), aside = path + u".damaged"_qs;
        fill(path);
        row.spoil(path);
        PreferencesStore store(path);
        EXPECT_TRUE(store.isOpen());
        const QString problem = store.takeProblem();
        EXPECT_TRUE(problem.contains(row.cause)) << qPrintable(problem);
        EXPECT_TRUE(problem.contains(aside));
        EXPECT_TRUE(QFileInfo::exists(aside));
        EXPECT_FALSE(store.value(u"key 1"_qs));
        EXPECT_TRUE(store.setValue(u"key 1"_qs, "new"));
    }
    PreferencesStore nowhere(u"/proc/none/p.sqlite"_qs);
    EXPECT_TRUE(nowhere.takeProblem().contains(u"no se puede escribir en «/proc/none»"_qs));
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
