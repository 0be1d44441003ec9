// SPDX-License-Identifier: MIT
// Whatever bytes a setting holds come back from the settings file as they were, and a file that can be read is
// written so that it reads back the same.

#include "linux/base/FileUserDefaults.h"
#include "support/Json.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kivo;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Dictionary stored{{"key", PropertyValue::Data{text}}};
    if (defaults::decode(defaults::encode(stored)) != stored)
        std::abort();
    Dictionary values;
    try {
        values = defaults::decode(text);
    } catch (const DecodingError&) {
        return 0;
    }
    if (defaults::decode(defaults::encode(values)) != values)
        std::abort();
    return 0;
}
