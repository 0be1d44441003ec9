// SPDX-License-Identifier: MIT
#include "views/SymbolPainter.h"

#include <QFile>
#include <QSvgRenderer>

#include <algorithm>

// Outside any namespace, as the macro asks; a static library's resources are not registered by themselves.
static void registerSymbols() {
    Q_INIT_RESOURCE(kivo);
}

namespace kivo {

namespace {

// More than any view shows at once; a change of theme starts over rather than growing for ever.
constexpr std::size_t maxKept = 96;

QString path(std::string_view name) {
    return QStringLiteral(":/symbols/") + QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

} // namespace

SymbolPainter::SymbolPainter() {
    registerSymbols();
}

SymbolPainter::~SymbolPainter() = default;

bool SymbolPainter::has(std::string_view name) {
    registerSymbols();
    return QFile::exists(path(name));
}

void SymbolPainter::clear() {
    renderers_.clear();
}

QSvgRenderer* SymbolPainter::renderer(std::string_view name, const QColor& tint) {
    const std::pair<std::string, unsigned> key{std::string(name), tint.rgb()};
    if (auto found = renderers_.find(key); found != renderers_.end())
        return found->second.get();
    if (renderers_.size() >= maxKept)
        renderers_.clear();
    QFile file(path(name));
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    QByteArray svg = file.readAll();
    // The drawings carry no colour of their own, so the root's fill is everybody's.
    svg.replace("<svg ", "<svg fill=\"" + tint.name().toLatin1() + "\" ");
    auto made = std::make_unique<QSvgRenderer>(svg);
    if (!made->isValid())
        return nullptr;
    return renderers_.emplace(key, std::move(made)).first->second.get();
}

void SymbolPainter::paint(QPainter& painter, std::string_view name, const QRectF& box, const QColor& tint) {
    QSvgRenderer* drawing = renderer(name, tint);
    if (!drawing)
        return;
    const double side = std::min(box.width(), box.height());
    const QRectF square(box.center().x() - side / 2, box.center().y() - side / 2, side, side);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(painter.opacity() * tint.alphaF());
    drawing->render(&painter, square);
    painter.restore();
}

} // namespace kivo
