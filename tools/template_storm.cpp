// Runs children that copy a team's catalogue of designs from a service, while designs are shared,
// changed and withdrawn. Kills each child while it copies. What is on the disk then must be a whole
// copy: every file that its list names, each as the service has once had it, and if the list has a
// version, exactly what the service had in that version. At the end, a child that is left alone
// must have all, and nothing else may be in the folder.
//
//     template_storm SERVICE_PROGRAM FOLDER KILLS
//         runs children and judges the copies
//     template_storm --child FOLDER ADDRESS [calm]
//         copies without end, or once

#include "account/AccountError.h"
#include "platform/Workers.h"
#include "studio/templates/SharedTemplates.h"
#include "tools/Storm.h"

#include <QElapsedTimer>

#include <map>
#include <set>

using namespace Qt::StringLiterals;

namespace {

using Files = std::map<QString, QString>;    // digests by file name

QString copiesOf(const QDir& folder)
{
    return folder.filePath(u"catalogue"_s);
}

int runChild(const QDir& folder, const QUrl& address, bool isCalm)
{
    PreferencesStore preferences(folder.filePath(u"moltiva.sqlite"_s));
    AccountAPI api(configurationOf(address), preferences);
    AccountSession account(api, withoutBrowser());
    SharedTemplates shared(api, account, folder.path());
    while (true) {
        say(u"copying"_s);
        QCoro::waitFor(shared.refreshed());
        say(u"copied"_s);
        if (isCalm)
            break;
    }
    workers().waitForDone();
    return shared.state() == CatalogueState::upToDate ? 0 : 1;
}

// Runs a request that may fail without an answer on a busy machine. Must not throw:
// QCoro::waitFor() would wait for ever.
template <typename Result>
QCoro::Task<std::optional<Result>> answered(QCoro::Task<Result> asking)
{
    std::optional<Result> result;
    try {
        result = co_await std::move(asking);
    } catch (const std::exception& error) {
        complain("no answer:", readable(error));
    }
    co_return result;
}

QCoro::Task<bool> obeyed(QCoro::Task<> asking)
{
    try {
        co_await std::move(asking);
    } catch (const std::exception& error) {
        co_return complain("refused:", readable(error));
    }
    co_return true;
}

// Shares, changes and withdraws designs, and knows all that the service has had.
class Administrator {
public:
    Administrator(const QDir& folder, const QUrl& address)
        : m_preferences(folder.filePath(u"moltiva.sqlite"_s)),
          m_api(configurationOf(address), m_preferences)
    {
    }

    bool change()
    {
        const QString name =
            catalogueFileName(QUuid::createUuidV5(QUuid(), QString::number(below(60))));
        const bool isDone = tryUntilDone([&] {
            return below(5) == 0
                       ? QCoro::waitFor(obeyed(m_api.deleteTemplate(name)))
                       : QCoro::waitFor(obeyed(m_api.uploadTemplate(name, design(), std::nullopt)));
        });
        return isDone && note();
    }
    const Files& now() const { return m_now; }
    const QByteArray& origin() const { return m_api.origin(); }
    // Why the list cannot be a copy; empty if it can.
    QString objection(const CatalogueList& list) const
    {
        Files files;
        for (const CatalogueEntry& entry : list.entries) {
            files[entry.fileName] = entry.sha256;
            if (!m_all.contains({entry.fileName, entry.sha256}))
                return u"the service never had "_s + entry.fileName;
        }
        const auto known = m_states.find(list.version);
        if (!list.version.isEmpty() && (known == m_states.end() || known->second != files))
            return u"not what the service had in version "_s + list.version;
        return {};
    }

private:
    static QByteArray design()
    {
        return R"({"name":")" + QByteArray::number(below(1'000'000)) + R"(","unread":")" +
               QByteArray(below(100'000), 'x') + R"(","textLayers":[]})";
    }
    bool note()
    {
        std::optional<TemplateManifest> manifest;
        tryUntilDone([&] {
            manifest = QCoro::waitFor(answered(m_api.templateManifest({})));
            return manifest.has_value();
        });
        if (!manifest || !manifest->templates)
            return false;
        m_now.clear();
        for (const SharedTemplateFile& file : *manifest->templates) {
            m_now[file.fileName] = file.sha256;
            m_all.insert({file.fileName, file.sha256});
        }
        m_states[manifest->version] = m_now;
        return true;
    }

    PreferencesStore m_preferences;
    AccountAPI m_api;
    Files m_now;
    std::set<std::pair<QString, QString>> m_all;
    std::map<QString, Files> m_states;    // by version
};

class TemplateStorm {
public:
    TemplateStorm(const QDir& folder, const QString& address)
        : m_folder(folder), m_address(address), m_administrator(folder, QUrl(address)),
          m_copy(copiesOf(folder), m_administrator.origin())
    {
    }

