// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>

// Paints the settings and the introduction, light and dark, at one and two pixels a point, with short and with
// long texts.
void paintWindows(const QDir& folder);
