// SPDX-License-Identifier: MIT
#pragma once

#include <QDir>

// Paints the window about updates in each of its states, light and dark, at one and two pixels a point.
void paintUpdates(const QDir& folder);
