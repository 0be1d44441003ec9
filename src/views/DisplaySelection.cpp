// SPDX-License-Identifier: MIT
#include "views/DisplaySelection.h"

#include "views/X11Connection.h"

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>

namespace kivo {

namespace {

// Each is asked for once: an answer of the display takes its time.
xcb_atom_t atom(xcb_connection_t* display, std::string_view name) {
    static std::map<std::string, xcb_atom_t, std::less<>> known;
    if (const auto found = known.find(name); found != known.end())
        return found->second;
    auto* reply = xcb_intern_atom_reply(
        display, xcb_intern_atom(display, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr);
    const xcb_atom_t result = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(reply);
    return known.emplace(name, result).first->second;
}

} // namespace

bool isSelectionOwned(std::string_view name) {
    xcb_connection_t* display = x11Connection();
    if (!display)
        return false;
    auto* owner =
        xcb_get_selection_owner_reply(display, xcb_get_selection_owner(display, atom(display, name)), nullptr);
    const bool isOwned = owner && owner->owner != XCB_WINDOW_NONE;
    std::free(owner);
    return isOwned;
}

bool isCompositing() {
    return !x11Connection() || isSelectionOwned("_NET_WM_CM_S0");
}

} // namespace kivo
