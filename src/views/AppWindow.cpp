// SPDX-License-Identifier: MIT
#include "views/AppWindow.h"

#include "views/AppIcon.h"
#include "views/Convert.h"
#include "views/Surface.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QScreen>
#include <QShortcut>

#include <algorithm>

namespace kivo {

namespace {

constexpr int titleHeight = 28;

// Kivo's colours in the places where Qt's own parts and ours look for them.
QPalette paletteOf(const Surface& surface) {
    QPalette palette = QGuiApplication::palette();
    palette.setColor(QPalette::Window, surface.window);
    palette.setColor(QPalette::WindowText, surface.ink);
    palette.setColor(QPalette::Base, surface.card);
    palette.setColor(QPalette::AlternateBase, surface.card);
    palette.setColor(QPalette::Button, surface.card);
    palette.setColor(QPalette::ButtonText, surface.ink);
    palette.setColor(QPalette::Text, surface.ink);
    palette.setColor(QPalette::PlaceholderText, surface.secondary);
    palette.setColor(QPalette::Mid, surface.tertiary);
    palette.setColor(QPalette::Link, readable(surface.accent, surface.card));
    palette.setColor(QPalette::LinkVisited, readable(toQColor(Color{255, 59, 48}), surface.card)); // errors
    palette.setColor(QPalette::Highlight, surface.accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

// Where whoever opens a window looks.
QRect roomForWindows() {
    const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    return (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
}

} // namespace

AppWindow::AppWindow(MainLoop& loop, Workspace& workspace, const std::string& title, QSize wanted)
    : kit_{loop, workspace} {
    setWindowTitle(toQString(title));
    setWindowIcon(appIcon());
    takeColors();
    QList<QKeySequence> closing = QKeySequence::keyBindings(QKeySequence::Close);
    closing << QKeySequence(Qt::Key_Escape);
    for (const QKeySequence& keys : closing)
        connect(new QShortcut(keys, this), &QShortcut::activated, this, [this] {
            dismissed();
            close();
        });
    const QRect place = roomForWindows();
    const QSize room = place.size() * 0.94;
    setMinimumSize(QSize(400, 320).boundedTo(room));
    resize(wanted.boundedTo(room));
    // In the middle with its frame, whose corner this is for window managers.
    const QPoint corner = place.center() - rect().center();
    move(corner.x(), std::max(corner.y() - titleHeight / 2, place.top()));
}

AppWindow::~AppWindow() {
    // Before what they are drawn with.
    delete takeCentralWidget();
}

void AppWindow::takeColors() {
    const Surface surface = surfaceFor(QGuiApplication::palette());
    setPalette(paletteOf(surface));
    colorTips(surface);
}

void AppWindow::present() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

bool AppWindow::event(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange)
        takeColors();
    else if (event->type() == QEvent::WindowActivate)
        activated();
    return QMainWindow::event(event);
}

void AppWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    if (event->spontaneous())
        dismissed();
    if (onClose)
        onClose();
}

void AppWindows::open(std::string_view name) {
    auto found = open_.find(name);
    if (found == open_.end()) {
        const auto maker = makers_.find(name);
        if (maker == makers_.end())
            return;
        found = open_.emplace(name, maker->second()).first;
        found->second->onClose = [this, name = std::string(name)] { close(name); };
    }
    found->second->present();
}

void AppWindows::close(std::string_view name) {
    const auto found = open_.find(name);
    if (found == open_.end())
        return;
    // It may be one of its own buttons that asks: it goes once that has returned.
    leaving_.push_back(std::move(found->second));
    open_.erase(found);
    leaving_.back()->hide();
    loop_.post(lifetime_.guard([this] {
        leaving_.clear();
        if (onGone)
            onGone();
    }));
}

} // namespace kivo
