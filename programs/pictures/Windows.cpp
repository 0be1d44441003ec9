// SPDX-License-Identifier: MIT
#include "pictures/Windows.h"

#include "app/AppDelegate.h"
#include "linux/base/LinuxTexts.h"
#include "simulated/SimulatedMachine.h"
#include "support/Text.h"
#include "views/IntroductionWindow.h"
#include "views/SettingsWindow.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>

namespace {

using namespace kivo;

// Spanish, where a label is a third longer than in English.
TextCatalogue spanish() {
    return {
        {"Alerts", "Alertas"},
        {"Energy", "Consumo de energía"},
        {"Menu Bar", "Barra de menús"},
        {"General", "Generales"},
        {"Low battery", "Batería baja"},
        {"Alerts when your Mac's battery drops below a percentage",
         "Avisa cuando la batería del ordenador baja de un porcentaje que tú eliges"},
        {"Drops below %lld%", "Cuando baja del %lld %"},
        {"Percentage", "Porcentaje de la batería"},
        {"Position", "Posición en la pantalla"},
        {"Color", "Color del anillo"},
        {"Sound", "Sonido de la alerta"},
        {"Top", "Parte superior"},
        {"Center", "Centro de la pantalla"},
        {"Glow around the screen edges",
         "Resplandor alrededor de los bordes de la pantalla mientras se muestra"},
        {"Also send a system notification", "Enviar además una notificación del sistema"},
        {"Test", "Probar la alerta"},
        {"Delete", "Eliminar esta alerta"},
        {"Add alert", "Añadir una alerta nueva"},
        {"Your battery, no surprises", "Tu batería, sin ninguna sorpresa desagradable"},
        {"Kivo lets you know right when it matters: when you plug in, while you charge, and before you run "
         "out. "
         "It looks after your AirPods, iPhone and accessories too.",
         "Kivo te avisa justo cuando importa: al enchufar el cargador, mientras se carga y antes de que te "
         "quedes "
         "sin batería. También cuida de tus auriculares, de tu teléfono y de todos tus accesorios."},
        {"Get Started", "Empezar ahora mismo"},
        {"Continue", "Continuar con lo siguiente"},
        {"Back", "Volver atrás"},
        {"When you plug in or unplug the charger", "Cuando enchufas o desenchufas el cargador del ordenador"},
        {"When your AirPods or accessories run low",
         "Cuando a tus auriculares o accesorios les queda poca batería"},
        {"See what an alert looks like", "Mira cómo es una alerta de verdad"},
        {"Turn On", "Activar ahora"},
        {"Open Kivo at login", "Abrir Kivo al iniciar la sesión de usuario"},
        {"Compact", "Compacto"},
        {"Icon + %", "Icono y porcentaje"},
        {"% only", "Solo porcentaje"},
    };
}

constexpr const char* laptop = R"({
    "computerName": "Framework 13", "reduceMotion": true,
    "powerSources": [{"Type": "InternalBattery", "Current Capacity": 64, "Max Capacity": 100,
                      "Power Source State": "AC Power", "Is Charging": true, "Time to Full Charge": 52}],
    "accessorySources": [{"Type": "Accessory Source", "Name": "MX Master 3S", "Accessory Identifier": "m",
                          "Current Capacity": 11},
                         {"Type": "Accessory Source", "Name": "Ada’s AirPods Pro", "Accessory Identifier": "a",
                          "Current Capacity": 75}],
    "processes": [{"pid": 10, "name": "Web", "energy": 0}, {"pid": 20, "name": "Terminal", "energy": 0},
                  {"pid": 30, "name": "Builder", "energy": 0}, {"pid": 40, "name": "indexer", "energy": 0},
                  {"pid": 50, "name": "Music", "energy": 0}],
    "applications": [{"pid": 10, "localizedName": "Web Browser", "bundleIdentifier": "web", "regular": true},
                     {"pid": 20, "localizedName": "Terminal", "bundleIdentifier": "terminal", "regular": true},
                     {"pid": 30, "localizedName": "Builder", "bundleIdentifier": "builder", "regular": true},
                     {"pid": 50, "localizedName": "A music player whose name is longer than its row",
                      "bundleIdentifier": "music", "regular": true}],
    "defaults": {"standard": {"onboarding.completed.v1": true}}})";

constexpr const char* busy = R"({"processes": [
    {"pid": 10, "name": "Web", "energy": 4200000000000}, {"pid": 20, "name": "Terminal", "energy": 310000000000},
    {"pid": 30, "name": "Builder", "energy": 1650000000000}, {"pid": 40, "name": "indexer", "energy": 900000000000},
    {"pid": 50, "name": "Music", "energy": 24000000000}]})";

