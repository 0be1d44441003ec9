// SPDX-License-Identifier: MIT
// What the JSON reader accepts, the writer writes so that it reads back as the same value.

#include "Input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kivo;
    const auto value = fuzz::value(data, size);
    if (!value)
        return 0;
    const std::string written = json::write(*value);
    fuzz::require(json::parse(written) == *value);
    fuzz::require(json::write(json::parse(written)) == written);
    return 0;
}
