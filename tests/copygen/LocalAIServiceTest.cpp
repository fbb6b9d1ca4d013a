#include "copygen/LocalAIService.h"

#include "tests/account/Awaited.h"
#include "tests/copygen/StandInEngine.h"

#include <QProcess>
#include <QSettings>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString aim = u"vender <__media__> más <turn|>"_s;
constexpr ChildEnding hasty{30ms, 60ms};

LocalAIService::Limits within(std::chrono::milliseconds probe, std::chrono::milliseconds generation)
{
    return {probe, generation, hasty};
}

GeneratedCopy written(LocalAIService& service, const QString& photo, const QString& purpose = aim)
{
    return awaited(service.analyze(QUrl::fromLocalFile(photo), purpose, SocialFormat::square));
}

// Answer: the stand-in's own; phrases: an answer without its title.
enum class Result { missing, answer, phrases };

Result resultOf(const LocalAIService& service, const GeneratedCopy& copy)
{
    if (service.isMissingAnswer(copy))
        return Result::missing;
    return copy.title == u"Luz de la mañana"_s ? Result::answer : Result::phrases;
}

}    // namespace

TEST(LocalAIService, EveryWayThatAProgramCanFail)
{
    struct Row {
        QString behaviour;
        Result mlx, llama;
        std::chrono::milliseconds probe = 1min, generation = 1min;
        int runs = 2;
    };
    using enum Result;
    const Row rows[]{
        {u"generation=answer"_s, answer, answer},
        {u"probe=fail"_s, missing, missing, 1min, 1min, 1},
        {u"probe=crash"_s, missing, missing, 1min, 1min, 1},
        {u"probe=silence"_s, answer, answer},
        {u"probe=flood"_s, answer, answer},
        {u"probe=fork"_s, answer, answer},
        {u"probe=hang"_s, missing, missing, 200ms, 1min, 1},
        {u"probe=deaf"_s, missing, missing, 200ms, 1min, 1},
        {u"generation=fail"_s, missing, missing},
        {u"generation=crash"_s, missing, missing},
        {u"generation=silence"_s, missing, missing},
        {u"generation=lines"_s, phrases, missing},
        {u"generation=garbage"_s, phrases, phrases},
        {u"generation=invalid"_s, missing, missing},
        {u"generation=half"_s, missing, phrases},
        {u"generation=flood"_s, missing, missing},
        {u"generation=fork"_s, answer, answer},
        {u"generation=hang"_s, missing, missing, 1min, 200ms},
        {u"generation=interruptible"_s, missing, missing, 1min, 200ms},
        {u"generation=deaf"_s, missing, missing, 1min, 200ms},
        {u"generation=forkandhang"_s, missing, missing, 1min, 200ms},
    };
    for (const EngineKind kind : {EngineKind::mlx, EngineKind::llama}) {
        for (const Row& row : rows) {
            const StandInEngine engine;
            const EngineProfile profile = kind == EngineKind::mlx ? engine.mlx() : engine.llama();
            StandInEngine::behave(row.behaviour);
            const std::string label =
                row.behaviour.toStdString() + (kind == EngineKind::mlx ? " mlx" : " llama");
            {
                LocalAIService service(profile, within(row.probe, row.generation));
                const GeneratedCopy copy = written(service, engine.photo());
                const Result expected = kind == EngineKind::mlx ? row.mlx : row.llama;
                EXPECT_EQ(resultOf(service, copy), expected) << label;
                EXPECT_EQ(service.lastDuration().has_value(), expected != missing) << label;
                EXPECT_EQ(engine.pictures(), QStringList()) << label;
            }
            engine.expectNothingLeft(label.c_str());
            // Short of time, a run may end before it writes to the log.
            if (row.probe == 1min && row.generation == 1min) {
                EXPECT_EQ(engine.log().filter(u" "_s).size(), row.runs) << label;
            }
        }
    }
}

TEST(LocalAIService, StartsNothingWithoutAnEngineOrAPhoto)
{
    const StandInEngine engine;
    LocalAIService bare(mlxProfile(engine.installation())),
        other(llamaProfile(engine.installation(), StandInEngine::llamaPins()));
    const GeneratedCopy record = written(bare, engine.photo());
    EXPECT_TRUE(bare.isMissingAnswer(record));
    EXPECT_EQ(record.title, u"Gemma no respondió"_s);
    EXPECT_EQ(record.callToAction, u"Reintentar"_s);
    EXPECT_EQ(written(other, engine.photo()), record);

    LocalAIService service(engine.mlx());
    EXPECT_TRUE(service.isMissingAnswer(written(service, engine.logFile())));
    EXPECT_TRUE(service.isMissingAnswer(written(service, u"/nowhere.png"_s)));
    EXPECT_EQ(engine.log(), QStringList());
    EXPECT_EQ(engine.pictures(), QStringList());
}

