#include "cli/shared/PaidRenders.h"

#include "platform/PreferencesStore.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(PaidRenders, manyCommandsAddToWhateverIsThere)
{
    const QTemporaryDir folder;
    PreferencesStore one(folder.filePath(u"p.sqlite"_s)), other(folder.filePath(u"p.sqlite"_s));
    const QString account = u"local/1"_s;
    const QByteArray hostile = QByteArray("no\0name\n\xff", 9) + QByteArray(5000, 'x');
    one.setValue(u"moltiva.paidRenders.local/1"_s, hostile);
    one.setValue(u"entry"_s, "open");
    QList<RenderedOutput> many(50'000);
    for (int i = 0; i < many.size(); ++i) {
        many[i].fingerprint = u"fingerprint-%1"_s.arg(i);
        many[i].pixels = u"pixels-%1"_s.arg(i);
    }
    const auto strike = [&one] { return one.remove(u"entry"_s); };
    const auto nothing = [] { return true; };
    EXPECT_TRUE(addPaidRenders(one, account, many, strike));
    EXPECT_TRUE(addPaidRenders(other, account, {{{}, {}, u"a"_s, u"b"_s}}, nothing));
    EXPECT_TRUE(addPaidRenders(one, account, many, nothing));
    EXPECT_FALSE(one.contains(u"entry"_s));
    const QSet<QString> paid = paidRenders(one, account);
    EXPECT_TRUE(paid.contains({u"pixels-49999"_s, u"fingerprint-0"_s, u"a"_s, u"b"_s}));
    EXPECT_TRUE(paidRenders(one, u"local/2"_s).isEmpty());
    const QByteArray stored = *one.value(u"moltiva.paidRenders.local/1"_s);
    EXPECT_TRUE(stored.startsWith(hostile));
    EXPECT_EQ(stored.count("pixels-49999\n"), 1);
}
