// SPDX-License-Identifier: MIT
// kivo-sim FILE: runs the whole system on a machine made of data, in virtual time, and prints what it did to
// the outside world. FILE "-" is standard input.
#include "scenario/Scenario.h"

#include <array>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace {

constexpr int unreadable = 2;

// Nothing where there is no file or it cannot be read to its end, as a folder cannot.
std::optional<std::string> readAll(std::istream& file) {
    std::string text;
    std::array<char, 65536> piece{};
    do {
        file.read(piece.data(), piece.size());
        text.append(piece.data(), static_cast<std::size_t>(file.gcount()));
    } while (file);
    return file.eof() ? std::optional(std::move(text)) : std::nullopt;
}

std::optional<std::string> readAll(const std::string& path) {
    if (path == "-")
        return readAll(std::cin);
    std::ifstream file(path, std::ios::binary);
    return readAll(file);
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view argument = argc == 2 ? argv[1] : "";
    const bool wantsHelp = argument == "--help" || argument == "-h";
    if (wantsHelp || argc != 2) {
        std::fputs("usage: kivo-sim FILE (or - for standard input)\n", wantsHelp ? stdout : stderr);
        return wantsHelp ? 0 : unreadable;
    }
    const auto text = readAll(argv[1]);
    if (!text) {
        std::fprintf(stderr, "kivo-sim: cannot read %s\n", argv[1]);
        return unreadable;
    }
    try {
        kivo::Scenario::read(*text).play([](const std::string& line) {
            std::fwrite(line.data(), 1, line.size(), stdout);
            std::fputc('\n', stdout);
        });
    } catch (const kivo::ScenarioError& error) {
        std::fprintf(stderr, "kivo-sim: %s\n", error.what());
        return unreadable;
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
