// SPDX-License-Identifier: MIT
#include "views/DisplaySelection.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>

namespace kivo {

namespace {

xcb_connection_t* connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

} // namespace

bool isSelectionOwned(std::string_view name) {
    xcb_connection_t* display = connection();
    if (!display)
        return false;
    auto* atom = xcb_intern_atom_reply(
        display, xcb_intern_atom(display, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr);
    if (!atom)
        return false;
    auto* owner = xcb_get_selection_owner_reply(display, xcb_get_selection_owner(display, atom->atom), nullptr);
    const bool isOwned = owner && owner->owner != XCB_WINDOW_NONE;
    std::free(owner);
    std::free(atom);
    return isOwned;
}

bool isCompositing() {
    return !connection() || isSelectionOwned("_NET_WM_CM_S0");
}

} // namespace kivo
