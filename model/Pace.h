#pragma once

// How edits follow each other. `held`: one of many while a slider is dragged or a key repeats.
// `once`: a single edit, or the last one of a drag.
enum class Pace { once, held };
