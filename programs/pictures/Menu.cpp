// SPDX-License-Identifier: MIT
#include "pictures/Menu.h"

#include "support/Text.h"
#include "support/VirtualLoop.h"
#include "views/MenuWindow.h"
#include "views/Typeface.h"

#include <QGuiApplication>
#include <QImage>
#include <QKeyEvent>
#include <QPalette>

#include <functional>
#include <string>
#include <vector>

namespace {

using namespace kivo;
using Source = BatterySnapshot::PowerSource;
using Category = PowerDevice::Category;

constexpr Date now{760'000'000};

MenuSource laptop(BatterySnapshot snapshot) {
    return {.macName = "Framework 13",
            .snapshot = snapshot,
            .health = BatteryHealth{.cycleCount = 217,
                                    .ratedCycles = 1000,
                                    .designCapacity = 4850,
                                    .fullChargeCapacity = 4410,
                                    .voltageMillivolts = 15400,
                                    .amperageMilliamps = snapshot.isCharging ? 1900 : -620},
            .condition = "Normal",
            .chargeTarget = 80,
            .now = now};
}

std::vector<PowerDevice> someDevices() {
    return {{.id = "m", .name = "MX Master", .category = Category::mouse, .level = 11},
            {.id = "a",
             .name = "Anna’s AirPods Pro",
             .category = Category::airpodsPro,
             .level = 40,
             .parts = {{PowerDevice::Part::Kind::left, 80},
                       {PowerDevice::Part::Kind::right, 75},
                       {PowerDevice::Part::Kind::chargingCase, 40}}},
            {.id = "p",
             .name = "Anna’s phone",
             .category = Category::iphone,
             .level = 78,
             .isCharging = true,
             .healthPercent = 91,
             .cycleCount = 312,
             .connection = "USB"},
            {.id = "k",
             .name = "Old iPad",
             .category = Category::ipad,
             .level = 96,
             .healthPercent = 88,
             .lastSeen = now - 7300}};
}

MenuSource withDevices(MenuSource source) {
    source.devices = someDevices();
    return source;
}

MenuSource ofMany() {
    MenuSource source = laptop({.level = 64, .source = Source::battery, .minutesToEmpty = 200});
    const auto some = someDevices();
    for (int i = 0; i < 40; ++i) {
        PowerDevice device = some[static_cast<std::size_t>(i) % some.size()];
        device.id += std::to_string(i);
        device.level = 2 + i * 2;
        source.devices.push_back(device);
    }
    return source;
}

MenuSource noBattery() {
    MenuSource source{.devices = someDevices(), .now = now};
    source.devices.resize(2);
    return source;
}

MenuSource worn() {
    MenuSource source = laptop({.level = 8, .source = Source::battery, .minutesToEmpty = 21});
    source.health = BatteryHealth{.cycleCount = 950,
                                  .ratedCycles = 1000,
                                  .designCapacity = 4850,
                                  .fullChargeCapacity = 3490,
                                  .voltageMillivolts = 14100,
                                  .amperageMilliamps = -1340};
    source.condition = "Service Recommended";
    source.devices = {someDevices()[0]};
    return source;
}

MenuSource loading() {
    MenuSource source = laptop({.level = 64, .source = Source::battery, .minutesToEmpty = 200});
    source.hasLoadedDevices = false;
    source.health.reset();
    return source;
}

MenuSource longTexts() {
    MenuSource source = laptop({.level = 80, .source = Source::ac});
    source.macName = "El ordenador portátil de la sala de reuniones";
    source.condition = "Service";
    source.devices = someDevices();
    source.devices[0].name = "El ratón de la sala de reuniones del segundo piso";
    source.devices[0].isCharging = true;
    source.devices[0].level = 100;
    source.playsSound = false;
    return source;
}

// As long as texts get in the languages that need most room.
TextCatalogue spanish() {
    return {{"Paused", "En pausa"},
            {"Health", "Estado"},
            {"Until full", "Hasta la carga completa"},
            {"macOS paused charging at %lld% to protect the battery",
             "Carga detenida al %lld % para proteger la batería"},
            {"Limit…", "Límite…"},
            {"Cycles", "Ciclos"},
            {"Watts", "Vatios"},
            {"Status", "Situación"},
            {"Service", "Reparación"},
            {"of %lld", "de %lld"},
            {"draw", "consumiendo"},
            {"macOS recommends having Apple check your battery",
             "Esta batería conserva mucho menos que cuando era nueva: conviene hacerla revisar"},
            {"Devices", "Dispositivos"},
            {"Seen %@ ago", "Vista hace %@"},
            {"%lld hours", "%lld horas"},
            {"Health %lld%", "Estado %lld %"},
            {"%lld cycles", "%lld ciclos"},
            {"L", "I"},
            {"R", "D"},
            {"Case", "Estuche"},
            {"%lld%", "%lld %"}};
}

struct State {
    const char* name;
    MenuSource source;
    std::function<void(MenuWindow&)> act;
    bool isSpanish = false;
    QSize room{1264, 784};
};

void press(MenuWindow& window, int key, int times) {
    for (int i = 0; i < times; ++i) {
        QWidget* focused = window.focusWidget() ? window.focusWidget() : &window;
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(focused, &event);
    }
}

std::vector<State> states() {
    const BatterySnapshot charging{.level = 64, .source = Source::ac, .isCharging = true, .minutesToFull = 52};
    const BatterySnapshot lowPower{
        .level = 41, .source = Source::battery, .minutesToEmpty = 145, .isLowPowerMode = true};
    return {
        {"charging", withDevices(laptop(charging)), {}},
        {"on battery",
         withDevices(laptop({.level = 79, .source = Source::battery, .minutesToEmpty = 320})),
         {}},
        {"paused", withDevices(laptop({.level = 80, .source = Source::ac})), {}},
        {"low power", withDevices(laptop(lowPower)), {}},
        {"worn", worn(), {}},
        {"no battery", noBattery(), {}},
        {"loading", loading(), {}},
        {"no devices", laptop({.level = 100, .source = Source::ac, .isCharged = true}), {}},
        {"forty devices", ofMany(), {}},
        {"long texts", longTexts(), {}, true},
        {"keyboard", withDevices(laptop(charging)), [](MenuWindow& window) { press(window, Qt::Key_Down, 4); }},
        {"narrow and low",
         ofMany(),
         [](MenuWindow& window) { press(window, Qt::Key_End, 1); },
         false,
         {300, 380}},
    };
}

QPalette palette(bool isDark) {
    return {isDark ? QColor(45, 45, 48) : QColor(239, 239, 239)};
}

QImage picture(const State& state, bool isDark, double scale) {
    QGuiApplication::setPalette(palette(isDark));
    if (state.isSpanish)
        installTextCatalogue(spanish());
    VirtualLoop loop;
    SymbolPainter symbols;
    MenuWindow window(loop, symbols, false);
    window.setRoom(state.room);
    window.setContent(menuContent(state.source));
    window.show();
    window.activateWindow();
    window.setFocus();
    QCoreApplication::processEvents();
    if (state.act)
        state.act(window);
    loop.advance(kivo::seconds(0.8));

    const QSize size = window.size() + QSize(40, 40);
    QImage image(size * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    QLinearGradient paper(0, 0, size.width(), size.height());
    paper.setColorAt(0, QColor(88, 126, 178));
    paper.setColorAt(1, QColor(196, 152, 174));
    painter.fillRect(QRect({}, size), paper);
    window.render(&painter, QPoint(20, 20), QRegion(), QWidget::DrawChildren);
    installTextCatalogue({});
    return image;
}

QImage sideBySide(const QImage& first, const QImage& second) {
    const QSize size =
        (first.deviceIndependentSize() + QSizeF(second.deviceIndependentSize().width(), 0)).toSize();
    QImage image(size * first.devicePixelRatio(), QImage::Format_RGB32);
    image.setDevicePixelRatio(first.devicePixelRatio());
    QPainter painter(&image);
    painter.drawImage(QPointF(0, 0), first);
    painter.drawImage(QPointF(first.deviceIndependentSize().width(), 0), second);
    return image;
}

// The charger stops at its limit and the emptiest device is recharged, frame by frame.
void paintFilm(const QDir& folder) {
    QGuiApplication::setPalette(palette(false));
    VirtualLoop loop;
    SymbolPainter symbols;
    MenuWindow window(loop, symbols, false);
    MenuSource source =
        withDevices(laptop({.level = 64, .source = Source::ac, .isCharging = true, .minutesToFull = 52}));
    source.devices.resize(3);
    window.setContent(menuContent(source));
    window.show();
    source.snapshot = BatterySnapshot{.level = 80, .source = Source::ac};
    source.devices[0].level = 60;
    source.devices[0].isCharging = true;
    std::swap(source.devices[0], source.devices[1]);
    constexpr double times[] = {0, 0.05, 0.1, 0.15, 0.2, 0.3, 0.4, 0.6, 0.8, 1.2};
    constexpr int columns = 5;
    const QSize cell(360, 560);
    QImage sheet(cell.width() * columns, cell.height() * 2, QImage::Format_RGB32);
    sheet.fill(QColor(88, 126, 178));
    QPainter painter(&sheet);
    for (int i = 0; i < static_cast<int>(std::size(times)); ++i) {
        if (i == 1)
            window.setContent(menuContent(source));
        loop.advance(kivo::seconds(i == 0 ? 0.5 : times[i] - times[i - 1]));
        const QPoint corner(i % columns * cell.width(), i / columns * cell.height());
        painter.drawText(corner + QPoint(12, 14), QString::number(times[i], 'f', 2) + QStringLiteral(" s"));
        window.render(&painter, corner + QPoint(10, 20), QRegion(), QWidget::DrawChildren);
    }
    sheet.save(folder.filePath(QStringLiteral("film-menu.png")));
}

} // namespace

void paintMenus(const QDir& folder) {
    for (const State& state : states()) {
        const QString name = QString::fromUtf8(state.name).replace(QLatin1Char(' '), QLatin1Char('-'));
        for (const double scale : {1.0, 2.0}) {
            sideBySide(picture(state, false, scale), picture(state, true, scale))
                .save(folder.filePath(QStringLiteral("menu-%1-%2x.png").arg(name).arg(scale)));
        }
    }
    paintFilm(folder);
}
