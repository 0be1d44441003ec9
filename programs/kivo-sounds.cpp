// SPDX-License-Identifier: MIT
// kivo-sounds FOLDER: writes Kivo's sounds as WAV files, for listening.

#include "linux/base/SoundSketch.h"
#include "linux/base/SoundSynth.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

void add(std::string& bytes, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8 * i) & 0xff);
}

// One channel of 16-bit samples.
std::string wave(const std::vector<float>& samples) {
    const auto size = static_cast<std::uint32_t>(samples.size() * 2);
    const auto rate = static_cast<std::uint32_t>(kivo::SoundSketch::rate);
    std::string bytes = "RIFF";
    add(bytes, 36 + size, 4);
    bytes += "WAVEfmt ";
    add(bytes, 16, 4);
    add(bytes, 1, 2);
    add(bytes, 1, 2);
    add(bytes, rate, 4);
    add(bytes, rate * 2, 4);
    add(bytes, 2, 2);
    add(bytes, 16, 2);
    bytes += "data";
    add(bytes, size, 4);
    for (const float sample : samples)
        add(bytes, static_cast<std::uint32_t>(std::lround(sample * 32767)), 2);
    return bytes;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: kivo-sounds FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    for (const auto name : kivo::soundNames()) {
        const auto path = folder / (std::string(name) + ".wav");
        std::ofstream file(path, std::ios::binary);
        file << wave(*kivo::synthesizeSound(name));
        if (!file.flush()) {
            std::fprintf(stderr, "kivo-sounds: %s cannot be written\n", path.c_str());
            return 1;
        }
        std::printf("%s\n", path.c_str());
    }
}
