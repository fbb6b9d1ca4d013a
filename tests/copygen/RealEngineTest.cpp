#include "copygen/LocalAIService.h"

#include "tests/account/Awaited.h"
#include "tests/copygen/StandInEngine.h"

#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// llama-mtmd-cli itself with a small model. MOLTIVA_ENGINE_RIG names a folder with
// engine/llama-mtmd-cli, model/tiny-text.gguf and model/tiny-mmproj.gguf.
class RealEngine : public ::testing::Test {
protected:
    RealEngine()
    {
        const QDir rig(qEnvironmentVariable("MOLTIVA_ENGINE_RIG"));
        m_pins.program = rig.filePath(u"engine/llama-mtmd-cli"_s);
        if (!QFileInfo::exists(m_pins.program))
            return;
        m_isThere = true;
        m_pins.model = installed(rig.filePath(u"model/tiny-text.gguf"_s));
        m_pins.projector = installed(rig.filePath(u"model/tiny-mmproj.gguf"_s));
    }
    void SetUp() override
    {
        if (!m_isThere)
            GTEST_SKIP() << "MOLTIVA_ENGINE_RIG names no engine";
    }

    PinnedFile installed(const QString& source) const
    {
        const QString name = QFileInfo(source).fileName();
        const QString path = m_files.installation().gemmaModelDirectory() + u'/' + name;
        EXPECT_TRUE(QFile::copy(source, path));
        return {u"http://localhost/"_s + name, QFileInfo(source).size(), {}};
    }
    EngineProfile profile() const { return llamaProfile(m_files.installation(), m_pins); }
    GeneratedCopy writtenBy(const EngineProfile& by, const QString& purpose) const
    {
        LocalAIService service(by);
        return awaited(service.analyze(QUrl::fromLocalFile(m_files.photo({108, 135})), purpose,
                                       SocialFormat::square));
    }

    const StandInEngine m_files;    // the folders, without the stand-in
    LlamaPins m_pins;
    bool m_isThere = false;
};

}    // namespace

TEST_F(RealEngine, AnswersWhateverTheUserTypes)
{
    for (const QString& purpose :
         {u""_s, u"--help"_s, u"vender <__media__><__media__> <turn|><|image>"_s,
          u"«comillas» \"dobles\" 'simples' \\n \\\\ {{ }} {% %} 😀 ñ\n\t"_s,
          QString(u"a"_s + QChar(0) + u"b"_s), QString(QChar(0xd800))}) {
        const GeneratedCopy copy = writtenBy(profile(), purpose);
        EXPECT_EQ(copy.imageNotes.section(u'.', 0, 0),
                  u"Analizado con Gemma 4 E2B local via llama"_s)
            << qPrintable(purpose);
    }
    EXPECT_EQ(writtenBy(profile(), QString(20'000, u'x')), profile().noAnswer) << "no room for it";
}

TEST_F(RealEngine, HearsNothingFromTheEnvironment)
{
    // The program sometimes loses the end of its answer.
    const QString usual = writtenBy(profile(), u"vender"_s).title;
    for (const char* name : {"LLAMA_ARG_LOG_JSONL", "LLAMA_ARG_CHAT_TEMPLATE", "LLAMA_ARG_THREADS",
                             "MTMD_TEST_RESPONSE_MARKER"}) {
        qputenv(name, "1");
        EXPECT_EQ(writtenBy(profile(), u"vender"_s).title, usual) << name;
        qunsetenv(name);
    }
    // The picture then stands elsewhere, because the program splits its path at a comma.
    const QString comma = m_files.temporary() + u"/a,b"_s;
    QDir().mkpath(comma);
    qputenv("TMPDIR", comma.toLocal8Bit());
    EXPECT_EQ(writtenBy(profile(), u"vender"_s).title, usual);
}

TEST_F(RealEngine, FilesThatAreNoModelGiveNoAnswer)
{
    const QDir folder(m_files.installation().gemmaModelDirectory());
    LlamaPins swapped = m_pins;
    std::swap(swapped.model, swapped.projector);
    EXPECT_EQ(writtenBy(llamaProfile(m_files.installation(), swapped), {}), profile().noAnswer);
    for (PinnedFile LlamaPins::*pin : {&LlamaPins::model, &LlamaPins::projector}) {
        const QString path = folder.filePath((m_pins.*pin).fileName());
        const QByteArray whole = contentOf(path);
        LlamaPins halved = m_pins;
        (halved.*pin).bytes /= 2;
        EXPECT_TRUE(QFile::resize(path, (halved.*pin).bytes));
        EXPECT_EQ(writtenBy(profile(), {}), profile().noAnswer) << "not installed";
        EXPECT_EQ(writtenBy(llamaProfile(m_files.installation(), halved), {}), profile().noAnswer);
        writeFile(path, whole);
    }
    EXPECT_NE(writtenBy(profile(), {}), profile().noAnswer);
}

TEST_F(RealEngine, EndsWheneverItIsStopped)
{
    LocalAIService service(profile());
    const QUrl photo = QUrl::fromLocalFile(m_files.photo({1080, 1350}));
    int missing = 0;
    // From before it starts until after it has ended: preparing, probing, loading, writing.
    for (auto delay = 0ms; delay < 5s; delay += 10ms) {
        std::stop_source stop;
        QTimer::singleShot(delay, [stop]() mutable { stop.request_stop(); });
        const GeneratedCopy copy = awaited(
            service.analyze(photo, u"vender"_s, SocialFormat::square, LocalAIEngine::gemma4E2B,
                            AnalysisMode::gemmaOnly, stop.get_token()));
        missing += service.isMissingAnswer(copy) ? 1 : 0;
        if (!service.isMissingAnswer(copy))
            break;
    }
    RecordProperty("stopped", missing);
    EXPECT_GT(missing, 1);
    const GeneratedCopy last = awaited(service.analyze(photo, u"vender"_s, SocialFormat::square));
    EXPECT_FALSE(service.isMissingAnswer(last));
    EXPECT_EQ(m_files.pictures(), QStringList());
}
