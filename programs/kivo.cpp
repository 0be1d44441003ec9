// SPDX-License-Identifier: MIT
// kivo: the application on a real desktop.
#include "app/AppDelegate.h"
#include "linux/ApplicationIcons.h"
#include "linux/DesktopAppearance.h"
#include "linux/LinuxMachine.h"
#include "linux/SingleInstance.h"
#include "linux/base/LinuxTexts.h"
#include "platform/Application.h"
#include "platform/Workspace.h"
#include "views/IntroductionWindow.h"
#include "views/Islands.h"
#include "views/OverlayChoice.h"
#include "views/SettingsWindow.h"
#include "views/Surface.h"
#include "views/TrayIcon.h"
#include "views/TrayMenu.h"
#include "views/UpdatePrompt.h"

#include <QApplication>
#include <QPixmapCache>
#include <QSocketNotifier>

#include <malloc.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>

namespace {

using namespace kivo;

constexpr const char* usage =
    "Kivo, a companion for the batteries around your computer\n"
    "\n"
    "usage: kivo [option]\n"
    "  --settings             open the settings, of the running Kivo if there is one\n"
    "  --test-alert           show what an alert looks like, in the running Kivo if there is one\n"
    "  --check-for-updates    look for a newer version, in the running Kivo if there is one\n"
    "  --version              print the version and end\n"
    "  --help                 print this and end\n";

// What a second start asks the running Kivo for.
const QString testAlertAction = QStringLiteral("test-alert");
const QString settingsAction = QStringLiteral("settings");
const QString updatesAction = QStringLiteral("check-for-updates");

int terminationEvent = -1;

// A signal may come at any instruction: it only leaves a word for the event loop.
void endSoon(int) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(terminationEvent, &one, sizeof one);
}

void catchTermination() {
    terminationEvent = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    struct sigaction action = {};
    action.sa_handler = endSoon;
    sigemptyset(&action.sa_mask);
    for (int number : {SIGTERM, SIGINT, SIGHUP})
        sigaction(number, &action, nullptr);
}

