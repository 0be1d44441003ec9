// SPDX-License-Identifier: MIT
#pragma once

#include "support/Json.h"
#include "support/PropertyValue.h"

#include <string>
#include <string_view>

namespace kivo {

// XML property lists, as usbmuxd and phones speak them. Everything in one comes from a device that may be
// broken or hostile, so depth and size are limited.
namespace propertylist {

inline constexpr std::size_t deepestLevel = 32;
inline constexpr std::size_t mostValues = 20'000;

// Throws DecodingError for anything that is not one complete list. Data and dates, which nobody here asks for,
// are left out. When a dictionary repeats a key the last value counts.
PropertyValue parse(std::string_view text);

// A complete list of one dictionary; null and Data values are left out.
std::string write(const Dictionary& dictionary);

} // namespace propertylist
} // namespace kivo
