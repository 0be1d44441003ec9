// SPDX-License-Identifier: MIT
#pragma once

#include "support/Color.h"

#include <variant>

namespace kivo {

// The colours that follow the surface on which they stand: its text colour, and the same at reduced strength.
enum class SurfaceInk { primary, secondary };

// What a glyph or a text is drawn in.
using Ink = std::variant<SurfaceInk, Color>;

} // namespace kivo
