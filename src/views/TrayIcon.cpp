// SPDX-License-Identifier: MIT
#include "views/TrayIcon.h"

#include "core/SettingsStore.h"
#include "support/Text.h"
#include "views/Convert.h"
#include "views/TrayHost.h"
#include "views/TrayImage.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QPointer>

#include <array>
#include <utility>

namespace kivo {

namespace {

// The sizes that trays ask for, up to twice the usual ones.
constexpr std::array iconSides{16, 22, 24, 32, 44, 48, 64};

// Seconds between looks for a tray at the start of a session; then Qt waits for one by itself.
constexpr std::array looks{0.3, 0.7, 1.0, 2.0, 4.0, 8.0, 16.0};

// A click comes from where the pointer is.
QRect aroundPointer() {
    constexpr int side = 24;
    return {QCursor::pos() - QPoint(side / 2, side / 2), QSize(side, side)};
}

QString toolTip(const std::optional<BatterySnapshot>& snapshot) {
    if (!snapshot)
        return QStringLiteral("Kivo");
    return toQString(localized("%lld%", {snapshot->level}) + " · " + statusText(*snapshot));
}

} // namespace

QColor panelInk() {
    const QColor light(245, 245, 247);
    const QColor dark(28, 28, 30);
    const QByteArray desktop = qgetenv("XDG_CURRENT_DESKTOP").toLower();
    // These draw their panels in the colours of their windows; all others are dark by habit.
    for (const char* following : {"kde", "xfce", "lxqt", "mate"}) {
        if (desktop.contains(following))
            return luminance(QGuiApplication::palette().color(QPalette::WindowText)) > 0.5 ? light : dark;
    }
    return light;
}

TrayIcon::TrayIcon(MainLoop& loop, Observable<std::optional<BatterySnapshot>>& snapshot,
                   SettingsStore& settings)
    : loop_(loop), snapshot_(snapshot), settings_(settings) {
    qGuiApp->installEventFilter(this);
    snapshotChange_ = snapshot_.onChange([this] { refreshSoon(); });
    settingsChange_ = settings_.onChange([this] { refreshSoon(); });
    lookForTray(0);
}

TrayIcon::~TrayIcon() = default;

// Qt decides once and for all, at the first icon, by which way trays are reached; asked too early it takes the
// old one for the rest of the process.
void TrayIcon::lookForTray(int round) {
    const auto index = static_cast<std::size_t>(round);
    if (hasTrayHost() || index >= looks.size()) {
        make();
        return;
    }
    nextLook_ = loop_.after(seconds(looks[index]), [this, round] { lookForTray(round + 1); });
}

void TrayIcon::make() {
    makeMenu();
    icon_ = std::make_unique<QSystemTrayIcon>();
    icon_->setContextMenu(menu_.get());
    connect(icon_.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason != QSystemTrayIcon::Context && onClick)
            onClick(iconPlace().value_or(aroundPointer()));
    });
    refresh();
    icon_->show();
}

void TrayIcon::makeMenu() {
    menu_ = std::make_unique<QMenu>();
    menu_->addAction(toQString(localized("Open Kivo")), this, [this] {
        if (onOpen)
            onOpen(iconPlace());
    });
    menu_->addAction(toQString(localized("Settings…")), this, [this] {
        if (onSettings)
            onSettings();
    });
    menu_->addSeparator();
    menu_->addAction(toQString(localized("Quit Kivo")), this, [this] {
        if (onQuit)
            onQuit();
    });
}

std::optional<QRect> TrayIcon::iconPlace() const {
    const QRect place = icon_ ? icon_->geometry() : QRect();
    return place.isEmpty() ? std::nullopt : std::optional(place);
}

bool TrayIcon::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange)
        loop_.post([guard = QPointer<TrayIcon>(this)] {
            if (guard)
                guard->refresh();
        });
    return QObject::eventFilter(watched, event);
}

// An alert about the same change is to be seen first, and a charger and its battery tell of it one after the
// other: one picture of both is enough.
void TrayIcon::refreshSoon() {
    if (std::exchange(isRefreshDue_, true))
        return;
    nextRefresh_ = loop_.after(seconds(0.06), [this] {
        isRefreshDue_ = false;
        refresh();
    });
}

void TrayIcon::refresh() {
    if (!icon_)
        return;
    const auto& snapshot = snapshot_.get();
    const QString tip = toolTip(snapshot);
    if (tip != shownTip_) {
        shownTip_ = tip;
        icon_->setToolTip(tip);
    }
    const MenuBarLabel label = menuBarLabel(snapshot, settings_.value().menuBarStyle);
    const QColor ink = panelInk();
    if (shown_ == label && shownInk_ == ink)
        return;
    shown_ = label;
    shownInk_ = ink;
    QIcon icon;
    for (int side : iconSides)
        icon.addPixmap(QPixmap::fromImage(paintTrayImage(label, side, ink, symbols_)));
    symbols_.clear();
    icon_->setIcon(icon);
}

} // namespace kivo
