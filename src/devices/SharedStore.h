// SPDX-License-Identifier: MIT
#pragma once

#include "devices/PowerDevice.h"

#include <stdexcept>
#include <vector>

namespace kivo {

class UserDefaults;

// The list of batteries for widgets, which run elsewhere and read only the suite shared with them.
namespace SharedStore {

// Thrown by `save`: the suite could not be opened. Nothing was written.
class ContainerUnavailable : public std::runtime_error {
public:
    ContainerUnavailable()
        : std::runtime_error("containerUnavailable: the widget's storage could not be opened") {}
};

// Replaces the whole list in `group` (a null pointer when the suite cannot be opened).
void save(UserDefaults* group, const std::vector<PowerDevice>& devices);

} // namespace SharedStore
} // namespace kivo
