// SPDX-License-Identifier: MIT
#pragma once

#include "support/Text.h"

namespace kivo {

// The catalogue "linux": the texts that name the computer, its system or its settings, in words that are true
// on a Linux desktop. A translation takes the reworded text as its key's meaning.
TextCatalogue linuxTexts();

} // namespace kivo
