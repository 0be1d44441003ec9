// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

class QSvgRenderer;

namespace kivo {

// Draws the vector symbols that the system names ("bolt.fill", "airpodspro", …) in one colour, sharp at any
// size and scale. A name without a drawing draws nothing. Parsed drawings are kept until `clear`.
class SymbolPainter {
public:
    SymbolPainter();
    ~SymbolPainter();
    SymbolPainter(const SymbolPainter&) = delete;
    SymbolPainter& operator=(const SymbolPainter&) = delete;

    static bool has(std::string_view name);

    // Fills the largest centred square of `box`; the drawing itself keeps a twelfth of it free around.
    void paint(QPainter& painter, std::string_view name, const QRectF& box, const QColor& tint);
    void clear();

private:
    QSvgRenderer* renderer(std::string_view name, const QColor& tint);

    std::map<std::pair<std::string, unsigned>, std::unique_ptr<QSvgRenderer>> renderers_;
};

} // namespace kivo
