// SPDX-License-Identifier: MIT
// kivo-pictures FOLDER: paints every view into PNG files, for people to look at.
#include "pictures/Menu.h"
#include "pictures/Updates.h"
#include "pictures/Windows.h"
#include "ui/MenuBarLabel.h"
#include "views/Convert.h"
#include "views/IslandFilm.h"
#include "views/SymbolPainter.h"
#include "views/TrayImage.h"
#include "views/Typeface.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QLoggingCategory>
#include <QPainterPath>

#include <cstdio>
#include <exception>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace kivo;

constexpr Color green{52, 211, 91};
constexpr Color red{255, 59, 48};
constexpr Color yellow{255, 214, 10};

const IslandMetrics notched{{1512, 982}, 200, 38};
const IslandMetrics plain{{1440, 900}, 0, 24};

IslandContent macContent(std::string title, std::string subtitle, std::int64_t level, Color tint) {
    IslandContent content;
    content.subjectID = "mac";
    content.title = std::move(title);
    content.subtitle = std::move(subtitle);
    content.leading = IslandContent::Battery{level, false};
    content.progress = static_cast<double>(level) / 100;
    content.tint = tint;
    content.dwell = seconds(3);
    return content;
}

IslandContent unplugged() {
    return macContent("Unplugged", "64% · 3 h 20 min left", 64, {76, 217, 100});
}

IslandContent charging() {
    IslandContent content = macContent("Charging", "41% · full in 52 min", 41, green);
    content.isCharging = true;
    return content;
}

IslandContent critical() {
    IslandContent content = macContent("4% left", "Plug in now", 4, red);
    content.isUrgent = true;
    content.glowsScreen = true;
    content.position = OverlayPosition::center;
    content.dwell = seconds(4.5);
    return content;
}

IslandContent device(std::string name, std::string subtitle, std::string symbol, std::int64_t level) {
    IslandContent content =
        macContent(std::move(name), std::move(subtitle), level, color(levelTone(level, false)));
    content.subjectID = "device";
    content.leading = IslandContent::Symbol{std::move(symbol)};
    return content;
}

IslandContent earbuds() {
    return device("Anna’s AirPods Pro", "L 80% · R 75% · Case 40%", "airpodspro", 75);
}

struct Ground {
    const char* name;
    QColor top, bottom;
};
const Ground dark{"dark", QColor(38, 44, 66), QColor(84, 70, 104)};
const Ground light{"light", QColor(226, 234, 245), QColor(250, 244, 240)};
const Ground sky{"sky", QColor(59, 74, 107), QColor(143, 166, 200)};

