// SPDX-License-Identifier: MIT
#include "views/DisplaySelection.h"

#include "views/X11Connection.h"

#include <QGuiApplication>

#include <xcb/xfixes.h>

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <string>

namespace kivo {

namespace {

constexpr std::string_view compositorsSelection = "_NET_WM_CM_S0";

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
    return !x11Connection() || isSelectionOwned(compositorsSelection);
}

bool CompositingWatch::isCompositing() {
    if (!known_ && !follow())
        return kivo::isCompositing();
    return *known_;
}

// False where the display cannot tell of changes.
bool CompositingWatch::follow() {
    xcb_connection_t* display = x11Connection();
    if (!display) {
        known_ = true;
        return true;
    }
    const auto* extension = xcb_get_extension_data(display, &xcb_xfixes_id);
    if (!extension || !extension->present)
        return false;
    // The extension answers to nobody who has not asked for its version.
    std::free(xcb_xfixes_query_version_reply(display, xcb_xfixes_query_version(display, 1, 0), nullptr));
    selection_ = atom(display, compositorsSelection);
    change_ = static_cast<std::uint8_t>(extension->first_event + XCB_XFIXES_SELECTION_NOTIFY);
    xcb_xfixes_select_selection_input(display, xcb_setup_roots_iterator(xcb_get_setup(display)).data->root,
                                      selection_,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    qGuiApp->installNativeEventFilter(this);
    known_ = kivo::isCompositing();
    return true;
}

bool CompositingWatch::nativeEventFilter(const QByteArray& /*eventType*/, void* message, qintptr* /*result*/) {
    const auto& event = *static_cast<const xcb_xfixes_selection_notify_event_t*>(message);
    if ((event.response_type & 0x7f) == change_ && event.selection == selection_)
        known_ = event.owner != XCB_WINDOW_NONE;
    return false;
}

} // namespace kivo
