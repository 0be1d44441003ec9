// SPDX-License-Identifier: MIT
#include "support/Path.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace kivo {
namespace {

Point operator+(Point a, Point b) {
    return {a.x + b.x, a.y + b.y};
}
Point operator-(Point a, Point b) {
    return {a.x - b.x, a.y - b.y};
}
Point operator*(Point a, double factor) {
    return {a.x * factor, a.y * factor};
}
double size(Point a) {
    return std::hypot(a.x, a.y);
}
Point between(Point a, Point b, double t) {
    return a + (b - a) * t;
}

using Cubic = std::array<Point, 4>;

Cubic cubicOf(Point from, const Path::Element& element) {
    return {from, element.control1, element.control2, element.end};
}

// The first part of a cubic, up to `t`, and the rest.
std::array<Cubic, 2> split(const Cubic& c, double t) {
    const Point a = between(c[0], c[1], t);
    const Point b = between(c[1], c[2], t);
    const Point d = between(c[2], c[3], t);
    const Point e = between(a, b, t);
    const Point f = between(b, d, t);
    const Point g = between(e, f, t);
    return {Cubic{c[0], a, e, g}, Cubic{g, f, d, c[3]}};
}

double speed(const Cubic& c, double t) {
    const double r = 1 - t;
    const Point velocity =
        (c[1] - c[0]) * (3 * r * r) + (c[2] - c[1]) * (6 * r * t) + (c[3] - c[2]) * (3 * t * t);
    return size(velocity);
}

// Gauss-Legendre with five points over [0, to].
double gauss(const Cubic& c, double to) {
    constexpr std::array<double, 5> places{-0.9061798459386640, -0.5384693101056831, 0, 0.5384693101056831,
                                           0.9061798459386640};
    constexpr std::array<double, 5> weights{0.2369268850561891, 0.4786286704993665, 0.5688888888888889,
                                            0.4786286704993665, 0.2369268850561891};
    double sum = 0;
    for (std::size_t i = 0; i < places.size(); ++i)
        sum += weights[i] * speed(c, to / 2 * (1 + places[i]));
    return sum * to / 2;
}

// Halves the cubic until halving changes nothing that matters.
double cubicLength(const Cubic& c, int depth = 0) {
    const auto [first, second] = split(c, 0.5);
    const double whole = gauss(c, 1);
    const double halves = gauss(first, 1) + gauss(second, 1);
    if (depth >= 12 || !(std::abs(whole - halves) > 1e-9 * (1 + halves)))
        return halves;
    return cubicLength(first, depth + 1) + cubicLength(second, depth + 1);
}

// Where on the cubic its first `length` points end: Newton's steps, kept within the bracket.
double parameterAt(const Cubic& c, double length, double whole) {
    if (length >= whole)
        return 1;
    double low = 0;
    double high = 1;
    double t = length / whole;
    for (int step = 0; step < 50; ++step) {
        const double error = cubicLength(split(c, t)[0]) - length;
        if (std::abs(error) < 1e-9 * whole)
            break;
        (error < 0 ? low : high) = t;
        const double rate = speed(c, t);
        const double guess = rate > 0 ? t - error / rate : -1;
        t = guess > low && guess < high ? guess : (low + high) / 2;
    }
    return t;
}

double elementLength(Point from, const Path::Element& element) {
    switch (element.kind) {
    case Path::Kind::move:
        return 0;
    case Path::Kind::line:
    case Path::Kind::close:
        return size(element.end - from);
    case Path::Kind::cubic:
        return cubicLength(cubicOf(from, element));
    }
    return 0;
}

// How many equal steps of the parameter keep the chords within `tolerance`, from the second differences.
int chords(const Cubic& c, double tolerance) {
    const double bend = std::max(size(c[0] - c[1] * 2 + c[2]), size(c[1] - c[2] * 2 + c[3]));
    const double count = std::ceil(std::sqrt(0.75 * bend / tolerance));
    return count > 1 ? static_cast<int>(std::min(count, 10'000.0)) : 1; // also where it is no number
}

} // namespace

void Path::move(Point to) {
    elements_.push_back({Kind::move, {}, {}, to});
}

void Path::line(Point to) {
    if (elements_.empty())
        move(to);
    else if (!(to == pen()))
        elements_.push_back({Kind::line, {}, {}, to});
}

void Path::cubic(Point control1, Point control2, Point to) {
    if (elements_.empty())
        move(control1);
    elements_.push_back({Kind::cubic, control1, control2, to});
}

void Path::arc(Point corner, Point next, double radius) {
    const Point from = pen();
    const Point in = from - corner;
    const Point out = next - corner;
    const double inSize = size(in);
    const double outSize = size(out);
    const double cross = in.x * out.y - in.y * out.x;
    if (!(radius > 0) || !(std::abs(cross) > 1e-12 * inSize * outSize)) {
        line(corner);
        return;
    }
    const double angle = std::atan2(std::abs(cross), in.x * out.x + in.y * out.y); // between both lines
    const double reach = radius / std::tan(angle / 2);
    const Point inward = in * (1 / inSize);
    const Point outward = out * (1 / outSize);
    Point start = corner + inward * reach;
    // A start that is the pen but for rounding makes no line.
    if (size(start - from) < 1e-9 * (1 + radius))
        start = from;
    line(start);
    const Point middle = inward + outward;
    const Point centre = corner + middle * (radius / std::sin(angle / 2) / size(middle));

    const double turn = std::numbers::pi - angle;
    const int pieces = std::max(1, static_cast<int>(std::ceil(turn / (std::numbers::pi / 4) - 1e-9)));
    const double step = (cross < 0 ? 1 : -1) * turn / pieces;
    const double handle = 4.0 / 3 * std::tan(step / 4);
    const Point end = corner + outward * reach;
    Point spoke = start - centre;
    for (int piece = 1; piece <= pieces; ++piece) {
        const Point turned{spoke.x * std::cos(step) - spoke.y * std::sin(step),
                           spoke.x * std::sin(step) + spoke.y * std::cos(step)};
        const Point c1{spoke.x - handle * spoke.y, spoke.y + handle * spoke.x};
        const Point c2{turned.x + handle * turned.y, turned.y - handle * turned.x};
        cubic(centre + c1, centre + c2, piece == pieces ? end : centre + turned);
        spoke = turned;
    }
}

void Path::close() {
    if (!elements_.empty() && elements_.back().kind != Kind::close)
        elements_.push_back({Kind::close, {}, {}, subpathStart()});
}

void Path::add(const Path& other) {
    elements_.insert(elements_.end(), other.elements_.begin(), other.elements_.end());
}

Point Path::subpathStart() const {
    for (auto element = elements_.rbegin(); element != elements_.rend(); ++element) {
        if (element->kind == Kind::move)
            return element->end;
    }
    return {};
}

bool Path::isClosed() const {
    for (std::size_t i = 0; i < elements_.size(); ++i) {
        const bool endsSubpath = i + 1 == elements_.size() || elements_[i + 1].kind == Kind::move;
        if (endsSubpath && elements_[i].kind != Kind::close)
            return false;
    }
    return !elements_.empty();
}

std::vector<Path::Polyline> Path::flattened(double tolerance) const {
    std::vector<Polyline> result;
    Point from;
    for (const Element& element : elements_) {
        if (element.kind == Kind::move || result.empty() || result.back().isClosed) {
            result.push_back({{element.kind == Kind::move ? element.end : from}, false});
            if (element.kind == Kind::move) {
                from = element.end;
                continue;
            }
        }
        auto& points = result.back().points;
        if (element.kind == Kind::close) {
            if (points.size() > 1 && points.back() == points.front())
                points.pop_back();
            result.back().isClosed = true;
        } else if (element.kind == Kind::line) {
            points.push_back(element.end);
        } else {
            const Cubic c = cubicOf(from, element);
            const int count = chords(c, tolerance);
            for (int i = 1; i < count; ++i)
                points.push_back(split(c, static_cast<double>(i) / count)[0][3]);
            points.push_back(element.end);
        }
        from = element.end;
    }
    return result;
}

double Path::length() const {
    double sum = 0;
    Point from;
    for (const Element& element : elements_) {
        sum += elementLength(from, element);
        from = element.end;
    }
    return sum;
}

Path Path::trimmed(double from, double to) const {
    if (from <= 0 && to >= 1)
        return *this;
    if (!(from < to) || to <= 0 || from >= 1)
        return {};
    const double whole = length();
    const double first = std::max(from, 0.0) * whole;
    const double last = std::min(to, 1.0) * whole;
    Path result;
    bool isDrawing = false;
    double passed = 0;
    Point pen;
    for (const Element& element : elements_) {
        const double length = elementLength(pen, element);
        const double begin = std::max(first - passed, 0.0);
        const double end = std::min(last - passed, length);
        passed += length;
        const Point start = pen;
        pen = element.end;
        if (element.kind == Kind::move)
            isDrawing = false;
        if (!(begin < end))
            continue;
        const bool isWhole = begin == 0 && end == length;
        if (element.kind == Kind::cubic) {
            Cubic part = cubicOf(start, element);
            if (!isWhole) {
                const double t1 = parameterAt(part, end, length);
                const double t0 = begin > 0 ? parameterAt(part, begin, length) : 0;
                part = split(part, t1)[0];
                part = split(part, t1 > 0 ? t0 / t1 : 0)[1];
            }
            if (!isDrawing)
                result.move(part[0]);
            result.cubic(part[1], part[2], part[3]);
        } else {
            if (!isDrawing)
                result.move(between(start, element.end, begin / length));
            result.line(isWhole ? element.end : between(start, element.end, end / length));
        }
        isDrawing = true;
    }
    return result;
}

} // namespace kivo
