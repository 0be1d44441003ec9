// SPDX-License-Identifier: MIT
#pragma once

#include "core/AlertSettings.h"
#include "support/Color.h"

#include <optional>
#include <string>

namespace kivo {

// Rules and their parts in words and colours, in the user's language.
std::string title(AlertTrigger::Family family);
std::string detail(AlertTrigger::Family family);
Color color(AlertTrigger::Family family);
// What the family's add button creates; absent for a family to which nothing can be added.
std::optional<AlertRule> newRule(AlertTrigger::Family family);

std::string title(const AlertTrigger& trigger);
// "Top · Glow · Sound · Notification": where and how the rule speaks.
std::string summary(const AlertRule& rule);

std::string title(AlertTint tint);
std::string title(AlertSound sound);
std::string title(OverlayPosition position);

// Absent for `auto_`: the level decides.
std::optional<Color> color(AlertTint tint);
// The name under which the system knows the sound ("Tink"); absent for `none`.
std::optional<std::string> systemName(AlertSound sound);

} // namespace kivo
