#include "platform/AreaAverage.h"

#include <algorithm>
#include <vector>

namespace {

// Along a line of `from` pixels that becomes one of `to`, each old pixel is `to` units long and
// each new one `from`: the weights are whole numbers whose sum is `from`.
struct Span {
    Span(int index, int from, int to)
        : first(int(qint64(index) * from / to)), last(int((qint64(index + 1) * from - 1) / to)),
          firstWeight(quint32(std::min(qint64(first + 1) * to, qint64(index + 1) * from) -
                              qint64(index) * from)),
          innerWeight(quint32(to)),
          lastWeight(quint32(qint64(index + 1) * from - qint64(last) * to))
    {
    }
    quint32 weight(int index) const
    {
        return index == first ? firstWeight : index == last ? lastWeight : innerWeight;
    }
    int first, last;
    quint32 firstWeight, innerWeight, lastWeight;
};

// 255 times the longest side stays below 32 bits, 255 times the area does not.
void addRow(std::vector<quint32>& sums, const uchar* row, quint32 weight)
{
    quint32* const first = sums.data();
    const std::size_t count = sums.size();
    for (std::size_t i = 0; i < count; ++i)
        first[i] += row[i] * weight;
}

qint64 sumAcross(const quint32* sums, const Span& columns)
{
    qint64 inner = 0;
    for (int x = columns.first + 1; x < columns.last; ++x)
        inner += sums[4 * x];
    qint64 sum =
        qint64(sums[4 * columns.first]) * columns.firstWeight + inner * columns.innerWeight;
    if (columns.last > columns.first)
        sum += qint64(sums[4 * columns.last]) * columns.lastWeight;
    return sum;
}

}    // namespace

QImage areaAveraged(const QImage& picture, QSize size)
{
    Q_ASSERT(picture.depth() == 32);
    QImage result(size, picture.format());
    if (picture.isNull() || result.isNull())
        return {};
    std::vector<Span> columns;
    for (int x = 0; x < size.width(); ++x)
        columns.emplace_back(x, picture.width(), size.width());
    // Half a million divisions of whole numbers would take longer than all else.
    const double perArea = 1.0 / (double(picture.width()) * picture.height());
    std::vector<quint32> sums(std::size_t(picture.width()) * 4);
    for (int y = 0; y < size.height(); ++y) {
        const Span rows(y, picture.height(), size.height());
        std::ranges::fill(sums, 0);
        for (int row = rows.first; row <= rows.last; ++row)
            addRow(sums, picture.constScanLine(row), rows.weight(row));
        uchar* const line = result.scanLine(y);
        for (std::size_t i = 0; i < 4 * columns.size(); ++i) {
            const qint64 sum = sumAcross(sums.data() + i % 4, columns[i / 4]);
            line[i] = uchar(double(sum) * perArea + 0.5);
        }
    }
    result.setColorSpace(picture.colorSpace());
    return result;
}
