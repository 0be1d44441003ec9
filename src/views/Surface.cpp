// SPDX-License-Identifier: MIT
#include "views/Surface.h"

#include "overlay/IslandShape.h"
#include "views/Convert.h"
#include "views/Typeface.h"

#include <QFontMetricsF>
#include <QHash>
#include <QPainterPath>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace kivo {

namespace {

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

QColor mixed(const QColor& color, const QColor& ground, double share) {
    auto mix = [share](int above, int below) {
        return static_cast<int>(std::lround(above * share + below * (1 - share)));
    };
    return {mix(color.red(), ground.red()), mix(color.green(), ground.green()),
            mix(color.blue(), ground.blue())};
}

double contrast(const QColor& first, const QColor& second) {
    const double a = luminance(first);
    const double b = luminance(second);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

// Qt's own highlight says nothing about the desktop's wishes.
QColor accent(const QPalette& palette) {
    const QColor usual(61, 155, 255);
    const QColor told = palette.color(QPalette::Active, QPalette::Highlight);
    for (const QColor& plain : {QColor(48, 140, 198), QColor(0, 0, 128)}) {
        if (told == plain)
            return usual;
    }
    // A grey one would look switched off.
    return told.saturation() < 60 ? usual : told;
}

bool isDigit(QChar character) {
    return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

double digitWidth(const QFont& font, const QFontMetricsF& metrics) {
    static QHash<QFont, double> widths;
    double& width = widths[font];
    if (width == 0) {
        for (char digit = '0'; digit <= '9'; ++digit)
            width = std::max(width, metrics.horizontalAdvance(QLatin1Char(digit)));
    }
    return width;
}

// Calls `draw` with every digit, and with what stands between digits, and where each begins; the whole width.
template <typename Draw>
double walkNumber(const QString& text, const QFont& font, const Draw& draw) {
    const QFontMetricsF metrics(font);
    const double digit = digitWidth(font, metrics);
    double left = 0;
    for (qsizetype start = 0, end = 0; start < text.size(); start = end) {
        end = start + 1;
        const bool isOneDigit = isDigit(text[start]);
        while (!isOneDigit && end < text.size() && !isDigit(text[end]))
            ++end;
        const QString run = text.mid(start, end - start);
        const double width = metrics.horizontalAdvance(run);
        draw(run, isOneDigit ? left + (digit - width) / 2 : left);
        left += isOneDigit ? digit : width;
    }
    return left;
}

} // namespace

Surface surfaceFor(const QPalette& palette) {
    Surface surface;
    surface.isDark = luminance(palette.color(QPalette::Window)) < 0.25;
    surface.window = surface.isDark ? QColor(31, 32, 35) : QColor(246, 246, 247);
    surface.card = surface.isDark ? QColor(42, 43, 47) : QColor(255, 255, 255);
    surface.hairline = surface.isDark ? withAlpha(Qt::white, 0.08) : withAlpha(Qt::black, 0.07);
    surface.ink = surface.isDark ? QColor(245, 245, 247) : QColor(28, 28, 30);
    // The weakest that can still be read on the window as well as on a card.
    surface.secondary = mixed(surface.ink, surface.card, surface.isDark ? 0.66 : 0.72);
    surface.tertiary = mixed(surface.ink, surface.card, surface.isDark ? 0.54 : 0.64);
    surface.track = withAlpha(surface.ink, surface.isDark ? 0.12 : 0.09);
    surface.accent = accent(palette);
    return surface;
}

void colorTips(const Surface& surface) {
    QPalette palette;
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::ToolTipBase, surface.card);
        palette.setColor(group, QPalette::ToolTipText, surface.secondary); // also their frame
    }
    QToolTip::setPalette(palette);
    QToolTip::setFont(typeface(12, QFont::Normal));
}

QColor toQColor(const Ink& ink, const Surface& surface) {
    if (const auto* color = std::get_if<Color>(&ink))
        return toQColor(*color);
    return std::get<SurfaceInk>(ink) == SurfaceInk::primary ? surface.ink : surface.secondary;
}

QColor onCard(const QColor& color, double share, const Surface& surface) {
    return mixed(color, surface.card, share);
}

QColor readable(const QColor& color, const QColor& ground) {
    const QColor end = luminance(ground) > 0.18 ? Qt::black : Qt::white;
    QColor result = color;
    for (double share = 0; contrast(result, ground) < 4.5 && share < 1; share += 0.04)
        result = mixed(end, color, share);
    return result;
}

QPainterPath roundedPath(const QRectF& box, double radius) {
    return toQPainterPath(IslandShape{radius, radius}.path({box.x(), box.y(), box.width(), box.height()}));
}

void paintCard(QPainter& painter, const QRectF& box, double radius, const Surface& surface) {
    painter.fillPath(roundedPath(box, radius), surface.card);
}

void paintBar(QPainter& painter, const QRectF& box, double share, const QColor& tint, const Surface& surface) {
    const double radius = box.height() / 2;
    painter.setPen(Qt::NoPen);
    painter.setBrush(surface.track);
    painter.drawRoundedRect(box, radius, radius);
    if (share <= 0)
        return;
    // Never narrower than its two round ends.
    const double width = std::max(box.width() * std::min(share, 1.0), box.height());
    painter.setBrush(tint);
    painter.drawRoundedRect(QRectF(box.x(), box.y(), width, box.height()), radius, radius);
}

void paintFocusRing(QPainter& painter, const QRectF& box, double radius, const Surface& surface) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(surface.accent, 2));
    painter.drawPath(roundedPath(box.adjusted(1, 1, -1, -1), std::max(radius - 1, 1.0)));
}

void paintText(QPainter& painter, const QRectF& box, Qt::Alignment alignment, const QString& text,
               const QFont& font, const QColor& color) {
    painter.setFont(font);
    painter.setPen(color);
    const QFontMetricsF metrics(font);
    // A hair of room: rounding must not turn a text that fits into one that does not.
    const QString shown = metrics.horizontalAdvance(text) > box.width() + 0.5
                              ? metrics.elidedText(text, Qt::ElideRight, box.width())
                              : text;
    painter.drawText(box, static_cast<int>(alignment) | Qt::TextSingleLine | Qt::TextDontClip, shown);
}

double textWidth(const QString& text, const QFont& font) {
    return QFontMetricsF(font).horizontalAdvance(text);
}

void paintNumber(QPainter& painter, const QRectF& box, Qt::Alignment alignment, const QString& text,
                 const QFont& font, const QColor& color) {
    const QFontMetricsF metrics(font);
    const double room = box.width() - numberWidth(text, font);
    const double left = box.x() + (alignment & Qt::AlignRight     ? room
                                   : alignment & Qt::AlignHCenter ? room / 2
                                                                  : 0);
    const double baseline = box.y() + (box.height() - metrics.height()) / 2 + metrics.ascent();
    painter.setFont(font);
    painter.setPen(color);
    walkNumber(text, font,
               [&](const QString& run, double at) { painter.drawText(QPointF(left + at, baseline), run); });
}

double numberWidth(const QString& text, const QFont& font) {
    return walkNumber(text, font, [](const QString&, double) {});
}

} // namespace kivo
