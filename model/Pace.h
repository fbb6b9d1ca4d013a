#pragma once

// How a value arrives: held while a slider is dragged or a key repeats, once when it has come to
// rest.
enum class Pace { once, held };
