// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Windows.h"
#include "support/Lifetime.h"
#include "views/Kit.h"

#include <QMainWindow>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace kivo {

// A window of the application: in Kivo's colours, light or dark as the desktop is at any time, closed by the
// desktop's keys for that, no larger than the screen. What it shows may need less room than it has: then it
// scrolls.
class AppWindow : public QMainWindow {
public:
    ~AppWindow() override;

    // On screen and in front, with the keyboard.
    void present();

    // Callbacks out
    // The user closed it; it is hidden already.
    std::function<void()> onClose;

protected:
    AppWindow(MainLoop& loop, Workspace& workspace, const std::string& title, QSize wanted);

    Kit& kit() { return kit_; }
    // It has come to the front.
    virtual void activated() {}
    // The user closes it, as opposed to the application's end.
    virtual void dismissed() {}

    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void takeColors();

    Kit kit_;
};

// The application's windows by their names, each made when it is opened and gone when it is closed.
class AppWindows final : public Windows {
public:
    explicit AppWindows(MainLoop& loop) : loop_(loop) {}

    using Maker = std::function<std::unique_ptr<AppWindow>()>;
    void add(const std::string& name, Maker maker) { makers_[name] = std::move(maker); }

    void open(std::string_view name) override;
    void close(std::string_view name) override;
    void closeAll() { open_.clear(); }

    // Callbacks out
    // A window is gone, and what it held.
    std::function<void()> onGone;

private:
    MainLoop& loop_;
    std::map<std::string, Maker, std::less<>> makers_;
    std::map<std::string, std::unique_ptr<AppWindow>, std::less<>> open_;
    std::vector<std::unique_ptr<AppWindow>> leaving_;
    Lifetime lifetime_;
};

} // namespace kivo
