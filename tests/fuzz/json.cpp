// SPDX-License-Identifier: MIT
// What the JSON reader accepts, the writer must write so that it reads back as the same value.

#include "support/Json.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    kivo::PropertyValue value;
    try {
        value = kivo::json::parse(text);
    } catch (const kivo::DecodingError&) {
        return 0;
    }
    const std::string written = kivo::json::write(value);
    if (!(kivo::json::parse(written) == value) || kivo::json::write(kivo::json::parse(written)) != written)
        std::abort();
    return 0;
}
