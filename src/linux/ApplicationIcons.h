// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>

#include <string>

namespace kivo {

// The icon that a desktop entry names, from the desktop's icon theme or a file; a null one when there is none.
QIcon applicationIcon(const std::string& desktopEntryPath);

} // namespace kivo
