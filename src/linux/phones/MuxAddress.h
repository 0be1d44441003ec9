// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kivo {

// Where usbmuxd, which hands out the connections to phones, listens: a socket in the file system, or a TCP port
// of some host.
struct MuxAddress {
    std::string path; // empty for TCP
    std::string host;
    std::string port;

    // From USBMUXD_SOCKET_ADDRESS ("UNIX:/path" or "host:port"), as libusbmuxd reads it; else /var/run/usbmuxd.
    static MuxAddress find();
    static MuxAddress parse(const std::string& text);

    // Whether connecting may succeed; for TCP that is not known and taken to be so.
    bool mayListen() const;
    // A connected socket, or -1.
    int connect() const;
};

} // namespace kivo
