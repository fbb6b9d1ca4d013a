#include "cli/ExportReport.h"

#include "cli/shared/Terminal.h"
#include "model/JsonMapping.h"
#include "model/PlainText.h"
#include "studio/export/RenderLanes.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

struct FileLine {
    QString photo;
    std::optional<QString> file;
    std::optional<int> bytes;
    std::optional<QString> error;
};

struct SummaryLine {
    QString outcome, message;
    int written = 0, skipped = 0;
    qint64 cost = 0;    // credits charged and not refunded
    bool refundPending = false;
    double seconds = 0;
    double peakMemoryBytes = 0;
    bool interrupted = false;
};

struct PriceLine {
    qint64 images = 0, unpaid = 0, cost = 0, balance = 0;
};

}    // namespace

template <>
struct json::JsonFields<FileLine> {
    static constexpr auto fields =
        std::tuple{required("photo", &FileLine::photo), optional("file", &FileLine::file),
                   optional("bytes", &FileLine::bytes), optional("error", &FileLine::error)};
};

template <>
struct json::JsonFields<SummaryLine> {
    static constexpr auto fields =
        std::tuple{required("outcome", &SummaryLine::outcome),
                   required("message", &SummaryLine::message),
                   required("written", &SummaryLine::written),
                   required("skipped", &SummaryLine::skipped),
                   required("cost", &SummaryLine::cost),
                   required("refundPending", &SummaryLine::refundPending),
                   required("seconds", &SummaryLine::seconds),
                   required("peakMemoryBytes", &SummaryLine::peakMemoryBytes),
                   required("interrupted", &SummaryLine::interrupted)};
};

template <>
struct json::JsonFields<PriceLine> {
    static constexpr auto fields =
        std::tuple{required("images", &PriceLine::images), required("unpaid", &PriceLine::unpaid),
                   required("cost", &PriceLine::cost), required("balance", &PriceLine::balance)};
};

namespace {

template <typename Line>
void printJson(const Line& line)
{
    print(stdout, QString::fromUtf8(json::written(line)));
}

QString sentenceOf(const ExportPrice& price)
{
    return u"Coste: %1 créditos (sin pagar: %2 de %3)."_s.arg(price.credits())
        .arg(price.unpaid)
        .arg(price.images);
}

// Words of the JSON output, which other programs read: they must not change.
QString wordOf(ExportOutcome::State state)
{
    using State = ExportOutcome::State;
    switch (state) {
    case State::done:
        return u"done"_s;
    case State::notPrepared:
        return u"notPrepared"_s;
    case State::tooFewCredits:
        return u"tooFewCredits"_s;
    case State::notReserved:
        return u"notReserved"_s;
    case State::notWritten:
        return u"notWritten"_s;
    case State::stopped:
        return u"stopped"_s;
    }
    Q_UNREACHABLE();
}

}    // namespace

ExportReport::ExportReport(bool json) : m_json(json), m_terminal(!json && isTerminal(stdout)) {}

void ExportReport::showProgress(const QString& doing, qsizetype done, qsizetype total)
{
    constexpr int width = 30;
    const int full = total > 0 ? int(done * width / total) : width;
    const QString bar = QString(full, QChar(0x2588)) + QString(width - full, QChar(0x2591));
    clearBar();
    m_bar = u"%1 %2 %3 de %4"_s.arg(bar, doing).arg(done).arg(total);
    drawBar();
}

void ExportReport::tell(const QString& sentence)
{
    clearBar();
    print(stderr, sentence);
    drawBar();
}

void ExportReport::renamed(const QString& photo, const QString& path)
{
    const QString name = path.section(u'/', -1);
    const bool isShortened = !name.startsWith(filenameOf(QUrl::fromLocalFile(photo)) + u'-');
    tell((isShortened ? u"%1: el nombre es demasiado largo, se guarda como %2"_s
                      : u"%1: otra foto se llama igual, se guarda como %2"_s)
             .arg(photo, name));
}

