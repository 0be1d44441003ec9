// SPDX-License-Identifier: MIT
#include "views/TrayIcon.h"

#include "core/SettingsStore.h"
#include "support/Text.h"
#include "views/Convert.h"
#include "views/DisplaySelection.h"
#include "views/TrayImage.h"
#include "views/X11Connection.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QPointer>
#include <QScreen>

#include <array>
#include <utility>

namespace kivo {

namespace {

// The sizes that trays ask for, up to twice the usual ones.
constexpr std::array iconSides{16, 22, 24, 32, 44, 48, 64};

// Seconds between looks for a tray of the older kind; then Qt waits for one by itself.
constexpr std::array looks{0.3, 0.7, 1.0, 2.0, 4.0, 8.0, 16.0};

constexpr int clickSide = 24; // of an icon around a click

QRect around(QPoint point) {
    return {point - QPoint(clickSide / 2, clickSide / 2), QSize(clickSide, clickSide)};
}

// Trays speak of the display's own pixels. Screens keep their places there and are scaled about these.
QRect around(std::optional<QPoint> pixels) {
    if (!pixels)
        return around(QCursor::pos());
    const auto screens = QGuiApplication::screens();
    for (const QScreen* screen : screens) {
        const QPoint corner = screen->geometry().topLeft();
        const double scale = screen->devicePixelRatio();
        if (QRect(corner, screen->size() * scale).contains(*pixels))
            return around(corner + (QPointF(*pixels - corner) / scale).toPoint());
    }
    return around(*pixels);
}

QString toolTip(const std::optional<BatterySnapshot>& snapshot) {
    if (!snapshot)
        return QStringLiteral("Kivo");
    return toQString(localized("%lld%", {snapshot->level}) + " · " + statusText(*snapshot));
}

// For those who cannot see the icon.
QString title(const std::optional<BatterySnapshot>& snapshot) {
    if (!snapshot)
        return QStringLiteral("Kivo");
    return QStringLiteral("Kivo: ") +
           toQString(localized("Battery %lld percent", {snapshot->level}) + ", " + statusText(*snapshot));
}

} // namespace

PanelInk panelInk() {
    const QColor light(245, 245, 247);
    const QColor dark(28, 28, 30);
    const QByteArray desktop = qgetenv("XDG_CURRENT_DESKTOP").toLower();
    // These draw their panels in the colours of their windows; all others are dark by habit.
    for (const char* following : {"kde", "xfce", "lxqt", "mate"}) {
        if (desktop.contains(following))
            return luminance(QGuiApplication::palette().color(QPalette::WindowText)) > 0.5 ? PanelInk{light}
                                                                                           : PanelInk{dark};
    }
    return {light, true};
}

TrayIcon::TrayIcon(MainLoop& loop, Observable<std::optional<BatterySnapshot>>& snapshot,
                   SettingsStore& settings)
    : loop_(loop), snapshot_(snapshot), settings_(settings), item_(QDBusConnection::sessionBus()) {
    qGuiApp->installEventFilter(this);
    snapshotChange_ = snapshot_.onChange([this] { refreshSoon(); });
    settingsChange_ = settings_.onChange([this] { refreshSoon(); });
    item_.setMenu(entries());
    item_.onActivate = [this](std::optional<QPoint> pixels) {
        lastPlace_ = around(pixels);
        if (onClick)
            onClick(lastPlace_);
    };
    item_.onContextMenu = [this](std::optional<QPoint> pixels) { showMenu(around(pixels).center()); };
    item_.onWatcherChange = [this] { lookForTray(0); };
    refresh();
    lookForTray(0);
}

TrayIcon::~TrayIcon() = default;

// Qt decides once and for all, at the first icon, by which way trays are reached; asked too early it takes the
// wrong one for the rest of the process. A panel that restarts is away for a moment only.
void TrayIcon::lookForTray(int round) {
    nextLook_.cancel();
    if (item_.hasWatcher()) {
        icon_.reset();
        return;
    }
    const auto index = static_cast<std::size_t>(round);
    if (index >= looks.size() || (round > 0 && isSelectionOwned("_NET_SYSTEM_TRAY_S0"))) {
        makeIcon();
        return;
    }
    nextLook_ = loop_.after(seconds(looks[index]), [this, round] { lookForTray(round + 1); });
}

void TrayIcon::makeIcon() {
    // There is no such tray elsewhere.
    if (icon_ || !x11Connection())
        return;
    icon_ = std::make_unique<QSystemTrayIcon>();
    icon_->setContextMenu(&menu());
    connect(icon_.get(), &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason != QSystemTrayIcon::Context && onClick)
            onClick(iconPlace().value_or(around(QCursor::pos())));
    });
    setPictures();
    icon_->show();
}

std::vector<NotifierMenu::Entry> TrayIcon::entries() {
    const auto open = [this] {
        if (onOpen)
            onOpen(iconPlace());
    };
    const auto settings = [this] {
        if (onSettings)
            onSettings();
    };
    const auto quit = [this] {
        if (onQuit)
            onQuit();
    };
    return {{toQString(localized("Open Kivo")), open},
            {toQString(localized("Settings…")), settings},
            {{}, {}},
            {toQString(localized("Quit Kivo")), quit}};
}

QMenu& TrayIcon::menu() {
    if (menu_)
        return *menu_;
    menu_ = std::make_unique<QMenu>();
    for (const auto& entry : entries()) {
        if (entry.text.isEmpty())
            menu_->addSeparator();
        else
            menu_->addAction(entry.text, this, entry.act);
    }
    return *menu_;
}

void TrayIcon::showMenu(std::optional<QPoint> place) {
    menu().popup(place.value_or(QCursor::pos()));
}

std::optional<QRect> TrayIcon::iconPlace() const {
    const QRect place = icon_ ? icon_->geometry() : QRect();
    return place.isEmpty() ? lastPlace_ : std::optional(place);
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
    const auto& snapshot = snapshot_.get();
    const QString tip = toolTip(snapshot);
    item_.setTexts(title(snapshot), tip);
    if (icon_)
        icon_->setToolTip(tip);
    const Look look{menuBarLabel(snapshot, settings_.value().menuBarStyle), panelInk()};
    if (shown_ == look)
        return;
    shown_ = look;
    setPictures();
}

// The picture goes to whoever shows it.
void TrayIcon::setPictures() {
    std::vector<QImage> pictures;
    for (int side : iconSides) {
        QImage picture = paintTrayImage(shown_->label, side, shown_->ink.color, symbols_);
        pictures.push_back(shown_->ink.isGuess ? outlined(picture, Qt::black) : std::move(picture));
    }
    symbols_.clear();
    if (icon_) {
        QIcon icon;
        for (const QImage& picture : pictures)
            icon.addPixmap(QPixmap::fromImage(picture));
        icon_->setIcon(icon);
        icon_->setToolTip(toolTip(snapshot_.get()));
    }
    item_.setIcon(std::move(pictures));
}

} // namespace kivo
