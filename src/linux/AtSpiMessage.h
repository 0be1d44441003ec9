// SPDX-License-Identifier: MIT
#pragma once

#include <dbus/dbus.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// Messages of the accessibility bus.
namespace kivo::atspi {

constexpr const char* accessible = "org.a11y.atspi.Accessible";
constexpr const char* rootPath = "/org/a11y/atspi/accessible/root";

struct MessageRelease {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using Message = std::unique_ptr<DBusMessage, MessageRelease>;

// A call that starts no service. A null pointer when the destination or the path is none: applications make
// them up.
Message newCall(const char* destination, const char* path, const char* interface, const char* method);

// Whether it is there and holds values of these types.
bool has(const Message& reply, const char* signature);

// The connections' names and paths of a reply that is a list of objects.
std::vector<std::pair<std::string, std::string>> references(const Message& reply);

// Walks the values of a message; `dive` goes into arrays, structures and variants.
class Values {
public:
    explicit Values(DBusMessage* message) { dbus_message_iter_init(message, &iterator_); }

    int type() { return dbus_message_iter_get_arg_type(&iterator_); }
    void next() { dbus_message_iter_next(&iterator_); }
    Values dive() {
        Values inner;
        dbus_message_iter_recurse(&iterator_, &inner.iterator_);
        return inner;
    }
    std::string text() {
        const char* value = "";
        if (type() == DBUS_TYPE_STRING || type() == DBUS_TYPE_OBJECT_PATH)
            dbus_message_iter_get_basic(&iterator_, &value);
        return value;
    }
    std::uint32_t number() {
        std::uint32_t value = 0;
        if (type() == DBUS_TYPE_UINT32 || type() == DBUS_TYPE_INT32)
            dbus_message_iter_get_basic(&iterator_, &value);
        return value;
    }
    bool boolean() {
        dbus_bool_t value = FALSE;
        if (type() == DBUS_TYPE_BOOLEAN)
            dbus_message_iter_get_basic(&iterator_, &value);
        return value != FALSE;
    }

private:
    Values() = default;
    DBusMessageIter iterator_{};
};

} // namespace kivo::atspi