// A part of a screen: wallpaper, menu bar, notch, and then what the panel shows.
QImage still(IslandFilm& film, const IslandMetrics& metrics, const QRectF& part, const Ground& ground,
             double scale) {
    QImage image((part.size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-part.topLeft());
    const QRectF screen(0, 0, metrics.screenSize.width, metrics.screenSize.height);
    QLinearGradient paper(screen.topLeft(), screen.bottomLeft());
    paper.setColorAt(0, ground.top);
    paper.setColorAt(1, ground.bottom);
    painter.fillRect(screen, paper);
    painter.fillRect(QRectF(0, 0, screen.width(), metrics.topInset), QColor(0, 0, 0, 46));
    film.paint(painter, scale);
    if (metrics.notchWidth > 0) {
        const IslandShape notch{0, 10};
        painter.fillPath(toQPainterPath(notch.path({(screen.width() - metrics.notchWidth) / 2, 0,
                                                    metrics.notchWidth, metrics.topInset})),
                         Qt::black);
    }
    return image;
}

QRectF topPart(const IslandMetrics& metrics) {
    return {metrics.screenSize.width / 2 - 240, 0, 480, 160};
}

// Rows of frames with their times under them.
class Strip {
public:
    Strip(int columns, QSize cell) : columns_(columns), cell_(cell) {}

    void add(QImage image, const QString& caption) { cells_.push_back({std::move(image), caption}); }
    void save(const QString& path) const {
        const int count = static_cast<int>(cells_.size());
        const int rows = (count + columns_ - 1) / columns_;
        const QSize step = cell_ + QSize(8, 26);
        QImage sheet(columns_ * step.width() + 8, rows * step.height() + 8, QImage::Format_RGB32);
        sheet.fill(QColor(24, 24, 27));
        QPainter painter(&sheet);
        painter.setFont(typeface(12, QFont::Medium));
        painter.setPen(QColor(200, 200, 205));
        for (int i = 0; i < count; ++i) {
            const QPoint corner(8 + i % columns_ * step.width(), 8 + i / columns_ * step.height());
            painter.drawImage(QRect(corner, cell_), cells_[static_cast<std::size_t>(i)].image);
            painter.drawText(corner + QPoint(2, cell_.height() + 15),
                             cells_[static_cast<std::size_t>(i)].caption);
        }
        sheet.save(path);
    }

private:
    struct Cell {
        QImage image;
        QString caption;
    };
    int columns_;
    QSize cell_;
    std::vector<Cell> cells_;
};

struct Scene {
    const char* name;
    IslandMetrics metrics;
    QRectF part;
    std::function<void(IslandFilm&, int)> act; // called at each act's time
    std::vector<double> acts;                  // seconds
    bool reducesMotion = false;
    const Ground* ground = &dark;
    std::vector<double> times; // of the frames, seconds
    double scale = 1;
};

const std::vector<double> appearing{0.02, 0.05, 0.08, 0.12, 0.16, 0.2, 0.25, 0.3,
                                    0.36, 0.42, 0.5,  0.6,  0.7,  0.9, 1.2,  2.5};
const std::vector<double> wholeLife{0.03, 0.06, 0.1, 0.15, 0.2,  0.26, 0.34, 0.45, 0.6,  0.9,
                                    1.4,  2.2,  2.9, 3.04, 3.09, 3.14, 3.19, 3.25, 3.32, 3.4};

void paintFilm(const QDir& folder, const Scene& scene) {
    IslandFilm film(scene.metrics, scene.reducesMotion);
    Strip strip(scene.scale > 1 ? 2 : 4, (scene.part.size() * scene.scale).toSize());
    std::size_t act = 0;
    for (double time : scene.times) {
        for (; act < scene.acts.size() && scene.acts[act] <= time; ++act) {
            film.advanceTo(scene.acts[act]);
            scene.act(film, static_cast<int>(act));
        }
        film.advanceTo(time);
        QImage image = still(film, scene.metrics, scene.part, *scene.ground, scene.scale);
        image.setDevicePixelRatio(1);
        strip.add(std::move(image), QString::number(time, 'f', 2) + " s");
    }
    strip.save(folder.filePath(QStringLiteral("film-%1.png").arg(scene.name)));
}

IslandContent longTexts() {
    IslandContent content =
        device("The keyboard in the meeting room on the second floor, by the window",
               "L 80% (charging) · R 75% (charging) · Case 40% (charging)", "keyboard.fill", 8);
    content.tint = red;
    return content;
}

void paintFilms(const QDir& folder) {
    auto out = [](const IslandContent& content) {
        return [content](IslandFilm& film, int act) { act == 0 ? film.present(content) : film.leave(); };
    };
    const std::vector<double> life{0, 3};
    paintFilm(folder,
              {"unplug-notch", notched, topPart(notched), out(unplugged()), life, false, &dark, wholeLife});
    paintFilm(folder, {"charging-top", plain, topPart(plain), out(charging()), life, false, &light, wholeLife});
    paintFilm(folder, {"critical-center",
                       {{480, 240}, 0, 24},
                       {0, 0, 480, 240},
                       out(critical()),
                       {0, 4.5},
                       false,
                       &dark,
                       {0.05, 0.1, 0.15, 0.22, 0.3, 0.4,  0.48, 0.52, 0.56, 0.6, 0.65, 0.7,
                        0.8,  1,   1.35, 1.7,  3,   4.55, 4.6,  4.66, 4.72, 4.8, 4.9,  5}});
    paintFilm(folder, {"retarget",
                       notched,
                       topPart(notched),
                       [](IslandFilm& film, int act) { film.present(act == 0 ? charging() : unplugged()); },
                       {0, 1},
                       false,
                       &dark,
                       {0.98, 1.02, 1.05, 1.08, 1.12, 1.16, 1.2, 1.26, 1.34, 1.42, 1.5, 2}});
    paintFilm(folder, {"reduce-motion",
                       plain,
                       topPart(plain),
                       out(unplugged()),
                       {0, 1},
                       true,
                       &dark,
                       {0.02, 0.05, 0.1, 0.15, 0.2, 0.5, 1.02, 1.05, 1.1, 1.15, 1.19, 1.21}});
    paintFilm(folder,
              {"airpods-notch", notched, topPart(notched), out(earbuds()), life, false, &light, appearing});
    paintFilm(folder, {"long-texts", plain, topPart(plain), out(longTexts()), life, false, &dark, appearing});
    paintFilm(folder, {"unplug-notch-2x",
                       notched,
                       topPart(notched),
                       out(unplugged()),
                       life,
                       false,
                       &light,
                       {0.05, 0.1, 0.16, 0.25, 0.36, 0.5, 0.9, 2.5, 3.06, 3.12, 3.19, 3.3},
                       2});
}

struct Kind {
    const char* name;
    IslandContent content;
    IslandMetrics metrics;
};

std::vector<Kind> kinds() {
    IslandContent urgentTop = critical();
    urgentTop.position = OverlayPosition::top;
    urgentTop.glowsScreen = false;
    IslandContent full = macContent("Fully charged", "You can unplug now", 100, green);
    IslandContent low = macContent("20% left", "1 h 5 min until empty", 20, {255, 69, 58});
    IslandContent lowPower = macContent("Unplugged", "50%", 50, yellow);
    return {{"unplugged, notch", unplugged(), notched},
            {"charging, no notch", charging(), plain},
            {"critical, notch", urgentTop, notched},
            {"critical, no notch", urgentTop, plain},
            {"AirPods with parts", earbuds(), notched},
            {"mouse", device("MX Master 3S", "11% left", "magicmouse.fill", 11), plain},
            {"fully charged", full, plain},
            {"low", low, notched},
            {"Low Power Mode", lowPower, plain},
            {"phone", device("Anna’s phone", "78% · connected", "iphone", 78), plain},
            {"long texts", longTexts(), notched},
            {"long texts, no notch", longTexts(), plain}};
}

void paintKinds(const QDir& folder, const Ground& ground) {
    Strip strip(2, QSize(960, 320));
    for (const Kind& kind : kinds()) {
        IslandFilm film(kind.metrics);
        film.present(kind.content);
        film.advanceTo(1.2);
        strip.add(still(film, kind.metrics, topPart(kind.metrics), ground, 2), kind.name);
    }
    strip.save(folder.filePath(QStringLiteral("islands-%1.png").arg(ground.name)));
}

void paintScales(const QDir& folder) {
    for (double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        IslandFilm film(notched);
        film.present(unplugged());
        film.advanceTo(1.2);
        still(film, notched, topPart(notched), dark, scale)
            .save(folder.filePath(QStringLiteral("island-at-%1.png").arg(scale)));
    }
    IslandFilm film(plain);
    film.present(critical());
    film.advanceTo(1.7);
    still(film, plain, QRectF(0, 0, 1440, 900), dark, 1).save(folder.filePath("critical-screen.png"));
}

void paintSymbols(const QDir& folder) {
    const QStringList names = QDir(":/symbols").entryList(QDir::Files, QDir::Name);
    constexpr int columns = 8;
    const int rows = (static_cast<int>(names.size()) + columns - 1) / columns;
    QImage sheet(columns * 200, rows * 150, QImage::Format_ARGB32_Premultiplied);
    sheet.fill(QColor(31, 32, 35));
    QPainter painter(&sheet);
    SymbolPainter symbols;
    painter.setFont(typeface(12, QFont::Medium));
    for (int i = 0; i < names.size(); ++i) {
        const QRect cell(i % columns * 200, i / columns * 150, 200, 150);
        symbols.paint(painter, names[i].toStdString(), QRectF(cell.x() + 20, cell.y() + 14, 96, 96),
                      QColor(245, 245, 247));
        symbols.paint(painter, names[i].toStdString(), QRectF(cell.x() + 136, cell.y() + 50, 24, 24),
                      QColor(52, 211, 91));
        painter.setPen(QColor(160, 160, 165));
        painter.drawText(cell.adjusted(6, 118, -6, 0), Qt::AlignHCenter | Qt::AlignTop,
                         painter.fontMetrics().elidedText(names[i], Qt::ElideMiddle, 188));
    }
    sheet.save(folder.filePath("symbols.png"));
}

void paintTray(const QDir& folder) {
    struct Reading {
        const char* name;
        std::optional<BatterySnapshot> snapshot;
    };
    auto reading = [](std::int64_t level, bool isCharging = false, bool isLowPowerMode = false) {
        return BatterySnapshot{.level = level, .isCharging = isCharging, .isLowPowerMode = isLowPowerMode};
    };
    const Reading readings[] = {{"64", reading(64)},
                                {"64 charging", reading(64, true)},
                                {"100", reading(100)},
                                {"100 charging", reading(100, true)},
                                {"40 low power", reading(40, false, true)},
                                {"18", reading(18)},
                                {"4", reading(4)},
                                {"1 charging", reading(1, true)},
                                {"0", reading(0)},
                                {"none", {}}};
    const struct {
        QColor panel, ink;
    } panels[] = {{QColor(31, 32, 35), QColor(245, 245, 247)}, {QColor(246, 246, 247), QColor(28, 28, 30)}};
    SymbolPainter symbols;
    QImage sheet(1280, 2 * 3 * 190, QImage::Format_RGB32);
    QPainter painter(&sheet);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    int y = 0;
    for (const auto& panel : panels) {
        for (const auto& style : menuBarStyles.entries) {
            painter.fillRect(0, y, 1280, 190, panel.panel);
            int x = 16;
            for (const Reading& r : readings) {
                const MenuBarLabel label = menuBarLabel(r.snapshot, style.value);
                const QImage small = paintTrayImage(label, 22, panel.ink, symbols);
                painter.drawImage(QRect(x, y + 12, 66, 66), small);
                painter.drawImage(x + 76, y + 34, small);
                painter.drawImage(x, y + 90, paintTrayImage(label, 64, panel.ink, symbols));
                painter.drawImage(x + 76, y + 110, paintTrayImage(label, 44, panel.ink, symbols));
                painter.setPen(QColor(140, 140, 145));
                painter.setFont(typeface(11, QFont::Normal));
                painter.drawText(x, y + 178, r.name);
                x += 126;
            }
            y += 190;
        }
    }
    sheet.save(folder.filePath("tray.png"));
}

// The picture that the documentation shows.
void paintIsland(const QDir& folder) {
    IslandFilm film(notched);
    film.present(unplugged());
    film.advanceTo(1.2);
    still(film, notched, topPart(notched).adjusted(0, 0, 0, -10), sky, 1).save(folder.filePath("island.png"));
}

void paintAll(const QDir& folder) {
    paintIsland(folder);
    paintKinds(folder, dark);
    paintKinds(folder, light);
    paintScales(folder);
    paintFilms(folder);
    paintTray(folder);
    paintMenus(folder);
    paintUpdates(folder);
    paintWindows(folder);
    paintSymbols(folder);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The platform without a display says at each call what it cannot do.
    QLoggingCategory::setFilterRules(QStringLiteral("default.warning=false"));
    QApplication app(argc, argv);
    if (argc != 2) {
        std::fputs("usage: kivo-pictures FOLDER\n", stderr);
        return 2;
    }
    QApplication::setFont(QFont("Inter"));
    const QDir folder(argv[1]);
    if (!folder.mkpath(".")) {
        std::fprintf(stderr, "kivo-pictures: cannot make %s\n", argv[1]);
        return 1;
    }
    try {
        paintAll(folder);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kivo-pictures: %s\n", error.what());
        return 1;
    }
    return 0;
}
