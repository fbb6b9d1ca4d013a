#pragma once

// The part of a story that the controls of a social network do not cover: all but a band at the top
// and one at the bottom. Heights of the bands as shares of the canvas height.
inline constexpr double safeZoneTop = 250.0 / 1920, safeZoneBottom = 340.0 / 1920;
