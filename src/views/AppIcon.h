// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>

namespace kivo {

// Kivo's own picture (data/io.github.kivo.Kivo.svg) for the windows' frames and for task bars, also where it is
// not installed.
QIcon appIcon();

} // namespace kivo
