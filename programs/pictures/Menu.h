// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>

// Paints the menu in each of its states, light and dark, at one and two pixels a point.
void paintMenus(const QDir& folder);
