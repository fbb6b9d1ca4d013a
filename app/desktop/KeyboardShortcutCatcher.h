#pragma once

#include <functional>

// What the keys of the studio do while no control uses them. Each function may be empty.
struct KeyboardShortcutCatcher {
    std::function<void()> onLeft = {}, onRight = {}, onDelete = {};
    std::function<void()> onUndo = {}, onRedo = {};
};
