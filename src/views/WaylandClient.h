// SPDX-License-Identifier: MIT
#pragma once

#include <wayland-client-core.h>

namespace kivo::wayland {

// The functions of libwayland-client, which is loaded when a compositor is looked for: most of Kivo's desktops
// have none that Kivo would speak to, and need not pay for it.
struct Client {
    decltype(&wl_display_connect) displayConnect;
    decltype(&wl_display_disconnect) displayDisconnect;
    decltype(&wl_display_get_fd) displayGetFd;
    decltype(&wl_display_get_error) displayGetError;
    decltype(&wl_display_get_protocol_error) displayGetProtocolError;
    decltype(&wl_display_flush) displayFlush;
    decltype(&wl_display_prepare_read) displayPrepareRead;
    decltype(&wl_display_cancel_read) displayCancelRead;
    decltype(&wl_display_read_events) displayReadEvents;
    decltype(&wl_display_dispatch_pending) displayDispatchPending;
    decltype(&wl_proxy_marshal_flags) proxyMarshalFlags;
    decltype(&wl_proxy_add_listener) proxyAddListener;
    decltype(&wl_proxy_destroy) proxyDestroy;
    decltype(&wl_proxy_get_version) proxyGetVersion;
    decltype(&wl_proxy_get_user_data) proxyGetUserData;
    decltype(&wl_proxy_set_user_data) proxySetUserData;
};

extern Client client;

// Loads the library unless it is there; false when this computer has none, or one that is too old.
bool loadClient();

} // namespace kivo::wayland

// What the protocols' headers call.
#define wl_proxy_marshal_flags (*kivo::wayland::client.proxyMarshalFlags)
#define wl_proxy_add_listener (*kivo::wayland::client.proxyAddListener)
#define wl_proxy_destroy (*kivo::wayland::client.proxyDestroy)
#define wl_proxy_get_version (*kivo::wayland::client.proxyGetVersion)
#define wl_proxy_get_user_data (*kivo::wayland::client.proxyGetUserData)
#define wl_proxy_set_user_data (*kivo::wayland::client.proxySetUserData)

#include <overlay-client-protocol.h>
#include <wayland-client-protocol.h>
