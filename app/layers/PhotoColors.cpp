#include "app/layers/PhotoColors.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

namespace {

constexpr int samplesAcross = 24, groups = 12, rounds = 8, mostColors = 6;
constexpr double leastDistance = 60;    // nearer colours look alike on a small swatch

struct Point {
    double r = 0, g = 0, b = 0;
};

double squaredDistance(const Point& a, const Point& b)
{
    // The weights roughly follow how sensitive the eye is to each colour.
    return 2 * (a.r - b.r) * (a.r - b.r) + 4 * (a.g - b.g) * (a.g - b.g) +
           3 * (a.b - b.b) * (a.b - b.b);
}

std::vector<Point> samplesOf(const QImage& picture)
{
    std::vector<Point> samples;
    const int across = std::min(samplesAcross, picture.width());
    const int down = std::min(samplesAcross, picture.height());
    for (int y = 0; y < down; ++y) {
        for (int x = 0; x < across; ++x) {
            const QRgb pixel = picture.pixel((2 * x + 1) * picture.width() / (2 * across),
                                             (2 * y + 1) * picture.height() / (2 * down));
            if (qAlpha(pixel) > 127)
                samples.push_back(
                    {double(qRed(pixel)), double(qGreen(pixel)), double(qBlue(pixel))});
        }
    }
    return samples;
}

struct Group {
    Point middle;
    Point sum;
    int count = 0;
};

std::size_t nearest(const std::vector<Group>& found, const Point& sample)
{
    return std::size_t(
        std::ranges::min_element(
            found, {}, [&](const Group& group) { return squaredDistance(group.middle, sample); }) -
        found.begin());
}

// Each group after the first starts at the sample farthest from the groups found before.
std::vector<Group> startingGroups(const std::vector<Point>& samples)
{
    std::vector<Group> found{{samples[samples.size() / 2], {}, 0}};
    while (found.size() < groups) {
        const auto farthest = std::ranges::max_element(samples, {}, [&](const Point& sample) {
            return squaredDistance(found[nearest(found, sample)].middle, sample);
        });
        found.push_back({*farthest, {}, 0});
    }
    return found;
}

}    // namespace

QList<QColor> colorsOf(const QImage& picture)
{
    const std::vector<Point> samples = samplesOf(picture);
    if (samples.empty())
        return {};
    std::vector<Group> found = startingGroups(samples);
    for (int round = 0; round < rounds; ++round) {
        for (Group& group : found)
            group = {group.middle, {}, 0};
        for (const Point& sample : samples) {
            Group& group = found[nearest(found, sample)];
            group.sum = {group.sum.r + sample.r, group.sum.g + sample.g, group.sum.b + sample.b};
            ++group.count;
        }
        for (Group& group : found) {
            if (group.count > 0)
                group.middle = {group.sum.r / group.count, group.sum.g / group.count,
                                group.sum.b / group.count};
        }
    }
    std::ranges::stable_sort(found, std::ranges::greater(), &Group::count);
    std::vector<Point> chosen;
    for (const Group& group : found) {
        const bool known = std::ranges::any_of(chosen, [&](const Point& other) {
            return squaredDistance(other, group.middle) < leastDistance * leastDistance;
        });
        if (group.count > 0 && !known && chosen.size() < mostColors)
            chosen.push_back(group.middle);
    }
    QList<QColor> colors;
    for (const Point& point : chosen)
        colors.append(QColor(qRound(point.r), qRound(point.g), qRound(point.b)));
    return colors;
}
