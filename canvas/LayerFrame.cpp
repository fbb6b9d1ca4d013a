#include "canvas/LayerFrame.h"

#include <algorithm>

namespace {

// Gives `highest` if the limits cross, and `lowest` for NaN.
double within(double value, double lowest, double highest)
{
    return std::min(value > lowest ? value : lowest, highest);
}

}    // namespace

double LayerFrame::minimumVisibleOrigin(double size)
{
    return -std::max(size - minimumVisibleFraction, 0.0);
}

double LayerFrame::maximumVisibleOrigin(double)
{
    return 1 - minimumVisibleFraction;
}

// Allows a layer to extend far beyond the right or bottom edge of the canvas.
double LayerFrame::maximumOverflowSize(double origin)
{
    return std::max(minimumVisibleFraction, (1 - origin) + maximumVisibleOrigin(0));
}

CodableRect LayerFrame::moved(CodableRect frame, double dx, double dy)
{
    frame.x =
        within(frame.x + dx, minimumVisibleOrigin(frame.width), maximumVisibleOrigin(frame.width));
    frame.y = within(frame.y + dy, minimumVisibleOrigin(frame.height),
                     maximumVisibleOrigin(frame.height));
    return frame;
}

CodableRect LayerFrame::resized(CodableRect frame, double dx, double dy, SmallestFrame smallest)
{
    frame.width = within(frame.width + dx, smallest.width, maximumOverflowSize(frame.x));
    frame.height = within(frame.height + dy, smallest.height, maximumOverflowSize(frame.y));
    return frame;
}

CodableRect LayerFrame::aligned(CodableRect frame, LayerAlignment alignment)
{
    switch (alignment) {
    case LayerAlignment::left:
        frame.x = 0;
        break;
    case LayerAlignment::horizontalCentre:
        frame.x = 0.5 - frame.width / 2;
        break;
    case LayerAlignment::right:
        frame.x = 1 - frame.width;
        break;
    case LayerAlignment::top:
        frame.y = 0;
        break;
    case LayerAlignment::verticalCentre:
        frame.y = 0.5 - frame.height / 2;
        break;
    case LayerAlignment::bottom:
        frame.y = 1 - frame.height;
        break;
    }
    return frame;
}
