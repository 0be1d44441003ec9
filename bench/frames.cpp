// SPDX-License-Identifier: MIT
// What an island costs: a frame of it beside a plain painting of the same size, with and without the glow, and
// the memory after many. Time is virtual, every frame is painted and sent to the display. Prints "NAME NUMBER"
// lines: milliseconds of CPU a frame (of this program and the X server, whose number the environment names), or
// kilobytes.

#include "overlay/OverlayModel.h"
#include "platform/Workspace.h"
#include "support/VirtualLoop.h"
#include "views/PaintedWindow.h"
#include "views/QtOverlayPanel.h"

#include <QApplication>
#include <QPainter>
#include <QRasterWindow>
#include <QScreen>

#include <malloc.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace kivo;

constexpr int frames = 60; // the first second: it grows, the texts come, the ring fills
constexpr int rounds = 9;

double spent() {
    static const char* server = std::getenv("X_SERVER");
    const auto read = [](clockid_t clock) {
        timespec time{};
        clock_gettime(clock, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    };
    const double other = server ? read(static_cast<clockid_t>((~std::atoi(server) << 3) | 2)) : 0;
    return read(CLOCK_PROCESS_CPUTIME_ID) + other;
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

// The least that shows an island: a shadow painted before, a body, a ring, two lines.
class PlainIsland final : public QRasterWindow {
public:
    explicit PlainIsland(QRect place) {
        QSurfaceFormat format;
        format.setAlphaBufferSize(8);
        setFormat(format);
        setFlags(Qt::FramelessWindowHint | Qt::Tool | Qt::BypassWindowManagerHint |
                 Qt::WindowTransparentForInput);
        setGeometry(place);
        shadow_ = QImage(184, 184, QImage::Format_ARGB32_Premultiplied);
        shadow_.fill(Qt::transparent);
        QPainter painter(&shadow_);
        for (int i = 0; i < 20; ++i) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(48, 209, 88, 6));
            painter.drawRoundedRect(QRect(40, 40, 104, 104).adjusted(-i, -i, i, i), 30 + i, 30 + i);
        }
    }
    void paintAt(double share) {
        share_ = share;
        update();
        // At once, not when Qt's own timer thinks it time.
        QEvent now(QEvent::UpdateRequest);
        QCoreApplication::sendEvent(this, &now);
        QCoreApplication::processEvents();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(QRect({}, size()), Qt::transparent);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        const double wide = 140 + 232 * share_, middle = width() / 2.0;
        const QRectF shade(middle - wide / 2 - 40, 0, wide + 80, 184);
        painter.drawImage(QRectF(shade.left(), 0, 70, 184), shadow_, QRectF(0, 0, 70, 184));
        painter.drawImage(QRectF(shade.left() + 70, 0, shade.width() - 140, 184), shadow_,
                          QRectF(70, 0, 44, 184));
        painter.drawImage(QRectF(shade.right() - 70, 0, 70, 184), shadow_, QRectF(114, 0, 70, 184));
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(QRectF(middle - wide / 2, 40, wide, 104), 30, 30);
        const double left = middle - wide / 2;
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(QColor(0x33, 0x33, 0x33), 4));
        painter.drawEllipse(QPointF(left + 46, 92), 20, 20);
        painter.setPen(QPen(QColor(48, 209, 88), 4, Qt::SolidLine, Qt::RoundCap));
        painter.drawArc(QRectF(left + 26, 72, 40, 40), 90 * 16, -static_cast<int>((10 + 290 * share_) * 16));
        painter.setOpacity(share_);
        painter.setPen(Qt::white);
        QFont font;
        font.setPixelSize(16);
        font.setBold(true);
        painter.setFont(font);
        painter.drawText(QPointF(left + 84, 88), QStringLiteral("Battery low"));
        font.setPixelSize(13);
        font.setBold(false);
        painter.setFont(font);
        painter.setPen(QColor(0xa0, 0xa0, 0xa0));
        painter.drawText(QPointF(left + 84, 106), QStringLiteral("20 % remaining"));
    }

private:
    QImage shadow_;
    double share_ = 0;
};

