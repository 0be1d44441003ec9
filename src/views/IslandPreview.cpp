// SPDX-License-Identifier: MIT
#include "views/IslandPreview.h"

#include "support/Text.h"
#include "views/Convert.h"
#include "views/Surface.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace kivo {

IslandPreview::IslandPreview(Kit& kit) : kit_(kit), demo_(kit.loop, kit.workspace) {
    setAccessibleName(toQString(localized(demoScene::accessibilityLabel)));
    setMaximumSize(sizeHint());
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    change_ = demo_.onChange([this] { step(); });
}

QSize IslandPreview::sizeHint() const {
    return {static_cast<int>(demoScene::framedSize.width), static_cast<int>(demoScene::framedSize.height)};
}

int IslandPreview::heightForWidth(int width) const {
    const double share = std::min(width / demoScene::framedSize.width, 1.0);
    return static_cast<int>(std::lround(demoScene::framedSize.height * share));
}

void IslandPreview::showEvent(QShowEvent* /*event*/) {
    demo_.start();
}

void IslandPreview::hideEvent(QHideEvent* /*event*/) {
    demo_.stop();
    nextFrame_.cancel();
    painter_.release();
}

void IslandPreview::step() {
    if (!isVisible())
        return;
    update();
    if (demo_.isMoving(kit_.loop.now()))
        nextFrame_ = kit_.loop.after(windowFrame, [this] { step(); });
}

// On a layer of its own, as an island's window is on a screen. Qt paints on no image with less than a pixel a
// point, so a small one is painted larger.
void IslandPreview::paintIsland(QPainter& painter) {
    const double scale = std::max(painter.deviceTransform().m11(), 1.0);
    const IslandFrame frame = demo_.frame(kit_.loop.now());
    const QRectF bounds = IslandPainter::bounds(frame).toAlignedRect();
    QImage layer((bounds.size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    layer.setDevicePixelRatio(scale);
    layer.fill(Qt::transparent);
    QPainter onLayer(&layer);
    onLayer.translate(-bounds.topLeft());
    painter_.paint(onLayer, frame, scale);
    onLayer.end();
    painter.drawImage(bounds.topLeft(), layer);
}

void IslandPreview::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QRectF framed(rect());
    const QPainterPath outline = roundedPath(framed, demoScene::cornerRadius);
    painter.setClipPath(outline);
    painter.save();
    const double scale = width() / demoScene::framedSize.width * demoScene::scale;
    painter.scale(scale, scale);
    const QRectF scene(0, 0, demoScene::size.width, demoScene::size.height);
    QLinearGradient sky(scene.topLeft(), scene.bottomLeft());
    sky.setColorAt(0, toQColor(demoScene::skyTop));
    sky.setColorAt(1, toQColor(demoScene::skyBottom));
    painter.fillRect(scene, sky);
    painter.fillRect(toQRectF(demoScene::menuBar),
                     toQColor(demoScene::menuBarColor, demoScene::menuBarOpacity));
    painter.fillPath(toQPainterPath(IslandShape{0, demoScene::notchRadius}.path(demoScene::notch)), Qt::black);
    paintIsland(painter);
    painter.restore();
    painter.setClipping(false);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(255, 255, 255, static_cast<int>(std::lround(255 * demoScene::outlineOpacity))),
                        demoScene::outlineWidth));
    const double half = demoScene::outlineWidth / 2;
    painter.drawPath(roundedPath(framed.adjusted(half, half, -half, -half), demoScene::cornerRadius - half));
}

} // namespace kivo
