// SPDX-License-Identifier: MIT
#pragma once

#include "support/Color.h"
#include "support/Geometry.h"
#include "support/Path.h"

#include <QColor>
#include <QPainterPath>
#include <QRectF>
#include <QString>

#include <cmath>
#include <string_view>

// The system's values as Qt's.
namespace kivo {

inline QColor toQColor(Color color, double opacity = 1) {
    QColor result(color.red, color.green, color.blue);
    result.setAlphaF(static_cast<float>(opacity));
    return result;
}

inline QRectF toQRectF(const Rect& rect) {
    return {rect.x, rect.y, rect.width, rect.height};
}

inline QPointF toQPointF(Point point) {
    return {point.x, point.y};
}

inline QPainterPath toQPainterPath(const Path& path) {
    QPainterPath result;
    for (const Path::Element& element : path.elements()) {
        switch (element.kind) {
        case Path::Kind::move:
            result.moveTo(toQPointF(element.end));
            break;
        case Path::Kind::line:
            result.lineTo(toQPointF(element.end));
            break;
        case Path::Kind::cubic:
            result.cubicTo(toQPointF(element.control1), toQPointF(element.control2), toQPointF(element.end));
            break;
        case Path::Kind::close:
            result.closeSubpath();
            break;
        }
    }
    return result;
}

inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// Relative luminance, 0 (black) to 1 (white).
inline double luminance(const QColor& color) {
    auto linear = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

} // namespace kivo
