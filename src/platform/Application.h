// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kivo {

// The application's identifier: its bundle identifier, the subsystem of its log lines, its name on the session
// bus and the name of its desktop entry.
inline constexpr std::string_view applicationIdentifier = "io.github.kivo.Kivo";

// The same as the path of its object on the session bus.
inline constexpr std::string_view applicationObjectPath = "/io/github/kivo/Kivo";

} // namespace kivo
