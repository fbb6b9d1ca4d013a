#include "cli/ExportReport.h"

#include "cli/Terminal.h"
#include "model/JsonMapping.h"

using namespace Qt::StringLiterals;

namespace {

struct FileLine {
    QString photo;
    std::optional<QString> file;
    std::optional<int> bytes;
    std::optional<QString> error;
};

struct SummaryLine {
    int written = 0, skipped = 0;
    double seconds = 0;
    double peakMemoryBytes = 0;
    bool interrupted = false;
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
    static constexpr auto fields = std::tuple{
        required("written", &SummaryLine::written), required("skipped", &SummaryLine::skipped),
        required("seconds", &SummaryLine::seconds),
        required("peakMemoryBytes", &SummaryLine::peakMemoryBytes),
        required("interrupted", &SummaryLine::interrupted)};
};

namespace {

template <typename Line>
void printJson(const Line& line)
{
    print(stdout, QString::fromUtf8(json::written(line)));
}

}    // namespace

ExportReport::ExportReport(bool json, qsizetype total)
    : m_json(json), m_terminal(!json && isTerminal(stdout)), m_total(total)
{
    drawBar();
}

void ExportReport::renamed(const QString& photo, const QString& path)
{
    clearBar();
    print(stderr,
          u"%1: otra foto se llama igual, se guarda como %2"_s.arg(photo, path.section(u'/', -1)));
    drawBar();
}

void ExportReport::rowFailed(const RowProblem& problem)
{
    clearBar();
    const QString file = printable(problem.file);
    QString line =
        u"fila %1: %2"_s.arg(QString::number(problem.row), row(problem.fault).reason.toString());
    if (!file.isEmpty())
        line += u" («%1»)"_s.arg(file);
    print(stderr, line);
    drawBar();
}

void ExportReport::finished(const QString& photo, const ExportedFile& file)
{
    ++(file.isWritten() ? m_written : m_skipped);
    clearBar();
    if (!file.isWritten())
        print(stderr, u"%1: %2"_s.arg(photo, file.error));
    if (m_json) {
        FileLine line{.photo = photo, .file = {}, .bytes = {}, .error = {}};
        if (file.isWritten()) {
            line.file = file.path;
            line.bytes = int(file.bytes);
        } else {
            line.error = file.error;
        }
        printJson(line);
    } else if (!m_terminal && file.isWritten()) {
        print(stdout, file.path);
    }
    drawBar();
}

void ExportReport::end(double seconds, qint64 peakBytes, bool interrupted)
{
    clearBar();
    if (m_json) {
        printJson(
            SummaryLine{int(m_written), int(m_skipped), seconds, double(peakBytes), interrupted});
        return;
    }
    QString line = u"%1 imagen(es) exportada(s) en %2 s."_s.arg(m_written).arg(seconds, 0, 'f', 1);
    if (m_skipped > 0)
        line += u" %1 omitida(s)."_s.arg(m_skipped);
    if (interrupted)
        line += u" Exportación interrumpida."_s;
    print(m_terminal ? stdout : stderr, line);
}

void ExportReport::drawBar()
{
    if (!m_terminal)
        return;
    constexpr int width = 30;
    const qsizetype done = m_written + m_skipped;
    const int full = m_total > 0 ? int(done * width / m_total) : width;
    const QString bar = QString(full, QChar(0x2588)) + QString(width - full, QChar(0x2591));
    std::fputs(u"\r%1 %2 de %3"_s.arg(bar).arg(done).arg(m_total).toUtf8().constData(), stdout);
    std::fflush(stdout);
}

void ExportReport::clearBar()
{
    if (m_terminal)
        std::fputs("\r\033[K", stdout);
}
