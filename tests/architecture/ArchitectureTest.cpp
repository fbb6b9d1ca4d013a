#include <QDirIterator>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

// Checks the dependencies between folders that CONTRIBUTING.md shows. Linking does not check them:
// a forbidden header whose symbols stay unused still builds.

using namespace Qt::StringLiterals;

namespace {

struct Room {
    QString folder;
    QStringList mayUse;
    bool widgets = false;    // may include QtWidgets
};

const QList<Room>& rooms()
{
    static const QStringList below{u"platform"_qs, u"platform/photo"_qs, u"model"_qs,
                                   u"account"_qs,  u"canvas"_qs,         u"templates"_qs};
    static const QStringList writing =
        below + QStringList{u"copygen/text"_qs, u"copygen"_qs, u"studio/batch"_qs};
    static const QStringList batch = below + QStringList{u"studio/batch"_qs};
    static const QStringList session =
        writing + QStringList{u"studio/sheet"_qs,   u"studio/export"_qs,    u"studio/copy"_qs,
                              u"studio/publish"_qs, u"studio/templates"_qs, u"studio"_qs};
    static const QStringList ofService{u"service"_qs, u"service/store"_qs, u"account"_qs,
                                       u"model"_qs,   u"platform"_qs,      u"copygen/text"_qs};
    // Each list from here to `part` contains the list before it.
    static const QStringList looks{u"platform"_qs, u"model"_qs, u"account"_qs, u"canvas"_qs,
                                   u"app/theme"_qs};
    static const QStringList controls = looks + QStringList{u"app/controls"_qs};
    static const QStringList fields = controls + QStringList{u"app/controls/fields"_qs};
    static const QStringList popovers = fields + QStringList{u"app/controls/popovers"_qs};
    static const QStringList part =
        popovers + session +
        QStringList{u"app/forms"_qs, u"app/desktop"_qs, u"canvas/interaction"_qs};
    static const QStringList parts{u"app/batch"_qs,   u"app/stage"_qs,    u"app/presets"_qs,
                                   u"app/layers"_qs,  u"app/export"_qs,   u"app/copy"_qs,
                                   u"app/publish"_qs, u"app/settings"_qs, u"app/account"_qs};
    static const QStringList everything =
        part + parts +
        QStringList{u"app/window"_qs, u"cli"_qs, u"cli/shared"_qs, u"tests/support"_qs};
    static const QList<Room> table{
        {u"platform"_qs, {}},
        {u"platform/photo"_qs, {u"platform"_qs}},
        {u"model"_qs, {u"platform"_qs}},
        {u"account"_qs, {u"model"_qs, u"platform"_qs, u"platform/photo"_qs}},
        {u"canvas"_qs, {u"model"_qs, u"platform"_qs, u"platform/photo"_qs}},
        {u"canvas/interaction"_qs, {u"canvas"_qs, u"model"_qs, u"platform"_qs}, true},
        {u"templates"_qs, {u"canvas"_qs, u"model"_qs, u"platform"_qs, u"platform/photo"_qs}},
        {u"copygen/text"_qs, {u"model"_qs}},
        {u"copygen"_qs,
         {u"copygen/text"_qs, u"account"_qs, u"model"_qs, u"platform"_qs, u"platform/photo"_qs}},
        {u"studio/batch"_qs, below},
        {u"studio/sheet"_qs, {u"studio/batch"_qs, u"model"_qs, u"platform"_qs}},
        {u"studio/export"_qs, batch},
        {u"studio/copy"_qs, writing},
        {u"studio/publish"_qs, writing + QStringList{u"studio/export"_qs}},
        {u"studio/templates"_qs, below},
        {u"studio"_qs, session},
        {u"cli/shared"_qs, session},
        {u"cli"_qs, session + QStringList{u"cli/shared"_qs}},
        {u"app/theme"_qs, {}, true},
        {u"app/controls"_qs, looks, true},
        {u"app/controls/fields"_qs, controls, true},
        {u"app/controls/popovers"_qs, fields, true},
        {u"app/forms"_qs, popovers, true},
        {u"app/desktop"_qs, popovers + session, true},
        {u"app/batch"_qs, part, true},
        {u"app/stage"_qs, part, true},
        {u"app/presets"_qs, part, true},
        {u"app/layers"_qs, part + QStringList{u"app/batch"_qs, u"app/presets"_qs}, true},
        {u"app/export"_qs, part + QStringList{u"app/batch"_qs}, true},
        {u"app/copy"_qs, part, true},
        {u"app/publish"_qs, part + QStringList{u"app/batch"_qs}, true},
        {u"app/settings"_qs, part, true},
        {u"app/account"_qs, part + QStringList{u"app/settings"_qs}, true},
        {u"app/window"_qs, part + parts + QStringList{u"cli"_qs, u"cli/shared"_qs}, true},
        {u"service/store"_qs, {u"account"_qs, u"model"_qs, u"platform"_qs, u"platform/photo"_qs}},
        {u"service"_qs, ofService},
        {u"service/api"_qs, ofService},
        {u"service/pages"_qs, ofService},
        {u"service/http"_qs, ofService},
        {u"service/program"_qs, ofService + QStringList{u"service/http"_qs}},
        {u"tests/support"_qs, {u"account"_qs, u"model"_qs, u"platform"_qs, u"studio/copy"_qs}},
        {u"tools"_qs, everything + QStringList{u"service"_qs}, true},
        {u"benchmarks"_qs, everything + QStringList{u"tools"_qs}, true},
    };
    return table;
}

// The room that `file` belongs to, the innermost if rooms are nested; empty if it belongs to none.
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

// A unit is a header together with its source file.
TEST(Architecture, noUnitNeedsItselfThroughOthers)
{
    const auto unitOf = [](const QString& file) { return file.section(u'.', 0, 0); };
    QHash<QString, QSet<QString>> needs;
    for (const Room& room : rooms()) {
        for (const Include& include : includesOf(room.folder)) {
            if (!roomOf(include.target).isEmpty() && unitOf(include.target) != unitOf(include.file))
                needs[unitOf(include.file)].insert(unitOf(include.target));
        }
    }
    ASSERT_GT(needs.size(), 200);
    // Removes units that need no remaining unit, or that no remaining unit needs: neither is in a
    // cycle.
    while (true) {
        QSet<QString> free, needed;
        for (const QSet<QString>& others : needs)
            needed.unite(others);
        for (auto unit = needs.cbegin(); unit != needs.cend(); ++unit) {
            const auto isLeft = [&](const QString& other) { return needs.contains(other); };
            if (std::ranges::none_of(unit.value(), isLeft) || !needed.contains(unit.key()))
                free.insert(unit.key());
        }
        if (free.isEmpty())
            break;
        needs.removeIf([&](const auto& unit) { return free.contains(unit.key()); });
    }
    EXPECT_TRUE(needs.isEmpty()) << "in circles: "
                                 << qPrintable(QStringList(needs.keys()).join(u' '));
}