void ExportReport::rowFailed(const RowProblem& problem)
{
    ++m_failed;
    const QString file = printable(problem.file);
    QString line =
        u"fila %1: %2"_s.arg(QString::number(problem.row), row(problem.fault).reason.toString());
    if (!file.isEmpty())
        line += u" («%1»)"_s.arg(file);
    tell(line);
}

void ExportReport::unreadable(const QString& photo)
{
    ++m_skipped;
    fail(photo, photo, u"No se pudo leer la foto."_s);
}

void ExportReport::unwritten(const QString& photo, const QString& path, const QString& reason)
{
    fail(photo, path, u"No se pudo escribir el archivo (%1)."_s.arg(reason));
}

void ExportReport::unprepared(const QStringList& photos, const QString& place)
{
    const QString error = stagingFailure(place);
    tell(error);
    printFailures(photos, error);
}

void ExportReport::notReached(const QStringList& photos)
{
    printFailures(photos, u"No se ha exportado."_s);
}

void ExportReport::wrote(const QString& photo, const QString& path)
{
    ++m_written;
    if (m_json) {
        const int bytes = int(QFileInfo(path).size());
        printJson(FileLine{.photo = photo, .file = path, .bytes = bytes, .error = {}});
    } else if (!m_terminal) {
        print(stdout, path);
    }
}

void ExportReport::price(const ExportPrice& price)
{
    tell(sentenceOf(price));
}

void ExportReport::priceAlone(const ExportPrice& price, qint64 balance)
{
    tell(u"Es el precio de las fotos cuya cabecera se puede leer. Las que no se puedan abrir al "
         "exportar no se cobran."_s);
    clearBar();
    if (m_json)
        printJson(PriceLine{price.images, price.unpaid, price.credits(), balance});
    else
        print(stdout, sentenceOf(price));
}

void ExportReport::end(const ExportOutcome& outcome, double seconds, qint64 peakBytes)
{
    close();
    const QString sentence = outcome.sentence();
    QString line = sentence;
    if (outcome.isDone())
        line += u" Tiempo: %1 s."_s.arg(seconds, 0, 'f', 1);
    if (m_skipped > 0)
        line += u" %1."_s.arg(counted(m_skipped, u"omitida", u"omitidas"));
    if (!m_json || !outcome.isDone())
        print(m_terminal && outcome.isDone() ? stdout : stderr, line);
    if (m_json) {
        printJson(SummaryLine{.outcome = wordOf(outcome.state),
                              .message = sentence,
                              .written = int(m_written),
                              .skipped = int(m_skipped),
                              .cost = outcome.isDone() ? outcome.cost : 0,
                              .refundPending = outcome.isRefundPending || !outcome.isRecorded,
                              .seconds = seconds,
                              .peakMemoryBytes = double(peakBytes),
                              .interrupted = outcome.state == ExportOutcome::State::stopped});
    }
}

void ExportReport::close()
{
    clearBar();
    m_bar.clear();
}

void ExportReport::fail(const QString& photo, const QString& name, const QString& error)
{
    ++m_failed;
    tell(u"%1: %2"_s.arg(name, error));
    printFailures({photo}, error);
}

void ExportReport::printFailures(const QStringList& photos, const QString& error) const
{
    if (!m_json)
        return;
    for (const QString& photo : photos)
        printJson(FileLine{.photo = photo, .file = {}, .bytes = {}, .error = error});
}

void ExportReport::drawBar()
{
    if (!m_terminal || m_bar.isEmpty())
        return;
    std::fputs((u'\r' + m_bar).toUtf8().constData(), stdout);
    std::fflush(stdout);
}

void ExportReport::clearBar()
{
    if (!m_terminal || m_bar.isEmpty())
        return;
    std::fputs("\r\033[K", stdout);
    std::fflush(stdout);
}
