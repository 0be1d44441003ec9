// SPDX-License-Identifier: MIT
#pragma once

#include <QPainterPath>
#include <QRectF>

#include <optional>
#include <string_view>

namespace kivo {

// One symbol as it was drawn: an outline to be filled, in the coordinates of its box.
struct SymbolDrawing {
    QRectF box;
    QPainterPath outline;
};

// Reads an SVG file with a view box and a single path, which is all that the project's symbols are; nothing for
// anything else. This takes a hundredth of what a reader of all of SVG takes.
std::optional<SymbolDrawing> readSymbol(std::string_view svg);

} // namespace kivo
