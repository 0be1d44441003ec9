// SPDX-License-Identifier: MIT
#include "devices/SharedStore.h"

#include "platform/UserDefaults.h"
#include "support/Json.h"

namespace kivo {

void SharedStore::save(UserDefaults* group, const std::vector<PowerDevice>& devices) {
    if (!group)
        throw ContainerUnavailable();
    group->set("devices.v1", PropertyValue::Data{json::write(encode(devices))});
}

} // namespace kivo
