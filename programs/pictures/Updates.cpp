// SPDX-License-Identifier: MIT
#include "pictures/Updates.h"

#include "support/VirtualLoop.h"
#include "views/UpdateWindow.h"

#include <QApplication>
#include <QImage>
#include <QPalette>

#include <string>
#include <vector>

namespace {

using namespace kivo;

struct State {
    const char* name;
    UpdateFinding finding;
    QSize room{1264, 784};
};

UpdateFinding found(std::vector<UpdateFinding::Release> releases) {
    return {.kind = UpdateFinding::Kind::available,
            .current = "1.0.0",
            .releases = std::move(releases),
            .page = "https://example.org/kivo"};
}

std::vector<State> states() {
    const UpdateFinding::Release small{
        "1.1.0",
        {"Islands on sessions that are Wayland alone.",
         "Headphones that tell the level of each side show both of them, also while "
         "only one is out of its case.",
         "Quieter at night."}};
    std::vector<UpdateFinding::Release> many;
    for (int i = 9; i > 0; --i)
        many.push_back({"1." + std::to_string(i) + ".0", small.notes});
    using Kind = UpdateFinding::Kind;
    return {{"new", found({small})},
            {"without-notes", found({{"1.1.0", {}}})},
            {"many", found(many)},
            {"narrow", found(many), {280, 400}},
            {"current", {.kind = Kind::upToDate, .current = "1.0.0"}},
            {"unreachable", {.kind = Kind::unreachable, .current = "1.0.0"}},
            {"refused", {.kind = Kind::refused, .current = "1.0.0"}}};
}

} // namespace

void paintUpdates(const QDir& folder) {
    for (const State& state : states()) {
        for (const double scale : {1.0, 2.0}) {
            VirtualLoop loop;
            QImage both;
            for (const bool isDark : {false, true}) {
                QGuiApplication::setPalette({isDark ? QColor(45, 45, 48) : QColor(239, 239, 239)});
                UpdateWindow window(loop, updateNotice(state.finding));
                window.setFixedSize(window.sizeWithin(state.room));
                window.show();
                QCoreApplication::processEvents();
                if (both.isNull()) {
                    both = QImage(QSize(2 * window.width(), window.height()) * scale, QImage::Format_RGB32);
                    both.setDevicePixelRatio(scale);
                }
                QPainter painter(&both);
                window.render(&painter, QPoint(isDark ? window.width() : 0, 0), QRegion(),
                              QWidget::DrawChildren);
            }
            both.save(
                folder.filePath(QStringLiteral("update-%1-%2x.png").arg(QLatin1String(state.name)).arg(scale)));
        }
    }
}
