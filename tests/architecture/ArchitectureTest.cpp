#include <QDirIterator>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

// The arrows between the folders, as CONTRIBUTING.md shows them. Linking alone would not hold them:
// a forbidden header whose symbols stay unused still builds.

using namespace Qt::StringLiterals;

namespace {

struct Room {
    QString folder;
    QStringList mayUse;
    bool widgets = false;    // may it see QtWidgets?
};

const QList<Room>& rooms()
{
    static const QStringList belowApp{u"platform"_qs, u"model"_qs,     u"account"_qs,
                                      u"canvas"_qs,   u"templates"_qs, u"studio"_qs};
    static const QStringList aboveStudio{u"cli"_qs, u"canvas/interaction"_qs};
    static const QList<Room> table{
        {u"platform"_qs, {}},
        {u"model"_qs, {u"platform"_qs}},
        {u"account"_qs, {u"model"_qs, u"platform"_qs}},
        {u"canvas"_qs, {u"model"_qs, u"platform"_qs}},
        {u"canvas/interaction"_qs, {u"canvas"_qs, u"model"_qs, u"platform"_qs}, true},
        {u"templates"_qs, {u"canvas"_qs, u"model"_qs, u"platform"_qs}},
        {u"studio"_qs, {u"templates"_qs, u"canvas"_qs, u"account"_qs, u"model"_qs, u"platform"_qs}},
        {u"service"_qs, {u"account"_qs, u"model"_qs, u"platform"_qs}},
        {u"cli"_qs, belowApp},
        {u"app"_qs, belowApp + aboveStudio, true},
        {u"tests/support"_qs, {u"account"_qs, u"model"_qs, u"platform"_qs}},
        {u"tools"_qs, belowApp + aboveStudio + QStringList{u"app"_qs, u"tests/support"_qs}, true},
        {u"benchmarks"_qs, belowApp + aboveStudio + QStringList{u"app"_qs, u"tests/support"_qs},
         true},
    };
    return table;
}

// The room a file belongs to, the innermost where one lies inside another; empty for what is not
// ours.
QString roomOf(const QString& file)
{
    QString innermost;
    for (const Room& room : rooms()) {
        if (file.startsWith(room.folder + u'/') && room.folder.size() > innermost.size())
            innermost = room.folder;
    }
    return innermost;
}

struct Include {
    QString file, target;
};

QList<Include> includesOf(const QString& folder)
{
    static const QRegularExpression pattern(u"^\\s*#\\s*include\\s*[<\"]([^>\"]+)[>\"]"_qs,
                                            QRegularExpression::MultilineOption);
    const QDir top(QStringLiteral(MOLTIVA_SOURCE_DIR));
    QList<Include> found;
    QDirIterator files(top.filePath(folder), {u"*.h"_qs, u"*.cpp"_qs}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        if (roomOf(top.relativeFilePath(file.fileName())) != folder)
            continue;
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        auto matches = pattern.globalMatch(QString::fromUtf8(file.readAll()));
        while (matches.hasNext())
            found.append({top.relativeFilePath(file.fileName()), matches.next().captured(1)});
    }
    return found;
}

const QSet<QString>& widgetHeaders()
{
    static const QSet<QString> headers = [] {
        QSet<QString> names;
        const QDir folder(QStringLiteral(MOLTIVA_WIDGET_HEADERS));
        for (const QString& name : folder.entryList(QDir::Files))
            names.insert(name);
        return names;
    }();
    return headers;
}

bool isWidgetHeader(const QString& include)
{
    return include.startsWith(u"QtWidgets"_qs) || widgetHeaders().contains(include);
}

}    // namespace

TEST(Architecture, foldersIncludeOnlyWhatTheTableAllows)
{
    ASSERT_GT(widgetHeaders().size(), 100) << "Qt's widget headers were not found";

    for (const Room& room : rooms()) {
        for (const Include& include : includesOf(room.folder)) {
            const QString target = roomOf(include.target);
            if (!target.isEmpty()) {
                EXPECT_TRUE(target == room.folder || room.mayUse.contains(target))
                    << qPrintable(include.file) << " includes " << qPrintable(include.target);
            }
            EXPECT_TRUE(room.widgets || !isWidgetHeader(include.target))
                << qPrintable(include.file) << " may not use the widget header "
                << qPrintable(include.target);
        }
    }
}

TEST(Architecture, includesOfOursAreWrittenFromTheTopFolder)
{
    for (const Room& room : rooms()) {
        for (const Include& include : includesOf(room.folder)) {
            const QDir beside =
                QFileInfo(QDir(QStringLiteral(MOLTIVA_SOURCE_DIR)).filePath(include.file)).dir();
            EXPECT_FALSE(include.target.endsWith(u".h"_qs) && beside.exists(include.target))
                << qPrintable(include.file) << " includes " << qPrintable(include.target)
                << " without its folder, where this test cannot read it";
        }
    }
}

TEST(Architecture, noTwoFilesIncludeEachOther)
{
    QHash<QString, QSet<QString>> graph;
    for (const Room& room : rooms()) {
        for (const Include& include : includesOf(room.folder))
            graph[include.file].insert(include.target);
    }
    for (auto file = graph.cbegin(); file != graph.cend(); ++file) {
        for (const QString& target : file.value()) {
            EXPECT_FALSE(target != file.key() && graph.value(target).contains(file.key()))
                << qPrintable(file.key()) << " and " << qPrintable(target) << " include each other";
        }
    }
}
