// SPDX-License-Identifier: MIT
#include "views/SymbolPainter.h"

#include <QFile>

#include <algorithm>

// Outside any namespace, as the macro asks; a static library's resources are not registered by themselves.
static void registerSymbols() {
    Q_INIT_RESOURCE(kivo);
}

namespace kivo {

namespace {

QString path(std::string_view name) {
    return QStringLiteral(":/symbols/") + QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

} // namespace

bool SymbolPainter::has(std::string_view name) {
    registerSymbols();
    return QFile::exists(path(name));
}

const SymbolDrawing* SymbolPainter::drawing(std::string_view name) {
    if (const auto found = drawings_.find(name); found != drawings_.end())
        return &found->second;
    registerSymbols();
    QFile file(path(name));
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    const QByteArray svg = file.readAll();
    auto read = readSymbol({svg.constData(), static_cast<std::size_t>(svg.size())});
    return read ? &drawings_.emplace(name, *std::move(read)).first->second : nullptr;
}

void SymbolPainter::paint(QPainter& painter, std::string_view name, const QRectF& box, const QColor& tint) {
    const SymbolDrawing* found = drawing(name);
    if (!found)
        return;
    const double side = std::min(box.width(), box.height());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(box.center().x() - side / 2, box.center().y() - side / 2);
    painter.scale(side / found->box.width(), side / found->box.height());
    painter.translate(-found->box.topLeft());
    painter.fillPath(found->outline, tint);
    painter.restore();
}

} // namespace kivo
