// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/Folders.h"

#include <string>

namespace kivo {

// The IANA name of this computer's time zone, as it is right now: what TZ says, else what /etc/localtime leads
// to, else /etc/timezone. "UTC" when none of them names a zone.
std::string localZone(const EnvironmentLookup& environment = environmentVariable,
                      const std::string& etc = "/etc");

} // namespace kivo
