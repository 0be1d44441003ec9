// SPDX-License-Identifier: MIT
#pragma once

#include <QFont>

namespace kivo {

// The desktop's own type at a size in points of the screen (not of a printer), unhinted so that a line is
// equally long at every scale factor. `rounded` takes the family's rounded face where it has one.
QFont typeface(int size, QFont::Weight weight, bool rounded = false);

} // namespace kivo
