// SPDX-License-Identifier: MIT
#pragma once

#include "views/SymbolDrawing.h"

#include <QColor>
#include <QPainter>
#include <QRectF>

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace kivo {

// Draws the vector symbols that the system names ("bolt.fill", "airpodspro", …) in one colour, sharp at any
// size and scale. A name without a drawing draws nothing. Drawings that were read are kept until `clear`.
class SymbolPainter {
public:
    static bool has(std::string_view name);

    // Fills the largest centred square of `box`; the drawing itself keeps a twelfth of it free around.
    void paint(QPainter& painter, std::string_view name, const QRectF& box, const QColor& tint);
    void clear() { drawings_.clear(); }

private:
    const SymbolDrawing* drawing(std::string_view name);

    std::map<std::string, SymbolDrawing, std::less<>> drawings_;
};

} // namespace kivo
