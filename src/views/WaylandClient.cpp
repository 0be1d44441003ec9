// SPDX-License-Identifier: MIT
#include "views/WaylandClient.h"

#include <dlfcn.h>

namespace kivo::wayland {

Client client;

namespace {

template <typename Function>
bool find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

bool findAll(void* library) {
    return find(library, "wl_display_connect", client.displayConnect) &&
           find(library, "wl_display_disconnect", client.displayDisconnect) &&
           find(library, "wl_display_get_fd", client.displayGetFd) &&
           find(library, "wl_display_get_error", client.displayGetError) &&
           find(library, "wl_display_get_protocol_error", client.displayGetProtocolError) &&
           find(library, "wl_display_flush", client.displayFlush) &&
           find(library, "wl_display_prepare_read", client.displayPrepareRead) &&
           find(library, "wl_display_cancel_read", client.displayCancelRead) &&
           find(library, "wl_display_read_events", client.displayReadEvents) &&
           find(library, "wl_display_dispatch_pending", client.displayDispatchPending) &&
           find(library, "wl_proxy_marshal_flags", client.proxyMarshalFlags) &&
           find(library, "wl_proxy_add_listener", client.proxyAddListener) &&
           find(library, "wl_proxy_destroy", client.proxyDestroy) &&
           find(library, "wl_proxy_get_version", client.proxyGetVersion) &&
           find(library, "wl_proxy_get_user_data", client.proxyGetUserData) &&
           find(library, "wl_proxy_set_user_data", client.proxySetUserData);
}

} // namespace

bool loadClient() {
    static const bool isLoaded = [] {
        void* library = dlopen("libwayland-client.so.0", RTLD_LAZY | RTLD_LOCAL);
        return library && findAll(library);
    }();
    return isLoaded;
}

} // namespace kivo::wayland
