// SPDX-License-Identifier: MIT
#include "support/Log.h"

namespace kivo {

std::string_view name(LogLevel level) {
    switch (level) {
    case LogLevel::debug:
        return "debug";
    case LogLevel::info:
        return "info";
    case LogLevel::default_:
        return "default";
    case LogLevel::error:
        return "error";
    }
    return "default";
}

} // namespace kivo
