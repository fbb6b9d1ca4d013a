// Compares the time of the session's export with that of only drawing and writing the same
// pictures. The two take turns. A scripted account that agrees at once pays for the session's
// exports.
//
//     export_session PHOTOS OUT [--rounds N]
//         with 0 rounds, only measures the memory of one export of the session

#include "account/CreditJournal.h"
#include "benchmarks/Measuring.h"
#include "benchmarks/PlainExport.h"
#include "platform/Memory.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/PhotoFolder.h"
#include "studio/StudioSession.h"
#include "studio/export/ExportPaths.h"
#include "tests/support/ScriptedAccount.h"

#include <QCommandLineParser>
#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

class PayingSession {
public:
    explicit PayingSession(const QString& folder)
        : m_preferences(folder + u"/a.sqlite"_s), m_account(m_preferences, Scripted::signedIn),
          m_journal(m_account.session(), m_preferences, folder + u"/runs"_s),
          m_session(std::make_shared<PhotoCache>(folder + u"/thumbnails"_s), m_preferences)
    {
        m_account.answer("GET /api/auth/me", ScriptedAccount::summary("Lucía", 1'000'000));
        m_account.answer("POST /api/credits/social-copy/reserve",
                         R"({"balance":1000000,"cost":50,"ok":true})");
        m_session.setAccountSession(m_account.session());
        m_session.setCreditJournal(m_journal, folder + u"/staging"_s);
        m_session.restoreWorkspaceIfNeeded();
        m_account.session().refresh();
        turnUntil([this] { return m_account.session().isAuthenticated(); });
    }

    void load(const QList<QUrl>& photos)
    {
        m_session.load(photos);
        turnUntil([this] { return !m_session.isImporting(); });
        m_session.selectAll();
    }
    // Changes the selected images, so that their next export costs credits again.
    void edit()
    {
        TextLayer title = m_session.batch().currentItem()->layers[0];
        title.fontScale -= 0.001;
        m_session.editLayer(title);
        turnUntil([this] { return m_session.exports().areCostsUpToDate(); });
    }
    void exportAll(const QString& folder)
    {
        m_session.exportAll(folder);
        while (m_session.isExporting())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QString status() const { return m_session.status(); }

private:
    PreferencesStore m_preferences;
    ScriptedAccount m_account;
    CreditJournal m_journal;
    StudioSession m_session;
};

void exportAllPlainly(const QList<QUrl>& photos, const QString& folder)
{
    const QStringList paths = exportPaths(photos, folder);
    runOnThreads(photos.size(), int(std::thread::hardware_concurrency()), [&](qsizetype i) {
        exportPlainly(photos[i], SocialFormat::carouselPortrait, paths[i]);
    });
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

}    // namespace

int main(int argc, char** argv)
{
    fixAllocatorThresholds();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const auto finish = qScopeGuard(&finishWorkers);
    QCommandLineParser parser;
    const QCommandLineOption roundCount(u"rounds"_s, u"of each"_s, u"n"_s, u"5"_s);
    parser.addOption(roundCount);
    parser.process(application);
    if (parser.positionalArguments().size() != 2) {
        std::fprintf(stderr, "export_session PHOTOS OUT [--rounds N]\n");
        return 2;
    }
    const QList<QUrl> photos = photosInFolder(parser.positionalArguments().at(0));
    const QString out = parser.positionalArguments().at(1);
    QDir().mkpath(out);
    const QTemporaryDir own;
    PayingSession session(own.path());
    session.load(photos);
    const double atRest = double(peakMemory()) / 1e6;

    std::vector<double> plain, paid, ratios;
    for (int round = 0; round < parser.value(roundCount).toInt(); ++round) {
        session.edit();
        plain.push_back(timeOf([&] { exportAllPlainly(photos, out); }));
        paid.push_back(timeOf([&] { session.exportAll(out); }));
        ratios.push_back(paid.back() / plain.back());
        std::printf("plain %.0f ms, session %.0f ms: %.3f; %s\n", plain.back(), paid.back(),
                    ratios.back(), qPrintable(session.status()));
    }
    if (ratios.empty()) {
        const double milliseconds = timeOf([&] { session.exportAll(out); });
        std::printf("session %.0f ms; %s\n", milliseconds, qPrintable(session.status()));
    } else {
        std::printf("median of %zu: plain %.0f ms, session %.0f ms, ratio of the medians %.3f, "
                    "median ratio %.3f\n",
                    ratios.size(), median(plain), median(paid), median(paid) / median(plain),
                    median(ratios));
    }
    std::printf("peak memory %.0f MB, after the import %.0f MB\n", double(peakMemory()) / 1e6,
                atRest);
    return 0;
}