    int run(int kills)
    {
        for (int i = 0; i < 40; ++i) {
            if (!m_administrator.change())
                return 1;
        }
        copyAll();
        while (m_kills < kills && m_faults == 0) {
            killOne();
            judge();
        }
        copyAll();
        std::set<QString> digests;
        Files files;
        for (const CatalogueEntry& entry : m_copy.read().list.entries) {
            files[entry.fileName] = entry.sha256;
            digests.insert(entry.sha256);
        }
        if (files != m_administrator.now())
            fault(u"the last copy is not what the service has"_s);
        const QDir copies(copiesOf(m_folder));
        const QDir place(
            copies.filePath(copies.entryList(QDir::AllDirs | QDir::NoDotAndDotDot).value(0)));
        const auto left = place.entryList(QDir::Files | QDir::Hidden).size();
        if (left != qsizetype(digests.size()) + 1)
            fault(u"%1 files are left over"_s.arg(left - qsizetype(digests.size()) - 1));
        say(u"%1 kills while copying, %2 others; %3 copies judged, %4 changed since the one "
            u"before; "
            "%5 faults"_s.arg(m_kills)
                .arg(m_idleKills)
                .arg(m_judged)
                .arg(m_advanced)
                .arg(m_faults));
        return m_faults == 0 ? 0 : 1;
    }

private:
    // Runs a child until it has copied the catalogue.
    void copyAll()
    {
        QProcess child;
        start(child, {u"calm"_s});
        const bool isBegun = awaitLine(child, "copying");
        QElapsedTimer watch;
        watch.start();
        if (!isBegun || !awaitLine(child, "copied"))
            fault(u"a child that was left alone did not copy"_s);
        m_wholeTime = std::max<int>(m_wholeTime, int(watch.elapsed()));
        finish(child);
        if (child.exitStatus() != QProcess::NormalExit || child.exitCode() != 0)
            fault(u"a child that was left alone could not copy all"_s);
        judge();
    }

    void killOne()
    {
        for (int changes = 1 + below(20); changes > 0; --changes)
            m_administrator.change();
        QProcess child;
        start(child, {});
        if (!awaitLine(child, "copying"))
            return fault(u"a child did not begin to copy"_s);
        const bool isChanging = below(2) == 0;
        const QDeadlineTimer end(std::chrono::milliseconds(below(4 * m_wholeTime)));
        turnUntil([&] { return end.hasExpired() || (isChanging && !m_administrator.change()); });
        child.kill();
        finish(child);
        hear(child);
        ++(m_isCopying ? m_kills : m_idleKills);
    }

    void start(QProcess& child, const QStringList& how)
    {
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // Nobody waits for the leak checker of a child that is killed.
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"ASAN_OPTIONS"_s,
                           environment.value(u"ASAN_OPTIONS"_s) + u":detect_leaks=0"_s);
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(),
                    QStringList{u"--child"_s, m_folder.path(), m_address} + how);
    }
    static void finish(QProcess& child)
    {
        child.waitForFinished(int(std::chrono::milliseconds(longestWait).count()));
    }
    bool awaitLine(QProcess& child, const QByteArray& line)
    {
        return turnUntil([&] {
                   hear(child);
                   return m_heard == line || child.state() == QProcess::NotRunning;
               }) &&
               m_heard == line;
    }
    void hear(QProcess& child)
    {
        while (child.canReadLine()) {
            m_heard = child.readLine().trimmed();
            m_isCopying = m_heard == "copying";
        }
    }

    void judge()
    {
        const CatalogueCopy::Contents contents = m_copy.read();
        if (!contents.isThere && !m_hadCopy && contents.damaged == 0)
            return;
        m_hadCopy = true;
        ++m_judged;
        if (!contents.isThere)
            fault(u"the copy is gone"_s);
        if (contents.damaged > 0 || contents.unreadable > 0)
            fault(u"%1 files of the copy are damaged, %2 unreadable"_s.arg(contents.damaged)
                      .arg(contents.unreadable));
        if (const QString objection = m_administrator.objection(contents.list);
            !objection.isEmpty())
            fault(objection);
        m_advanced += contents.list.entries != std::exchange(m_last, contents.list.entries);
    }

    void fault(const QString& what)
    {
        ++m_faults;
        complain("FAULT:", what);
    }

    QDir m_folder;
    QString m_address;
    Administrator m_administrator;
    CatalogueCopy m_copy;
    QByteArray m_heard;
    bool m_isCopying = false, m_hadCopy = false;
    int m_wholeTime = 1;    // ms that copying took at most while nothing else went on
    QList<CatalogueEntry> m_last;
    int m_kills = 0, m_idleKills = 0, m_judged = 0, m_advanced = 0, m_faults = 0;
};

int usage()
{
    std::fputs("template_storm SERVICE_PROGRAM FOLDER KILLS\n", stderr);
    return 2;
}

}    // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList given = QCoreApplication::arguments().mid(1);
    if (given.value(0) == u"--child" && given.size() >= 3)
        return runChild(QDir(given[1]), QUrl(given[2]), given.value(3) == u"calm");
    if (given.size() != 3)
        return usage();
    const QDir folder(QDir(given[1]).absolutePath());
    folder.mkpath(u"service"_s);
    const StormService service(given[0], folder);
    const QStringList naming{u"--data"_s, folder.filePath(u"service"_s), u"--name-administrator"_s,
                             u"tormenta@ejemplo.es"_s};
    if (!service.isReady() || QProcess::execute(given[0], naming) != 0)
        return 1;
    TemplateStorm storm(folder, service.address());
    const int result = storm.run(given[2].toInt());
    workers().waitForDone();
    return result;
}
