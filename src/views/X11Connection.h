// SPDX-License-Identifier: MIT
#pragma once

#include <QGuiApplication>

#include <xcb/xcb.h>

namespace kivo {

// Qt's own connection to the X server; null on other displays.
inline xcb_connection_t* x11Connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

} // namespace kivo
