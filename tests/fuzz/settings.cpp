// SPDX-License-Identifier: MIT
// Stored settings of any form: refused whole or read whole, and every rule that was read can be shown.

#include "Input.h"
#include "core/AlertDisplay.h"
#include "core/AlertSettings.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kivo;
    const auto stored = fuzz::value(data, size);
    if (!stored)
        return 0;
    const auto settings = fuzz::storedForm(*stored, decodeAlertSettings);
    if (!settings)
        return 0;
    for (const AlertRule& rule : settings->rules) {
        fuzz::require(!title(rule.trigger).empty());
        fuzz::require(!summary(rule).empty());
    }
    return 0;
}
