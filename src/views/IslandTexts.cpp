// SPDX-License-Identifier: MIT
#include "views/IslandTexts.h"

#include "views/Convert.h"
#include "views/Typeface.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kivo {

namespace {

constexpr double sidePadding = 24;
constexpr double glyphSide = 32;
constexpr double glyphGap = 14;
// The lines stand a little low in their area, so that ascenders clear a notch of the usual height.
constexpr double drop = 1;
constexpr QSizeF contentSize{372, 66};
// Room around a painting for its blur.
constexpr double margin = 12;
constexpr double maxBlur = 8;

QImage transparentImage(QSizeF size, double scale) {
    QImage image(static_cast<int>(std::ceil((size.width() + 2 * margin) * scale)),
                 static_cast<int>(std::ceil((size.height() + 2 * margin) * scale)),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    return image;
}

// A baseline on whole device pixels keeps the stems of the letters sharp.
double snapped(double value, double scale) {
    return std::round(value * scale) / scale;
}

struct Line {
    QFont font;
    QColor ink;
    QString text;
};

SoftImage paintLine(const Line& line, double width, double scale) {
    const QFontMetricsF metrics(line.font);
    const QString text = metrics.elidedText(line.text, Qt::ElideRight, width);
    const double length = std::min(std::ceil(metrics.horizontalAdvance(text)) + 2, width + 2);
    QImage image = transparentImage({length, std::ceil(metrics.height())}, scale);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(line.font);
    painter.setPen(line.ink);
    painter.drawText(QPointF(margin, margin + snapped(metrics.ascent(), scale)), text);
    painter.end();
    return SoftImage(std::move(image), margin, maxBlur);
}

} // namespace

void paintLevelRing(QPainter& painter, const QRectF& box, double progress, Color tint) {
    constexpr double width = 3;
    const QRectF circle = box.adjusted(width / 2, width / 2, -width / 2, -width / 2);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(toQColor(tint, 0.14), width));
    painter.drawEllipse(circle);
    const double share = std::clamp(progress, 0.0, 1.0);
    if (share > 0) {
        painter.setPen(QPen(toQColor(tint), width, Qt::SolidLine, Qt::RoundCap));
        painter.drawArc(circle, 90 * 16, -static_cast<int>(std::lround(share * 360 * 16)));
    }
    const QString number = QString::number(std::lround(progress * 100));
    // Three digits would touch the ring at the size of two.
    const QFont font = typeface(number.size() > 2 ? 9 : 11, QFont::Bold, true);
    const QFontMetricsF metrics(font);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(QPointF(box.center().x() - metrics.horizontalAdvance(number) / 2,
                             box.center().y() + metrics.capHeight() / 2),
                     number);
    painter.restore();
}

SoftImage IslandTexts::makeGlyph(const IslandContent& content, double scale) {
    QImage glyph = transparentImage({glyphSide, glyphSide}, scale);
    QPainter painter(&glyph);
    const QRectF box(margin, margin, glyphSide, glyphSide);
    if (const auto* symbol = std::get_if<IslandContent::Symbol>(&content.leading))
        symbols_.paint(painter, symbol->name, box, Qt::white);
    else
        paintLevelRing(painter, box, content.progress, content.tint);
    painter.end();
    symbols_.clear();
    return SoftImage(std::move(glyph), margin, maxBlur);
}

IslandTexts::Painting IslandTexts::make(const IslandContent& content, Part part, double scale) {
    if (part == Part::glyph)
        return {makeGlyph(content, scale), {sidePadding, (contentSize.height() - glyphSide) / 2}};
    Line title{typeface(17, QFont::DemiBold, true), Qt::white, toQString(content.title)};
    title.font.setLetterSpacing(QFont::AbsoluteSpacing, -0.2);
    QColor soft(Qt::white);
    soft.setAlphaF(0.6F);
    const Line subtitle{typeface(13, QFont::Medium), soft, toQString(content.subtitle)};
    const double titleHeight = QFontMetricsF(title.font).height();
    const double blockHeight = titleHeight + QFontMetricsF(subtitle.font).height();
    const double top = (contentSize.height() - blockHeight) / 2 + drop;
    const double left = sidePadding + glyphSide + glyphGap;
    const double width = contentSize.width() - left - sidePadding;
    if (part == Part::title)
        return {paintLine(title, width, scale), {left, top}};
    return {paintLine(subtitle, width, scale), {left, top + titleHeight}};
}

const IslandTexts::Painting& IslandTexts::painting(const IslandContentLayer& layer, Part part, double scale) {
    Kept& kept = kept_[layer.token];
    if (kept.scale != scale)
        kept = {scale, {}};
    Painting& painting = kept.paintings[static_cast<std::size_t>(part)];
    if (painting.image.isNull())
        painting = make(layer.content, part, scale);
    return painting;
}

bool IslandTexts::prepareOne(const IslandFrame& island, double scale) {
    const std::pair<Part, const RiseIn*> parts[] = {
        {Part::glyph, &island.leading}, {Part::title, &island.title}, {Part::subtitle, &island.subtitle}};
    for (const IslandContentLayer& layer : island.layers) {
        for (const auto& [part, pose] : parts) {
            const Kept& kept = kept_[layer.token];
            const bool isMissing =
                kept.scale != scale || kept.paintings[static_cast<std::size_t>(part)].image.isNull();
            const SoftImage& image = painting(layer, part, scale).image;
            if (isMissing || image.prepareOne(std::hypot(pose->blur, layer.blur)))
                return true;
        }
    }
    return false;
}

void IslandTexts::keepOnly(const std::vector<IslandContentLayer>& layers) {
    std::erase_if(kept_, [&layers](const auto& entry) {
        return std::none_of(layers.begin(), layers.end(),
                            [&entry](const auto& layer) { return layer.token == entry.first; });
    });
}

} // namespace kivo