QPalette desktopPalette(bool isDark) {
    QPalette palette = QApplication::palette();
    palette.setColor(QPalette::Window, isDark ? QColor(31, 32, 35) : QColor(246, 246, 247));
    palette.setColor(QPalette::WindowText, isDark ? Qt::white : Qt::black);
    return palette;
}

QImage photograph(QWidget& window, QSize size, double scale) {
    window.resize(size);
    window.setAttribute(Qt::WA_DontShowOnScreen);
    window.show();
    QApplication::processEvents();
    QApplication::processEvents();
    QImage image(size * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    window.render(&image);
    return image;
}

struct Shot {
    const char* name;
    SettingsTab tab;
    QSize size{680, 640};
    int expanded = -1;
    int scrolled = 0;
};

void paintSettings(const QDir& folder, const Shot& shot, bool isDark, double scale, const char* language) {
    SimulatedMachine machine(laptop);
    AppDelegate delegate(machine);
    delegate.applicationDidFinishLaunching();
    machine.virtualLoop().runPosted();
    if (std::string_view(shot.name) == "energy") {
        machine.set(busy);
        machine.virtualLoop().advance(seconds(61));
    }
    auto model =
        std::make_unique<SettingsModel>(machine.loop(), delegate.coordinator(), machine.standardDefaults(),
                                        machine.workspace(), machine.windows());
    if (shot.expanded >= 0)
        model->alerts().toggleExpanded(static_cast<std::size_t>(shot.expanded));
    model->select(shot.tab);
    SettingsWindow window(machine.loop(), machine.workspace(), std::move(model), nullptr);
    photograph(window, shot.size, scale)
        .save(
            folder.filePath(QStringLiteral("settings-%1-%2-%3%4.png")
                                .arg(shot.name, isDark ? "dark" : "light", QString::number(scale), language)));
}

void paintIntroduction(const QDir& folder, OnboardingStep step, QSize size, bool isDark, double scale,
                       const char* suffix) {
    SimulatedMachine machine(laptop);
    AppDelegate delegate(machine);
    delegate.applicationDidFinishLaunching();
    machine.virtualLoop().runPosted();
    auto model =
        std::make_unique<IntroductionModel>(machine.loop(), delegate.coordinator(), machine.standardDefaults());
    while (model->onboarding().step().get() != step)
        model->onboarding().next();
    IntroductionWindow window(machine.loop(), machine.workspace(), std::move(model));
    photograph(window, size, scale)
        .save(folder.filePath(QStringLiteral("introduction-%1-%2-%3%4.png")
                                  .arg(QString::number(static_cast<int>(step) + 1), isDark ? "dark" : "light",
                                       QString::number(scale), suffix)));
}

void paintIntroductions(const QDir& folder, bool isDark, const char* suffix) {
    for (const auto& step : onboardingSteps) {
        for (const double scale : {1.0, 2.0})
            paintIntroduction(folder, step.value, {620, 560}, isDark, scale, suffix);
        paintIntroduction(folder, step.value, {400, 480}, isDark, 1, (std::string(suffix) + "-narrow").c_str());
    }
}

} // namespace

void paintWindows(const QDir& folder) {
    const QPalette before = QApplication::palette();
    installTextCatalogue(linuxTexts());
    const std::vector<Shot> shots{{"alerts", SettingsTab::alerts},
                                  {"alerts-open", SettingsTab::alerts, {680, 1400}, 0},
                                  {"alerts-narrow", SettingsTab::alerts, {400, 1500}, 0},
                                  {"energy", SettingsTab::energy},
                                  {"energy-empty", SettingsTab::energy},
                                  {"menubar", SettingsTab::menuBar},
                                  {"general", SettingsTab::general, {680, 1300}},
                                  {"general-narrow", SettingsTab::general, {400, 1500}}};
    for (const bool isDark : {false, true}) {
        QApplication::setPalette(desktopPalette(isDark));
        for (const Shot& shot : shots) {
            for (const double scale : {1.0, 2.0})
                paintSettings(folder, shot, isDark, scale, "");
        }
        paintIntroductions(folder, isDark, "");
    }
    QApplication::setPalette(desktopPalette(false));
    installTextCatalogue(spanish());
    for (const Shot& shot : shots)
        paintSettings(folder, shot, false, 1, "-long");
    paintIntroductions(folder, false, "-long");
    installTextCatalogue({});
    QApplication::setPalette(before);
}
