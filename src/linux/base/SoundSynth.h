// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace kivo {

// The system's fourteen named sounds, made by calculation: between 0.15 and 1.5 seconds long, about equally
// loud, always the same samples. Callable from any thread; takes some milliseconds.

// "Pop", "Glass", … in the order in which they are offered.
const std::vector<std::string_view>& soundNames();

// One channel at SoundSketch::rate; nothing when there is no sound of this name.
std::optional<std::vector<float>> synthesizeSound(std::string_view name);

} // namespace kivo
