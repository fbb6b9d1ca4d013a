#include "platform/photo/AreaAverage.h"

#include <QColorSpace>

#include <algorithm>
#include <vector>

namespace {

// The old pixels that the new pixel `index` covers, if a line of `from` pixels becomes a line of
// `to` pixels. The weights are whole numbers: an old pixel counts as `to` units long and a new one
// as `from` units long, so the weights add up to `from`.
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

// Adds `row` times `weight` to `sums`. A sum fits into 32 bits: the weights of the rows under a new
// pixel add up to the height of the old picture, so the sum is at most 255 times that height.
void addRow(std::vector<quint32>& sums, const uchar* row, quint32 weight)
{
    quint32* const first = sums.data();
    const std::size_t count = sums.size();
    for (std::size_t i = 0; i < count; ++i)
        first[i] += row[i] * weight;
}

// Calculates with doubles, which represent these whole numbers exactly: one integer division per
// channel would take longer than everything else.
QRgb meanAcross(const quint32* sums, const Span& columns, double perArea)
{
    double mean[4]{};
    const auto add = [&](int x, double weight) {
        for (int channel = 0; channel < 4; ++channel)
            mean[channel] += sums[4 * x + channel] * weight;
    };
    add(columns.first, columns.firstWeight);
    for (int x = columns.first + 1; x < columns.last; ++x)
        add(x, columns.innerWeight);
    if (columns.last > columns.first)
        add(columns.last, columns.lastWeight);
    QRgb pixel = 0;
    for (int channel = 0; channel < 4; ++channel)
        pixel |= QRgb(qRound(mean[channel] * perArea)) << (8 * channel);
    return pixel;
}

}    // namespace

QImage areaAveraged(const QImage& picture, QSize size)
{
    Q_ASSERT(picture.depth() == 32);
    QImage result(size, picture.format());
    if (picture.isNull() || result.isNull())
        return {};
    std::vector<Span> columns;
    columns.reserve(std::size_t(size.width()));
    for (int x = 0; x < size.width(); ++x)
        columns.emplace_back(x, picture.width(), size.width());
    const double perArea = 1.0 / (double(picture.width()) * picture.height());
    std::vector<quint32> sums(std::size_t(picture.width()) * 4);
    for (int y = 0; y < size.height(); ++y) {
        const Span rows(y, picture.height(), size.height());
        std::ranges::fill(sums, 0);
        for (int row = rows.first; row <= rows.last; ++row)
            addRow(sums, picture.constScanLine(row), rows.weight(row));
        auto* const line = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (std::size_t x = 0; x < columns.size(); ++x)
            line[x] = meanAcross(sums.data(), columns[x], perArea);
    }
    result.setColorSpace(picture.colorSpace());
    return result;
}
