// SPDX-License-Identifier: MIT
#include "views/SymbolDrawing.h"

#include <QTransform>

#include <charconv>
#include <cmath>
#include <numbers>

namespace kivo {

namespace {

// The words of path data: command letters, numbers and the flags of arcs.
class Words {
public:
    explicit Words(std::string_view text) : text_(text) {}

    bool isAtEnd() {
        skip();
        return text_.empty();
    }
    // Nothing when a number comes next: the last command goes on.
    std::optional<char> command() {
        skip();
        if (text_.empty() || !std::isalpha(static_cast<unsigned char>(text_.front())))
            return std::nullopt;
        const char found = text_.front();
        text_.remove_prefix(1);
        return found;
    }
    double number() {
        skip();
        if (text_.starts_with('+'))
            text_.remove_prefix(1);
        double value = 0;
        const auto [end, error] = std::from_chars(text_.data(), text_.data() + text_.size(), value);
        if (error != std::errc())
            return fail();
        text_.remove_prefix(static_cast<std::size_t>(end - text_.data()));
        return value;
    }
    // Flags need nothing between them.
    bool flag() {
        skip();
        if (text_.empty() || (text_.front() != '0' && text_.front() != '1')) {
            fail();
            return false;
        }
        const bool value = text_.front() == '1';
        text_.remove_prefix(1);
        return value;
    }
    bool hasFailed() const { return hasFailed_; }
    double fail() {
        hasFailed_ = true;
        text_ = {};
        return 0;
    }

private:
    void skip() {
        const auto next = text_.find_first_not_of(" ,\t\r\n");
        text_.remove_prefix(next == std::string_view::npos ? text_.size() : next);
    }

    std::string_view text_;
    bool hasFailed_ = false;
};

class Pen {
public:
    explicit Pen(std::string_view data) : words_(data) {}

    std::optional<QPainterPath> draw() {
        char command = 0;
        while (!words_.isAtEnd()) {
            if (const auto given = words_.command())
                command = *given;
            else if (command == 0 || command == 'z' || command == 'Z')
                return std::nullopt;
            isRelative_ = std::islower(static_cast<unsigned char>(command)) != 0;
            step(static_cast<char>(std::toupper(static_cast<unsigned char>(command))));
            // Further points after a move are lines.
            if (command == 'M' || command == 'm')
                command = static_cast<char>(command - 'M' + 'L');
        }
        if (words_.hasFailed())
            return std::nullopt;
        return path_;
    }

private:
    QPointF point() {
        const double x = words_.number();
        const double y = words_.number();
        return isRelative_ ? at_ + QPointF(x, y) : QPointF(x, y);
    }
    double coordinate(double current) { return words_.number() + (isRelative_ ? current : 0); }
    // The control point that goes on smoothly from the last curve, if that was of this kind.
    QPointF smooth(char kind) const { return lastKind_ == kind ? 2 * at_ - lastControl_ : at_; }

    void step(char command) {
        char kind = 0;
        switch (command) {
        case 'M':
            at_ = point();
            path_.moveTo(at_);
            start_ = at_;
            break;
        case 'L':
            line(point());
            break;
        case 'H':
            line({coordinate(at_.x()), at_.y()});
            break;
        case 'V':
            line({at_.x(), coordinate(at_.y())});
            break;
        case 'C':
        case 'S': {
            const QPointF first = command == 'C' ? point() : smooth('C');
            lastControl_ = point();
            const QPointF end = point();
            path_.cubicTo(first, lastControl_, end);
            at_ = end;
            kind = 'C';
            break;
        }
        case 'Q':
        case 'T': {
            lastControl_ = command == 'Q' ? point() : smooth('Q');
            at_ = point();
            path_.quadTo(lastControl_, at_);
            kind = 'Q';
            break;
        }
        case 'A':
            arc();
            break;
        case 'Z':
            path_.closeSubpath();
            at_ = start_;
            break;
        default:
            words_.fail();
        }
        lastKind_ = kind;
    }

    void line(QPointF end) {
        at_ = end;
        path_.lineTo(at_);
    }

    // From the ends of an arc to its ellipse; then drawn on the unit circle.
    void arc() {
        const double width = std::abs(words_.number());
        const double height = std::abs(words_.number());
        const double turn = words_.number();
        const bool isLarge = words_.flag();
        const bool isClockwise = words_.flag();
        const QPointF end = point();
        if (!(width > 0) || !(height > 0) || end == at_) {
            line(end);
            return;
        }
        QTransform toEllipse;
        toEllipse.rotate(turn);
        toEllipse.scale(width, height);
        QTransform toCircle = toEllipse.inverted();
        QPointF from = toCircle.map(at_);
        QPointF to = toCircle.map(end);
        const QPointF half = (to - from) / 2;
        const double distance = std::hypot(half.x(), half.y());
        // An ellipse that is too small grows until it reaches.
        const double radius = std::max(distance, 1.0);
        const double rise = std::sqrt(std::max(radius * radius / (distance * distance) - 1, 0.0));
        const double side = isLarge == isClockwise ? -1 : 1;
        const QPointF centre = (from + to) / 2 + side * rise * QPointF(-half.y(), half.x());
        const auto degrees = [centre](QPointF place) {
            return std::atan2(centre.y() - place.y(), place.x() - centre.x()) * 180 / std::numbers::pi;
        };
        const double begin = degrees(from);
        double sweep = degrees(to) - begin;
        if (isClockwise && sweep > 0)
            sweep -= 360;
        else if (!isClockwise && sweep < 0)
            sweep += 360;
        QPainterPath circle;
        const QRectF box(centre - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius));
        circle.arcMoveTo(box, begin);
        circle.arcTo(box, begin, sweep);
        path_.connectPath(toEllipse.map(circle));
        at_ = end;
    }

    Words words_;
    QPainterPath path_;
    QPointF at_, start_, lastControl_;
    char lastKind_ = 0;
    bool isRelative_ = false;
};

std::optional<std::string_view> attribute(std::string_view text, std::string_view opening) {
    const auto start = text.find(opening);
    if (start == std::string_view::npos)
        return std::nullopt;
    text.remove_prefix(start + opening.size());
    const auto end = text.find('"');
    return end == std::string_view::npos ? std::nullopt : std::optional(text.substr(0, end));
}

} // namespace

std::optional<SymbolDrawing> readSymbol(std::string_view svg) {
    const auto box = attribute(svg, " viewBox=\"");
    const auto data = attribute(svg, " d=\"");
    if (!box || !data)
        return std::nullopt;
    Words numbers(*box);
    const double x = numbers.number(), y = numbers.number();
    const double width = numbers.number(), height = numbers.number();
    auto outline = Pen(*data).draw();
    if (numbers.hasFailed() || !(width > 0) || !(height > 0) || !outline || outline->isEmpty())
        return std::nullopt;
    outline->setFillRule(svg.find("fill-rule=\"evenodd\"") == std::string_view::npos ? Qt::WindingFill
                                                                                     : Qt::OddEvenFill);
    return SymbolDrawing{{x, y, width, height}, *std::move(outline)};
}

} // namespace kivo
