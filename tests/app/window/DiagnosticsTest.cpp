#include "app/window/Diagnostics.h"
#include "tests/app/Events.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QString written(const QString& path, const QByteArray& text)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

}    // namespace

TEST(Diagnostics, holdVersionsSelfTestAndLogButNoNames)
{
    const QTemporaryDir folder;
    const QString log =
        written(folder.filePath(u"log"_s), "info moltiva.work: exporting /home/ana/gato.jpg\n");
    const QString program = written(folder.filePath(u"program"_s),
                                    "#!/bin/sh\necho \"$1: JPEG bien, de ana@ejemplo.es\"\n");
    Diagnostics diagnostics(program, log);
    QSignalSpy gathered(&diagnostics, &Diagnostics::gathered);
    diagnostics.gather();
    diagnostics.gather();
    ASSERT_TRUE(gathered.wait(30000));
    const QString text = gathered.first().first().toString();
    for (const char* expected : {"Moltiva ", "\nQt 6", "--self-test: JPEG bien, de <email>",
                                 "info moltiva.work: exporting <path>"})
        EXPECT_TRUE(text.contains(QLatin1StringView(expected))) << expected << qPrintable(text);
    EXPECT_FALSE(text.contains(u"ana"_s));

    Diagnostics without(folder.filePath(u"missing"_s), log);
    QSignalSpy alsoGathered(&without, &Diagnostics::gathered);
    without.gather();
    ASSERT_TRUE(alsoGathered.wait(30000));
    EXPECT_TRUE(alsoGathered.first().first().toString().contains(u"No ha respondido."_s));
    EXPECT_EQ(gathered.size(), 1);
}
