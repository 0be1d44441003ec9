// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

#include <vector>

class QPainter;

namespace kivo {

// A blur of radius r is a Gaussian of deviation r / 2: at r a hard edge has faded.
inline double blurDeviation(double radius) {
    return radius / 2;
}

// The image (premultiplied ARGB) blurred with a deviation in pixels; it must have room for its light around.
QImage blurred(const QImage& image, double deviation);

// A picture at several blur radii, made once, so that it can sharpen or dissolve over a few frames without a
// blur per frame: radii between two levels are a mix of both.
class SoftImage {
public:
    SoftImage() = default;
    // `margin` transparent points surround the picture in `image`, whose device pixel ratio counts.
    SoftImage(QImage image, double margin, double maxRadius);

    bool isNull() const { return levels_.empty(); }
    // Without the margin, in points.
    QSizeF size() const;
    // With its top left corner (without the margin) at `position`.
    void paint(QPainter& painter, QPointF position, double radius, double opacity) const;

private:
    std::vector<QImage> levels_; // radii 0 … maxRadius in equal steps
    double margin_ = 0;
    double maxRadius_ = 0;
};

} // namespace kivo
