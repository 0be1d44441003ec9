// SPDX-License-Identifier: MIT
#pragma once

#include "support/Geometry.h"

#include <vector>

namespace kivo {

// Lines and cubics, in subpaths that are open or closed. Lengths and fractions are along the curve, over all
// subpaths in turn, the closing lines included.
class Path {
public:
    enum class Kind { move, line, cubic, close };
    struct Element {
        Kind kind;
        Point control1; // of a cubic
        Point control2;
        Point end; // where the pen is afterwards
        bool operator==(const Element&) const = default;
    };
    // A subpath of straight lines alone. A closed one does not repeat its first point.
    struct Polyline {
        std::vector<Point> points;
        bool isClosed = false;
    };

    void move(Point to);
    // A line to where the pen is already adds nothing.
    void line(Point to);
    void cubic(Point control1, Point control2, Point to);
    // The circular arc with `radius` that touches the line from the pen to `corner` and the line from there
    // to `next`, and the line to its beginning. Without room for an arc (no radius, no angle): a line to
    // `corner`. The points are circular within 0.000005 of the radius.
    void arc(Point corner, Point next, double radius);
    void close();
    void add(const Path& other);

    const std::vector<Element>& elements() const { return elements_; }
    bool isEmpty() const { return elements_.empty(); }
    // Whether there is anything and every subpath is closed.
    bool isClosed() const;
    bool operator==(const Path&) const = default;

    // No point of the path is further than `tolerance` from the lines.
    std::vector<Polyline> flattened(double tolerance) const;
    double length() const;
    // The part between two fractions of the length, each held within 0…1; empty when `from` is not below
    // `to`. The whole path stays as it is, closed subpaths included; a part of a closed one is open.
    Path trimmed(double from, double to) const;

private:
    Point pen() const { return elements_.empty() ? Point{} : elements_.back().end; }
    Point subpathStart() const;

    std::vector<Element> elements_;
};

} // namespace kivo
