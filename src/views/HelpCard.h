// SPDX-License-Identifier: MIT
#pragma once

#include "ui/SettingsContent.h"
#include "views/Blocks.h"

namespace kivo {

// The help's topics on a card, each folded at first; any number of them may be unfolded.
QWidget* helpSection(Kit& kit, const HelpContent& content);

} // namespace kivo
