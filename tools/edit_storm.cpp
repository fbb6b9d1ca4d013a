// Runs a child that edits a stored batch without pause, and kills it at random moments. After each
// restart, the batch must be as it was after the last edit that the child reported, or at most one
// edit before or after that.
//
//     edit_storm FOLDER KILLS     runs children and judges the batch
//     edit_storm FOLDER           edits until it is killed

#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/StudioSession.h"

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QThread>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr int itemCount = 40, editKinds = 5;

// The numbers of the latest edits, read from a batch. Edit n is of the kind n % editKinds and
// writes n into the batch, at a place that belongs to this kind.
struct Marks {
    std::array<int, editKinds> numbers{};
    bool areEverywhere = true;    // whether edits of all items reached every item

    int last() const { return *std::ranges::max_element(numbers); }
    // Whether the last edit and the ones just before it, one of each kind, are in the batch.
    bool areWhole() const
    {
        for (int number = last(); number > std::max(0, last() - editKinds); --number) {
            if (numbers[std::size_t(number % editKinds)] != number)
                return false;
        }
        return areEverywhere;
    }
};

// `unit` turns the number of an edit into a small fraction. `buttonLeft` is the x of the default
// frame of the call to action.
constexpr double unit = 1e-6, buttonLeft = 0.31;

Marks marksOf(const Batch& batch)
{
    Marks marks;
    if (batch.items.isEmpty())
        return marks;
    const PublicationItem& item = batch.items.first();
    marks.numbers = {qRound((item.layers[0].fontScale - 1) / unit), batch.objective.toInt(),
                     item.layers[1].text.toInt(),
                     qRound((item.layers[3].frame.x - buttonLeft) / unit),
                     qRound((item.placement.zoom - 1) / unit)};
    marks.areEverywhere = std::ranges::all_of(batch.items, [&](const PublicationItem& other) {
        return other.layers[0].fontScale == item.layers[0].fontScale &&
               other.layers[3].frame == item.layers[3].frame;
    });
    return marks;
}

void edit(StudioSession& session, int number)
{
    PublicationItem item = *session.batch().currentItem();
    switch (number % editKinds) {
    case 0:
        item.layers[0].fontScale = 1 + number * unit;
        session.editLayer(item.layers[0]);
        break;
    case 1:
        session.setObjective(QString::number(number));
        break;
    case 2:
        session.setText(CopySlot::subtitle, QString::number(number));
        break;
    case 3:
        session.beginCanvasHistoryEdit();
        item.layers[3].frame.x = buttonLeft + number * unit;
        session.commitCanvasItem(item);
        session.endCanvasHistoryEdit(item.layers[3].id);
        break;
    default:
        item.placement.zoom = 1 + number * unit;
        session.setCurrentItem(item);
    }
}

void say(const char* word, int number)
{
    std::printf("%s %d\n", word, number);
    std::fflush(stdout);
}

int storm(const QDir& folder)
{
    PreferencesStore preferences(folder.filePath(u"moltiva.sqlite"_s));
    const auto photos = std::make_shared<PhotoCache>(folder.filePath(u"thumbnails"_s));
    StudioSession session(photos, preferences);
    session.restoreWorkspaceIfNeeded();
    while (!session.didRestoreWorkspace())
        QGuiApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const Marks found = marksOf(session.batch());
    say(found.areWhole() ? "found" : "torn", found.last());
    if (session.batch().items.isEmpty()) {
        session.load({QUrl::fromLocalFile(folder.filePath(u"photos"_s))});
        while (session.isImporting())
            QGuiApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    session.selectAll();
    for (int number = found.last() + 1;; ++number) {
        edit(session, number);
        say("done", number);
        QGuiApplication::processEvents();
    }
}

bool paintPhotos(const QDir& folder)
{
    folder.mkpath(u"photos"_s);
    for (int i = 0; i < itemCount; ++i) {
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(QColor::fromHsv(9 * i, 200, 200));
        if (!image.save(folder.filePath(u"photos/%1.png"_s.arg(i))))
            return false;
    }
    return true;
}

int judge(const QDir& folder, int kills)
{
    if (!paintPhotos(folder))
        return 2;
    int done = 0, failures = 0, lost = 0, restarts = 0;
    for (int kill = 0; kill <= kills; ++kill) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(), {folder.path()});
        // Waits for a line of output. In the first run, waits for the first edit, so that the
        // import is complete.
        const QByteArray begun = kill == 0 ? "done" : "\n";
        QByteArray output;
        while (!output.contains(begun) && child.waitForReadyRead(60000))
            output += child.readAllStandardOutput();
        QThread::msleep(QRandomGenerator::global()->bounded(1, 120));
        child.kill();
        child.waitForFinished();
        output += child.readAllStandardOutput();
        QList<QByteArray> lines = output.split('\n');
        lines.removeLast();    // an incomplete line, or empty
        for (const QByteArray& line : std::as_const(lines)) {
            const QList<QByteArray> words = line.split(' ');
            const int number = words[1].toInt();
            if (words[0] == "done") {
                done = number;
                continue;
            }
            ++restarts;
            lost += number < done;
            if (words[0] == "torn" || number < done - 1 || number > done + 1) {
                std::printf("found %d after %d was done: %s\n", number, done, words[0].constData());
                ++failures;
            }
            done = number;
        }
    }
    std::printf("%d starts, %d edits: %d one edit behind, %d wrong\n", restarts, done, lost,
                failures);
    return failures == 0 && restarts > kills && done > kills ? 0 : 1;
}

}    // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() == 2)
        return storm(QDir(arguments[1]));
    if (arguments.size() == 3 && arguments[2].toInt() > 0)
        return judge(QDir(arguments[1]), arguments[2].toInt());
    std::fprintf(stderr, "edit_storm FOLDER [KILLS]\n");
    return 2;
}
