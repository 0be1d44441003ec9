// SPDX-License-Identifier: MIT
#pragma once

#include "views/Convert.h"
#include "views/IslandFilm.h"

#include <QImage>

namespace kivo {

inline const IslandMetrics notchedScreen{{1440, 900}, 200, 38};
inline const IslandMetrics plainScreen{{1440, 900}, 0, 24};
inline constexpr Color green{52, 211, 91};
inline constexpr Color red{255, 59, 48};

inline IslandContent batteryContent(std::int64_t level, Color tint = green) {
    IslandContent content;
    content.subjectID = "mac";
    content.title = "Unplugged";
    content.subtitle = "3 h left";
    content.leading = IslandContent::Battery{level, false};
    content.progress = static_cast<double>(level) / 100;
    content.tint = tint;
    content.dwell = seconds(3);
    return content;
}

// The whole screen's panel, clear where nothing shows.
inline QImage photograph(IslandFilm& film, double scale = 1) {
    QImage image((QSizeF(1440, 900) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    film.paint(painter, scale);
    return image;
}

// At a point of the screen.
inline QColor colorAt(const QImage& image, double x, double y) {
    const double scale = image.devicePixelRatio();
    return image.pixelColor(static_cast<int>(x * scale), static_cast<int>(y * scale));
}

inline bool isNear(const QColor& color, const QColor& expected, int tolerance = 12) {
    return std::abs(color.red() - expected.red()) <= tolerance &&
           std::abs(color.green() - expected.green()) <= tolerance &&
           std::abs(color.blue() - expected.blue()) <= tolerance &&
           std::abs(color.alpha() - expected.alpha()) <= tolerance;
}

inline std::string text(const QColor& color) {
    return color.name(QColor::HexArgb).toStdString();
}

} // namespace kivo
