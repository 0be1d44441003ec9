// SPDX-License-Identifier: MIT
#pragma once

#include "support/Geometry.h"
#include "support/Path.h"

#include <QSize>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

namespace kivo {

// From points of a view to pixels of a picture; (0.5, 0.5) is the middle of the first pixel.
struct PixelGrid {
    double scale = 1; // pixels per point
    Point origin;     // where the point (0, 0) lies, in pixels

    Point toPixels(Point point) const { return {point.x * scale + origin.x, point.y * scale + origin.y}; }
};

// A path as straight lines between pixels; no point of it is further from them than a small part of a pixel.
// A closed one ends where it began.
std::vector<Point> toPixels(const Path& path, const PixelGrid& grid);

// A value for each pixel of a picture of which most are never touched: rows fall into blocks, and only blocks
// that are asked for are ever written. What lies beyond the greatest width stays untouched.
template <typename Value>
class SparsePixels {
public:
    static constexpr int blockWidth = 32;
    static constexpr int maxWidth = 64 * blockWidth;

    // All pixels have the value then.
    void reset(QSize size, Value value) {
        size_ = QSize(std::min(size.width(), maxWidth), size.height());
        value_ = value;
        const int blocks = (size_.width() + blockWidth - 1) / blockWidth;
        stride_ = static_cast<std::size_t>(blocks) * blockWidth;
        values_.resize(stride_ * static_cast<std::size_t>(size_.height()));
        touched_.assign(static_cast<std::size_t>(size_.height()), 0);
    }
    QSize size() const { return size_; }
    // A row in which the pixels from `from` up to `to` may be written and read.
    Value* touch(int row, int from, int to) {
        std::uint64_t& touched = touched_[static_cast<std::size_t>(row)];
        Value* values = &values_[static_cast<std::size_t>(row) * stride_];
        for (int block = from / blockWidth; block <= (to - 1) / blockWidth; ++block) {
            if (touched >> block & 1)
                continue;
            touched |= std::uint64_t(1) << block;
            std::fill_n(values + block * blockWidth, blockWidth, value_);
        }
        return values;
    }
    // Bit i: the row's pixels from i × blockWidth on.
    std::uint64_t touchedBlocks(int row) const { return touched_[static_cast<std::size_t>(row)]; }

private:
    QSize size_;
    Value value_{};
    std::size_t stride_ = 0;
    std::vector<Value> values_;
    std::vector<std::uint64_t> touched_;
};

// How much of each pixel a shape covers, by exact areas.
class CoverageMap {
public:
    // A picture may be this wide.
    static constexpr int maxWidth = SparsePixels<float>::maxWidth - 2;
    // All pixels are free then.
    void reset(QSize size) {
        size_ = size;
        // What is to the right of a picture changes pixels that nobody asks for.
        changes_.reset(size + QSize(2, 0), 0);
    }
    // Adds a closed outline that turns clockwise on the screen and does not cross itself.
    void add(const std::vector<Point>& outline);
    // Calls `fill(from, to, share)` for stretches of a row, from left to right, that are covered by the same
    // share, above 0 and up to 1.
    template <typename Fill>
    void eachStretch(int row, const Fill& fill);

private:
    void addWithinRow(double x, double end, double height, int row);

    QSize size_;
    SparsePixels<float> changes_; // from a pixel to the next one
};

template <typename Fill>
void CoverageMap::eachStretch(int row, const Fill& fill) {
    constexpr int width = SparsePixels<float>::blockWidth;
    float share = 0;
    int start = 0; // of what is covered as the pixel before it
    auto end = [&](int at) {
        const int stop = std::min(at, size_.width());
        if (stop > start && share > 1 / 512.F)
            fill(start, stop, std::min(share, 1.F));
        start = at;
    };
    for (std::uint64_t blocks = changes_.touchedBlocks(row); blocks; blocks &= blocks - 1) {
        const int from = std::countr_zero(blocks) * width;
        const float* changes = changes_.touch(row, from, from + width);
        for (int x = from; x < from + width; ++x) {
            if (changes[x] != 0) {
                end(x);
                share += changes[x];
            }
        }
    }
    end(size_.width());
}

// How far each pixel's middle is from the nearest of some lines, as far as a reach.
class DistanceMap {
public:
    // Squared distances are kept in steps of a sixteenth of a pixel.
    static constexpr double steps = 16;
    static double distance(std::size_t index);

    // Everything is out of reach (pixels) then.
    void reset(QSize size, double reach);
    void add(Point from, Point to);
    // Squared distances in steps, `limit()` where out of reach.
    SparsePixels<std::int16_t>& squares() { return squares_; }
    std::int16_t limit() const { return limit_; }
    // Calls `visit(x, square)` for each pixel of a row within reach.
    template <typename Visit>
    void eachNear(int row, const Visit& visit);

private:
    void keepNearer(std::int16_t* row, int from, int to, double start, double step, double down) const;

    double reach_ = 0;
    std::int16_t limit_ = 0;
    SparsePixels<std::int16_t> squares_;
};

template <typename Visit>
void DistanceMap::eachNear(int row, const Visit& visit) {
    constexpr int width = SparsePixels<std::int16_t>::blockWidth;
    for (std::uint64_t blocks = squares_.touchedBlocks(row); blocks; blocks &= blocks - 1) {
        const int from = std::countr_zero(blocks) * width;
        const int to = std::min(from + width, squares_.size().width());
        const std::int16_t* squares = squares_.touch(row, from, to);
        for (int x = from; x < to; ++x) {
            if (squares[x] < limit_)
                visit(x, squares[x]);
        }
    }
}

} // namespace kivo
