#pragma once
#include <QSize>

// `compact`: little room, so bars are lower, columns narrower and buttons without words.
enum class WindowClass { compact, roomy };

inline constexpr QSize smallestWindow{1080, 580}, smallestRoomyWindow{1200, 720};

constexpr WindowClass windowClassOf(QSize window)
{
    const bool isRoomy = window.width() >= smallestRoomyWindow.width() &&
                         window.height() >= smallestRoomyWindow.height();
    return isRoomy ? WindowClass::roomy : WindowClass::compact;
}
