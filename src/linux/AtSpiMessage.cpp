// SPDX-License-Identifier: MIT
#include "linux/AtSpiMessage.h"

namespace kivo::atspi {

Message newCall(const char* destination, const char* path, const char* interface, const char* method) {
    // A path or name that an application made up wrongly would end the process.
    if (!dbus_validate_path(path, nullptr) || !dbus_validate_bus_name(destination, nullptr))
        return nullptr;
    Message message(dbus_message_new_method_call(destination, path, interface, method));
    if (message)
        dbus_message_set_auto_start(message.get(), FALSE);
    return message;
}

bool has(const Message& reply, const char* signature) {
    return reply && dbus_message_has_signature(reply.get(), signature);
}

std::vector<std::pair<std::string, std::string>> references(const Message& reply) {
    std::vector<std::pair<std::string, std::string>> result;
    if (!has(reply, "a(so)"))
        return result;
    auto list = Values(reply.get()).dive();
    for (; list.type() == DBUS_TYPE_STRUCT; list.next()) {
        auto fields = list.dive();
        std::string name = fields.text();
        fields.next();
        result.emplace_back(std::move(name), fields.text());
    }
    return result;
}

} // namespace kivo::atspi