bool hasCompositor() {
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// Never OpenGL: its libraries would cost more memory than all of Kivo. Without any display Kivo still notifies
// and plays sounds.
void chooseDisplay() {
    qputenv("QT_XCB_GL_INTEGRATION", "none");
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        return;
    const std::string_view platforms = choosePlatform(!qEnvironmentVariableIsEmpty("DISPLAY"), hasCompositor());
    qputenv("QT_QPA_PLATFORM", QByteArray(platforms.data(), static_cast<qsizetype>(platforms.size())));
}

// The toolkit's own colours, and over them what the desktop says of light and dark and of its accent.
void takeColors(const DesktopAppearance& appearance) {
    QApplication::setPalette(QPalette());
    QPalette palette = QApplication::palette();
    if (appearance.isDark() && *appearance.isDark() != surfaceFor(palette).isDark) {
        palette.setColor(QPalette::Window, *appearance.isDark() ? QColor(31, 32, 35) : QColor(246, 246, 247));
        palette.setColor(QPalette::WindowText,
                         *appearance.isDark() ? QColor(245, 245, 247) : QColor(28, 28, 30));
    }
    if (appearance.accent())
        palette.setColor(QPalette::Highlight, *appearance.accent());
    if (palette != QApplication::palette())
        QApplication::setPalette(palette);
}

// Windows are seldom open: what they took goes back to the system.
void releaseMemory() {
    QPixmapCache::clear();
    ::malloc_trim(0);
}

void addWindows(AppWindows& windows, LinuxMachine& machine, AppCoordinator& coordinator) {
    windows.add("settings", [&] {
        auto model = std::make_unique<SettingsModel>(machine.loop(), coordinator, machine.standardDefaults(),
                                                     machine.workspace(), windows);
        return std::make_unique<SettingsWindow>(machine.loop(), machine.workspace(), std::move(model),
                                                applicationIcon);
    });
    windows.add("onboarding", [&] {
        auto model =
            std::make_unique<IntroductionModel>(machine.loop(), coordinator, machine.standardDefaults());
        model->onboarding().onFinish = [&windows] { windows.close("onboarding"); };
        return std::make_unique<IntroductionWindow>(machine.loop(), machine.workspace(), std::move(model));
    });
    windows.onGone = releaseMemory;
}

void testAlert(AppCoordinator& coordinator) {
    const auto& rules = defaultRules();
    const auto rule = std::find_if(rules.begin(), rules.end(), [](const AlertRule& candidate) {
        return candidate.trigger.kind == AlertTrigger::Kind::unplugged;
    });
    if (rule != rules.end())
        coordinator.test(*rule);
}

void checkForUpdates(AppCoordinator& coordinator) {
    if (auto* updater = coordinator.updater(); updater && updater->canCheckForUpdates().get())
        updater->checkForUpdates();
}

void perform(const QString& action, AppCoordinator& coordinator, AppWindows& windows) {
    if (action == testAlertAction)
        testAlert(coordinator);
    else if (action == settingsAction)
        windows.open("settings");
    else if (action == updatesAction)
        checkForUpdates(coordinator);
}

void connectUpdates(UpdatePrompt& prompt, LinuxMachine& machine) {
    prompt.onOpenPage = [&machine](const std::string& page) { machine.workspace().open(page); };
    prompt.onSkip = [&machine](const std::string& version) { machine.updates().skip(version); };
    prompt.onGone = releaseMemory;
    machine.updates().onFinding = [&prompt](const UpdateFinding& finding) { prompt.show(finding); };
}

int run(QApplication& app, SingleInstance& instance, const QString& firstAction) {
    LinuxMachine machine({KIVO_UPDATE_FEED, KIVO_UPDATE_KEY, KIVO_VERSION});
    DesktopAppearance appearance(QDBusConnection::sessionBus());
    appearance.onChange = [&appearance] { takeColors(appearance); };
    Islands islands(machine.loop(), machine.log(), machine.notifications(), hasCompositor());
    machine.provide(islands);
    AppWindows appWindows(machine.loop());
    machine.provide(appWindows);
    AppDelegate delegate(machine);
    AppCoordinator& coordinator = delegate.coordinator();
    addWindows(appWindows, machine, coordinator);
    islands.show(coordinator.overlay().model(), machine.workspace());
    islands.onScreenChange = [&coordinator] { coordinator.overlay().screenChanged(); };
    if (hasCompositor())
        machine.screens().screenOfMouse = [&islands] { return islands.screenInUse(); };
    MenuModel menu(machine.loop(), coordinator, machine.workspace(), machine.windows());
    TrayMenu menuWindow(machine.loop(), menu);
    menuWindow.onGone = releaseMemory;
    TrayIcon tray(machine.loop(), coordinator.monitor().snapshot(), coordinator.settings());
    menu.onQuit = [&app] { app.quit(); };
    tray.onClick = [&menuWindow](std::optional<QRect> icon) { menuWindow.toggle(icon); };
    tray.onOpen = [&menuWindow](std::optional<QRect> icon) { menuWindow.open(icon); };
    tray.onSettings = [&menu] { menu.perform(FooterControl::Action::settings); };
    tray.onQuit = menu.onQuit;
    instance.onAction = [&](const QString& action) {
        if (action.isEmpty())
            menuWindow.open(tray.iconPlace());
        else
            perform(action, coordinator, appWindows);
    };
    UpdatePrompt updates(machine.loop());
    connectUpdates(updates, machine);
    machine.whenSettled([&] {
        delegate.applicationDidFinishLaunching();
        if (!firstAction.isEmpty())
            instance.onAction(firstAction);
    });
    QSocketNotifier termination(terminationEvent, QSocketNotifier::Read);
    QObject::connect(&termination, &QSocketNotifier::activated, &app, &QCoreApplication::quit);

    const int status = app.exec();
    delegate.applicationWillTerminate();
    instance.onAction = nullptr;
    machine.updates().onFinding = nullptr;
    updates.close();
    menu.close();
    appWindows.closeAll();
    islands.showNothing();
    islands.onScreenChange = nullptr;
    machine.screens().screenOfMouse = nullptr;
    return status;
}

} // namespace

int main(int argc, char** argv) {
    QString action;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--version") {
            std::puts("Kivo " KIVO_VERSION);
            return 0;
        }
        if (argument == "--help" || argument == "-h") {
            std::fputs(usage, stdout);
            return 0;
        }
        if (argument == "--test-alert") {
            action = testAlertAction;
        } else if (argument == "--settings") {
            action = settingsAction;
        } else if (argument == "--check-for-updates") {
            action = updatesAction;
        } else {
            std::fprintf(stderr, "kivo: unknown option %s\n%s", argv[i], usage);
            return 2;
        }
    }
    if (action == updatesAction && std::string_view(KIVO_UPDATE_FEED).empty()) {
        std::fputs("kivo: whoever installed this Kivo updates it, too\n", stderr);
        return 1;
    }
    // Threads come and go, and what each had of its own would stay.
    ::mallopt(M_ARENA_MAX, 1);
    installTextCatalogue(linuxTexts());
    catchTermination();
    chooseDisplay();
    QApplication::setDesktopFileName(
        QString::fromUtf8(applicationIdentifier.data(), static_cast<qsizetype>(applicationIdentifier.size())));
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Kivo"));
    QApplication::setApplicationVersion(QStringLiteral(KIVO_VERSION));
    QApplication::setQuitOnLastWindowClosed(false);

    SingleInstance instance(QDBusConnection::sessionBus());
    if (instance.isFirst())
        return run(app, instance, action);
    if (instance.ask(action))
        return 0;
    std::fputs("kivo: another Kivo is running but does not answer\n", stderr);
    return 1;
}
