// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>

#include <array>
#include <cstddef>

class QPainter;

namespace kivo {

// A blur of radius r is a Gaussian of deviation r / 2: at r a hard edge has faded.
inline double blurDeviation(double radius) {
    return radius / 2;
}

// The image (premultiplied ARGB) blurred with a deviation in pixels; it must have room for its light around.
QImage blurred(const QImage& image, double deviation);

// A picture at several blur radii, each made when it is first needed and kept, so that it can sharpen or
// dissolve over a few frames without a blur per frame: radii between two levels are a mix of both.
class SoftImage {
public:
    SoftImage() = default;
    // `margin` transparent points surround the picture in `image`, whose device pixel ratio counts.
    SoftImage(QImage image, double margin, double maxRadius);

    bool isNull() const { return levels_[0].isNull(); }
    // Without the margin, in points.
    QSizeF size() const;
    // With its top left corner (without the margin) at `position`.
    void paint(QPainter& painter, QPointF position, double radius, double opacity) const;
    // Makes one level that radii up to this need; false when all are there.
    bool prepareOne(double radius) const;

private:
    static constexpr std::size_t levelCount = 5;
    const QImage& level(std::size_t index) const;

    mutable std::array<QImage, levelCount> levels_; // radii 0 … maxRadius in equal steps
    double margin_ = 0;
    double maxRadius_ = 0;
};

} // namespace kivo
