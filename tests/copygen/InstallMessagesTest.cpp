#include "copygen/InstallMessages.h"
#include "copygen/InstallChecks.h"
#include "copygen/ProcessRunner.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

using Snapshot = GemmaInstallProgressSnapshot;

TEST(InstallMessages, amountsAndTimesReadAsInSpain)
{
    const std::pair<qint64, QString> amounts[] = {
        {0, u"0 MB"_s},
        {850'000'000, u"850 MB"_s},
        {999'499'999, u"999 MB"_s},
        {1'000'000'000, u"1,00 GB"_s},
        {3'398'848'960, u"3,40 GB"_s},
        {12'345'678'901, u"12,35 GB"_s},
    };
    for (const auto& [bytes, text] : amounts)
        EXPECT_EQ(formatBytes(bytes), text);
    const std::pair<qint64, QString> durations[] = {
        {0, u"1 s"_s},    {59, u"59 s"_s},  {60, u"1 min"_s},       {3599, u"59 min"_s},
        {3600, u"1 h"_s}, {3659, u"1 h"_s}, {3660, u"1 h 1 min"_s}, {7200, u"2 h"_s},
    };
    for (const auto& [seconds, text] : durations)
        EXPECT_EQ(formatDuration(seconds), text);
}

TEST(InstallMessages, aMessageTellsWhatIsKnown)
{
    const Snapshot loading{u"Descargando Gemma"_s, 0.14, 3'400'000'000};
    struct Row {
        std::optional<Snapshot> snapshot;
        qint64 downloaded;
        std::optional<qint64> total;
        std::optional<double> speed;
        QString text;
    };
    const Row rows[] = {
        {{}, 0, {}, {}, u"Preparando instalación de Gemma..."_s},
        {loading, 0, 0, {}, u"Descargando Gemma..."_s},
        {loading, 850'000'000, 0, 1e6, u"Descargando Gemma... 850 MB descargados"_s},
        {loading, 850'000'000, {}, 1e6, u"Descargando Gemma... 850 MB descargados"_s},
        {loading, 2'040'000'000, 3'400'000'000, {}, u"Descargando Gemma... 2,04 GB de 3,40 GB"_s},
        {loading, 2'040'000'000, 3'400'000'000, 5e6,
         u"Descargando Gemma... 2,04 GB de 3,40 GB · quedan 4 min"_s},
        {loading, 2'040'000'000, 3'400'000'000, 0.0, u"Descargando Gemma... 2,04 GB de 3,40 GB"_s},
        {loading, 3'400'000'000, 3'400'000'000, 5e6, u"Descargando Gemma... 3,40 GB de 3,40 GB"_s},
        {loading, 0, 3'400'000'000, 1e-300,
         u"Descargando Gemma... 0 MB de 3,40 GB · quedan 277777 h 46 min"_s},
        {Snapshot{u"%1 %2"_s, {}, {}}, 0, 5, {}, u"%1 %2... 0 MB de 0 MB"_s},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(makeInstallMessage(row.snapshot, row.downloaded, row.total, row.speed).text(),
                  row.text);
    }
}

TEST(InstallMessages, theProgressGrowsWithTheDownloadAndStaysBetweenItsMarks)
{
    const auto at = [](double fraction) { return Snapshot{u"x"_s, fraction, {}}; };
    EXPECT_EQ(makeInstallProgress({}, 5, {}), std::nullopt);
    EXPECT_EQ(makeInstallProgress(Snapshot{u"x"_s, {}, {}}, 5, 0), std::nullopt);
    EXPECT_EQ(makeInstallProgress(at(0.08), 5, {}), 0.08);
    EXPECT_EQ(makeInstallProgress(at(-3), 5, {}), 0);
    EXPECT_EQ(makeInstallProgress(at(7), 5, 10), 1);
    EXPECT_DOUBLE_EQ(*makeInstallProgress({}, 5, 10), 0.56);
    double last = 0;
    for (qint64 bytes = 0; bytes <= 1000; bytes += 10) {
        const double progress = *makeInstallProgress(at(0.14), bytes, 1000);
        EXPECT_TRUE(bytes == 0 || progress > last);
        last = progress;
    }
    EXPECT_DOUBLE_EQ(*makeInstallProgress(at(0.14), 0, 1000), 0.14);
    EXPECT_DOUBLE_EQ(last, 0.98);
    EXPECT_DOUBLE_EQ(*makeInstallProgress(at(0.98), 0, 1000), 0.98);
}

TEST(InstallMessages, aProgressFileIsReadWhateverItHolds)
{
    const std::pair<QByteArray, std::optional<Snapshot>> rows[] = {
        {R"({"stage":"a","fraction":0.5,"totalBytes":7})", Snapshot{u"a"_s, 0.5, 7}},
        {R"({"stage":"a","fraction":0.5,"totalBytes":0})", Snapshot{u"a"_s, 0.5, {}}},
        {R"({"stage":"a","totalBytes":-7})", Snapshot{u"a"_s, {}, {}}},
        {R"({"stage":"a"})", Snapshot{u"a"_s, {}, {}}},
        {R"({"fraction":0.5})", std::nullopt},
        {R"({"stage":"a","fraction":0.5)", std::nullopt},
        {"", std::nullopt},
        {QByteArray(100'000, '['), std::nullopt},
        {"\xff\xfe", std::nullopt},
    };
    for (const auto& [text, snapshot] : rows)
        EXPECT_EQ(readProgressSnapshot(text), snapshot) << text.left(50).constData();
}

TEST(InstallMessages, aFailureShowsTheLastLineOfTheLog)
{
    const QString log = u"/tmp/x.log"_s;
    EXPECT_EQ(processFailure("", log), u"Proceso local fallido. Log: /tmp/x.log"_s);
    EXPECT_EQ(processFailure("a\nNo hay  red.\n\n", log), u"No hay red.\n\nLog: /tmp/x.log"_s);
    EXPECT_EQ(processFailure("\033[31mNo\xff\n", log), u"[31mNo\uFFFD\n\nLog: /tmp/x.log"_s);
    EXPECT_LT(processFailure(QByteArray(100'000, 'a'), log).size(), 400);
}

TEST(InstallChecks, aMachineThatCannotDoItIsToldWhy)
{
    constexpr qint64 model = 3'398'848'960;
    struct Row {
        Machine machine;
        qint64 missing;
        QString reason;
    };
    constexpr qint64 plenty = 100'000'000'000;
    const QString noProcessor =
        u"La generación local necesita un procesador de 64 bits (x86_64 o aarch64) o un Mac con "
        "Apple Silicon. Usa la IA en la nube."_s;
    const Row rows[] = {
        {{u"x86_64"_s, 16'000'000'000, plenty, true, false}, model, {}},
        {{u"arm64"_s, 16'000'000'000, plenty, true, true}, model, {}},
        {{u"x86_64"_s, 16'000'000'000, plenty, true, true}, model, noProcessor},
        {{u"i386"_s, 16'000'000'000, plenty, true, false}, model, noProcessor},
        {{u"x86_64"_s, 7'700'000'000, plenty, true, false}, model, {}},    // sold as 8 GB
        {{u"x86_64"_s, 0, plenty, true, false}, model, {}},                // unknown
        {{u"x86_64"_s, 4'100'000'000, plenty, true, false},
         model,
         u"Este equipo tiene 4 GB de memoria; Gemma 4 E2B necesita 8 GB."_s},
        {{u"x86_64"_s, 16'000'000'000, 4'400'000'000, true, false},
         model,
         u"No hay espacio suficiente: hacen falta 4,5 GB libres para instalar Gemma 4 E2B."_s},
        {{u"x86_64"_s, 16'000'000'000, 4'400'000'000, true, false}, model - 3'000'000'000, {}},
        {{u"x86_64"_s, 16'000'000'000, -1, true, false}, model, {}},    // unknown
    };
    for (const Row& row : rows)
        EXPECT_EQ(whyNotInstallable(row.machine, row.missing), row.reason);
    Machine machine = rows[0].machine;
    EXPECT_EQ(processorWarning(machine), QString());
    machine.hasAVX2 = false;
    EXPECT_EQ(processorWarning(machine),
              u"Este procesador no tiene AVX2: cada imagen puede tardar varios minutos."_s);
}

}    // namespace
