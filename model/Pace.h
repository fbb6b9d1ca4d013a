#pragma once

// How a value arrives: held while a slider is dragged or a key repeats, once when it rests.
enum class Pace { once, held };
