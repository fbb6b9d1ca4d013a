#include "app/desktop/XdgLinkHandler.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

class XdgLinkHandlerTest : public testing::Test {
protected:
    QString at(const QString& path) const { return home.filePath(path); }
    void write(const QString& path, const QString& text) const
    {
        QDir().mkpath(QFileInfo(at(path)).path());
        QFile file(at(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    }
    QString text(const QString& path) const
    {
        QFile file(at(path));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : u"-"_s;
    }
    QString program(const QString& path) const
    {
        write(path, u"#!/bin/sh\n"_s);
        QFile(at(path)).setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        return at(path);
    }
    // An entry of the package, as its database of types knows it.
    void install(const QString& entry, const QString& exec) const
    {
        write(u"system/applications/"_s + entry,
              u"[Desktop Entry]\nExec=%1 %U\nMimeType=image/png;x-scheme-handler/moltiva;\n"_s.arg(
                  exec));
        write(u"system/applications/mimeinfo.cache"_s,
              u"[MIME Cache]\nx-scheme-handler/moltiva=%1;\n"_s.arg(entry));
    }

    const QTemporaryDir home;
    const XdgFolders folders{.data = {at(u"data"_s), at(u"system"_s)},
                             .config = {at(u"config"_s)},
                             .path = {at(u"bin"_s)},
                             .desktops = {u"kde"_s}};
    const QString ownFile = u"data/applications/moltiva-user.desktop"_s;
    const QString chosen = u"config/mimeapps.list"_s;
};

}    // namespace

TEST_F(XdgLinkHandlerTest, theUsersOwnEntryIsWrittenOnlyWhereNoInstalledOneServes)
{
    const QString own = program(u"Mis \"copias\" $HOME/50% `x` \\ y/moltiva"_s);
    registerLinkHandler(folders, own);
    EXPECT_EQ(linkHandler(folders), u"moltiva-user.desktop"_s) << "its program is found again";
    EXPECT_TRUE(text(ownFile).contains(
        u"/Mis \\\\\"copias\\\\\" \\\\$HOME/50%% \\\\`x\\\\` \\\\\\\\ y/moltiva\" %u\n"_s))
        << qPrintable(text(ownFile));
    EXPECT_EQ(text(chosen), u"[Default Applications]\n"
                            "x-scheme-handler/moltiva=moltiva-user.desktop;\n"_s);

    // The program has moved.
    QFile::remove(own);
    EXPECT_EQ(linkHandler(folders), QString());
    const QString moved = program(u"otra/moltiva"_s);
    registerLinkHandler(folders, moved);
    EXPECT_TRUE(text(ownFile).contains(u"Exec=%1 %u\n"_s.arg(moved)));

    // Another copy hands links over to the window that is open, so it may stay.
    const QString before = text(ownFile);
    registerLinkHandler(folders, program(u"tercera/moltiva"_s));
    EXPECT_EQ(text(ownFile), before);

    // The package comes, and the user's own entry goes, though its program is still there.
    install(u"moltiva.desktop"_s, u"moltiva"_s);
    const QString packaged = program(u"bin/moltiva"_s);
    registerLinkHandler(folders, packaged);
    EXPECT_EQ(linkHandler(folders), u"moltiva.desktop"_s);
    EXPECT_FALSE(QFile::exists(at(ownFile)));
    EXPECT_EQ(text(chosen), u"[Default Applications]\n"
                            "x-scheme-handler/moltiva=moltiva.desktop;\n"_s);
}

TEST_F(XdgLinkHandlerTest, nothingIsWrittenWhileThePackageServes)
{
    install(u"moltiva.desktop"_s, u"moltiva"_s);
    registerLinkHandler(folders, program(u"bin/moltiva"_s));
    EXPECT_FALSE(QFile::exists(at(ownFile)) || QFile::exists(at(chosen)));

    // The database of types was not brought up to date.
    QFile::remove(at(u"system/applications/mimeinfo.cache"_s));
    registerLinkHandler(folders, at(u"bin/moltiva"_s));
    EXPECT_FALSE(QFile::exists(at(ownFile)));
    EXPECT_EQ(linkHandler(folders), u"moltiva.desktop"_s);
}

TEST_F(XdgLinkHandlerTest, whatElseTheUserHasChosenStaysAsItIs)
{
    program(u"bin/otro"_s);
    install(u"otro.desktop"_s, u"otro"_s);
    const QString before = u"# mío\n[Added Associations]\nimage/png=gimp.desktop;\n\n"
                           "[Default Applications]\r\ntext/plain=ed.desktop\n"
                           "x-scheme-handler/moltiva=otro.desktop;\n"
                           "x-scheme-handler/http=nav.desktop"_s;
    write(u"dotfiles/list"_s, before);
    QDir().mkpath(at(u"config"_s));
    ASSERT_TRUE(QFile::link(at(u"dotfiles/list"_s), at(chosen)));
    EXPECT_EQ(linkHandler(folders), u"otro.desktop"_s);

    registerLinkHandler(folders, program(u"copia/moltiva"_s));
    EXPECT_EQ(linkHandler(folders), u"moltiva-user.desktop"_s);
    QString after = before + u'\n';
    after.replace(u"=otro.desktop;"_s, u"=moltiva-user.desktop;otro.desktop;"_s);
    EXPECT_EQ(text(u"dotfiles/list"_s), after);
    EXPECT_TRUE(QFileInfo(at(chosen)).isSymLink());

    // A choice for one desktop counts there before the one for all.
    write(u"config/kde-mimeapps.list"_s,
          u"[Default Applications]\nx-scheme-handler/moltiva=otro.desktop\n"_s);
    EXPECT_EQ(linkHandler(folders), u"otro.desktop"_s);
}

TEST_F(XdgLinkHandlerTest, aListThatCannotBeReadIsLeftAlone)
{
    const QString huge(2 << 20, u'#');
    write(chosen, huge);
    registerLinkHandler(folders, program(u"copia/moltiva"_s));
    EXPECT_EQ(text(chosen), huge);
}