TEST(LocalAIService, ShowsTheWholePictureAndAsksAgainWithAnotherSeed)
{
    const StandInEngine engine;
    qputenv("LLAMA_ARG_LOG_JSONL", "1");
    qputenv("MTMD_TEST_RESPONSE_MARKER", "XX");
    LocalAIService service(engine.llama());
    const QString photo = engine.photo({301, 207});
    EXPECT_EQ(resultOf(service, written(service, photo)), Result::answer);
    EXPECT_EQ(resultOf(service, written(service, photo)), Result::answer);
    EXPECT_EQ(resultOf(service, written(service, photo)), Result::answer);
    EXPECT_EQ(resultOf(service, written(service, photo, u"otro"_s)), Result::answer);
    qunsetenv("LLAMA_ARG_LOG_JSONL");
    qunsetenv("MTMD_TEST_RESPONSE_MARKER");

    QStringList generations = engine.log().filter(u"generation"_s);
    ASSERT_EQ(generations.size(), 4);
    for (QString& each : generations)
        each = each.section(u' ', 2);
    EXPECT_EQ(generations[0], u"301x207 0 -"_s);
    EXPECT_TRUE(generations[1].startsWith(u"301x207 0.7 "_s));
    EXPECT_NE(generations[1], generations[2]);
    EXPECT_EQ(generations[3], generations[0]) << "another objective is another question";
}

TEST(LocalAIService, StopsOneImageAndGoesOnWithTheNext)
{
    const StandInEngine engine;
    LocalAIService service(engine.llama(), within(1min, 1min));
    for (const QString& step : {u"probe"_s, u"generation"_s}) {
        QFile::remove(engine.logFile());
        StandInEngine::behave(step + u"=interruptible"_s);
        std::stop_source stop;
        auto stopped =
            service.analyze(QUrl::fromLocalFile(engine.photo()), aim, SocialFormat::square,
                            LocalAIEngine::gemma4E2B, AnalysisMode::gemmaOnly, stop.get_token());
        // Given up before its turn comes.
        auto waiting =
            service.analyze(QUrl::fromLocalFile(engine.photo()), aim, SocialFormat::square,
                            LocalAIEngine::gemma4E2B, AnalysisMode::gemmaOnly, stop.get_token());
        EXPECT_TRUE(engine.hasBegun(step));
        stop.request_stop();
        EXPECT_TRUE(service.isMissingAnswer(awaited(std::move(waiting))));
        EXPECT_TRUE(service.isMissingAnswer(awaited(std::move(stopped))));
        StandInEngine::behave({});
        EXPECT_EQ(resultOf(service, written(service, engine.photo())), Result::answer);
    }
    engine.expectNothingLeft("stopped");
}

TEST(LocalAIService, MayGoWhileItWorks)
{
    const StandInEngine engine;
    StandInEngine::behave(u"generation=deaf"_s);
    auto service = std::make_unique<LocalAIService>(engine.mlx());
    const GeneratedCopy record = service->profile().noAnswer;
    auto first = service->analyze(QUrl::fromLocalFile(engine.photo()), aim, SocialFormat::square);
    auto second = service->analyze(QUrl::fromLocalFile(engine.photo()), aim, SocialFormat::square);
    EXPECT_TRUE(engine.hasBegun(u"generation"_s));
    service.reset();
    engine.expectNothingLeft("destroyed");
    EXPECT_EQ(awaited(std::move(first)), record);
    EXPECT_EQ(awaited(std::move(second)), record);
    EXPECT_EQ(engine.log().size(), 2) << "the second image had no program started";
}

TEST(LocalAIService, LeavesNothingBehindWhenItsProgramIsKilled)
{
    const StandInEngine engine;
    engine.llama();
    const LlamaPins pins = StandInEngine::llamaPins();
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_DATA_HOME"_s, engine.dataFolder());
    environment.insert(u"XDG_CONFIG_HOME"_s, engine.dataFolder());
    environment.insert(u"MOLTIVA_STANDIN"_s, u"generation=forkandhang"_s);
    const QDir own(engine.dataFolder() + u"/copygen_write_copy"_s);    // named after the program
    ASSERT_TRUE(own.mkpath(u"."_s));
    QSettings configuration(own.filePath(u"moltiva.conf"_s), QSettings::IniFormat);
    for (const auto& [name, pin] :
         {std::pair{u"model"_s, pins.model}, {u"projector"_s, pins.projector}}) {
        configuration.setValue(u"localEngine/%1Url"_s.arg(name), pin.url);
        configuration.setValue(u"localEngine/%1Bytes"_s.arg(name), pin.bytes);
    }
    configuration.sync();

    QProcess program;
    program.setProcessEnvironment(environment);
    program.start(QStringLiteral(MOLTIVA_WRITE_COPY), {aim, engine.photo()});
    ASSERT_TRUE(engine.hasBegun(u"generation"_s));
    ASSERT_TRUE(comesTrue([&] { return engine.log().size() == 3; }));
    {
        const LocalAIService another(engine.llama());
    }
    EXPECT_EQ(engine.pictures().size(), 1) << "of a program that goes on";

    ::kill(pid_t(program.processId()), SIGKILL);
    EXPECT_TRUE(program.waitForFinished());
    for (const QString& line : engine.log())
        EXPECT_TRUE(waitUntilGone(line.section(u' ', 0, 0).toInt()));
    {
        const LocalAIService next(engine.llama());
    }
    EXPECT_EQ(engine.pictures(), QStringList());
}
