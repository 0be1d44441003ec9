// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kivo {

// The path of a program that belongs to this one: beside it, or where packages put such programs
// (../libexec/kivo). Empty when it is in neither place.
std::string helperProgram(std::string_view name);

} // namespace kivo