double plainFrame(QSize screen) {
    PlainIsland island(QRect((screen.width() - 452) / 2, 0, 452, 184));
    island.show();
    for (int i = 0; i < 20; ++i)
        island.paintAt(0);
    std::vector<double> found;
    for (int round = 0; round < rounds; ++round) {
        const double before = spent();
        for (int i = 0; i < frames; ++i)
            island.paintAt(0.5 - 0.5 * std::cos(i * 0.05236));
        found.push_back((spent() - before) / frames);
    }
    return median(found);
}

// Blended as on any desktop, whether or not there is a compositor to do it.
class Blended final : public OverlayDisplay {
public:
    std::unique_ptr<OverlaySurface> makeSurface(QScreen& screen, QRect place,
                                                OverlaySurface::Paint paint) override {
        return windows_.makeSurface(screen, place, std::move(paint));
    }
    std::unique_ptr<OverlaySurface> makeSurfaceBehind(OverlaySurface& front, QScreen& screen, QRect place,
                                                      OverlaySurface::Paint paint) override {
        return windows_.makeSurfaceBehind(front, screen, place, std::move(paint));
    }
    bool isCompositing() override { return true; }

private:
    PaintedWindows windows_;
};

class Desktop final : public Workspace {
public:
    void open(std::string_view) override {}
    std::optional<std::string> computerName() override { return {}; }
    std::optional<std::string> environment(std::string_view) override { return {}; }
    bool reduceMotion() override { return false; }
};

class Stage {
public:
    explicit Stage(QSize screen) : screen_(screen) { panel_.show(model_, desktop_); }
    ~Stage() { panel_.showNothing(); }

    // A whole island; gives the CPU time of a frame of its first second.
    double play(const IslandContent& content) {
        const Size size{static_cast<double>(screen_.width()), static_cast<double>(screen_.height())};
        const double before = spent();
        panel_.setFrame({0, 0, size.width, size.height});
        panel_.orderFront();
        model_.update(content, false, {size, 0, 24});
        run(frames);
        const double result = (spent() - before) / frames;
        run(60);
        model_.isPresented.set(false);
        run(31);
        panel_.orderOut();
        return result;
    }

private:
    void run(int steps) {
        for (int i = 0; i < steps; ++i) {
            loop_.advance(seconds(1.0 / 60));
            QCoreApplication::processEvents();
            QCoreApplication::processEvents();
        }
    }

    QSize screen_;
    VirtualLoop loop_;
    Desktop desktop_;
    OverlayModel model_;
    Blended display_;
    QtOverlayPanel panel_{loop_, display_};
};

IslandContent content(int level, bool glows) {
    IslandContent result;
    result.subjectID = "mac";
    result.title = std::to_string(level) + "% left";
    result.subtitle = "1 h 5 min until empty";
    result.leading = IslandContent::Battery{level, false};
    result.progress = level / 100.0;
    result.tint = {255, 69, 58};
    result.isUrgent = glows;
    result.glowsScreen = glows;
    result.dwell = seconds(3);
    return result;
}

double islandFrame(Stage& stage, bool glows) {
    std::vector<double> found;
    for (int round = 0; round < rounds; ++round)
        found.push_back(stage.play(content(10 + round, glows)));
    return median(found);
}

long anonymous() {
    std::FILE* file = std::fopen("/proc/self/smaps_rollup", "r");
    char line[160];
    long found = 0;
    while (file && std::fgets(line, sizeof line, file)) {
        if (std::strncmp(line, "Anonymous:", 10) == 0)
            found = std::atol(line + 10);
    }
    if (file)
        std::fclose(file);
    return found;
}

} // namespace

int main(int argc, char** argv) {
    mallopt(M_ARENA_MAX, 1); // as Kivo does
    QApplication application(argc, argv);
    const QSize screen = QGuiApplication::primaryScreen()->size();
    if (argc > 1) {
        Stage stage(screen);
        std::printf("before %ld\n", anonymous());
        for (int i = 1; i <= 100; ++i) {
            stage.play(content(i, i % 5 == 0));
            if (i == 1 || i == 20 || i == 100)
                std::printf("after%d %ld\n", i, anonymous());
        }
        return 0;
    }
    std::printf("plain %f\n", plainFrame(screen));
    Stage stage(screen);
    stage.play(content(50, false));
    std::printf("island %f\n", islandFrame(stage, false));
    std::printf("glow %f\n", islandFrame(stage, true));
    return 0;
}
