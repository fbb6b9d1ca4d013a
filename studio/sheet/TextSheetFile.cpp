#include "studio/sheet/TextSheetFile.h"

#include "model/PlainText.h"
#include "platform/AtomicFile.h"

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr int largestFile = 32;    // MiB

// The numbers of all rows that have the same fault.
struct Group {
    RowFault fault;
    QStringList numbers;
};

QList<Group> grouped(const QList<RowProblem>& problems)
{
    QList<Group> groups;
    for (const RowProblem& problem : problems) {
        auto group = std::ranges::find(groups, problem.fault, &Group::fault);
        if (group == groups.end())
            group = groups.insert(groups.end(), {problem.fault, {}});
        group->numbers.append(QString::number(problem.row));
    }
    return groups;
}

QString listed(const QStringList& numbers)
{
    constexpr qsizetype most = 40;    // row numbers in one list
    const qsizetype left = numbers.size() - most;
    return left > 0 ? u"%1 y %2 más"_s.arg(numbers.mid(0, most).join(u", "_s)).arg(left)
                    : numbers.join(u", "_s);
}

}    // namespace

TextSheet readTextSheetFile(const QString& path)
{
    QFile file(path);
    // Refuses folders and pipes: opening a pipe may wait for ever.
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile())
        return {{}, u"no es un archivo"_s};
    if (!file.open(QIODevice::ReadOnly))
        return {{}, u"no se puede abrir (%1)"_s.arg(file.errorString())};
    constexpr qint64 most = largestFile * 1024LL * 1024LL;
    const QByteArray bytes = file.read(most + 1);
    if (bytes.size() > most)
        return {{}, u"pasa de %1 MiB"_s.arg(largestFile)};
    return readTextSheet(bytes);
}

QString writeTextSheetFile(const QString& path, const PublicationItems& items)
{
    return writeAtomically(path, textSheetOf(items));
}

QString sentenceOn(const SheetMatch& match)
{
    QString sentence =
        u"Textos aplicados a %1."_s.arg(counted(match.filledImages(), u"imagen", u"imágenes"));
    if (match.problems.isEmpty())
        return sentence;
    QStringList reasons;
    for (const Group& group : grouped(match.problems))
        reasons.append(u"%1 (%2)"_s.arg(listed(group.numbers), row(group.fault).reason));
    return sentence + u" %1 sin aplicar: %2."_s.arg(
                          counted(match.problems.size(), u"fila", u"filas"), reasons.join(u"; "_s));
}
