// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace kivo {

// A folder that goes away with the test.
class TestFolder {
public:
    TestFolder() {
        char name[] = "/tmp/kivoXXXXXX";
        if (!mkdtemp(name))
            throw std::runtime_error("no temporary folder");
        path = name;
    }
    ~TestFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    std::string operator/(const std::string& name) const { return path + "/" + name; }
    // Names of everything inside, sorted.
    std::vector<std::string> names(const std::string& inside = {}) const {
        std::vector<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(path + "/" + inside))
            result.push_back(entry.path().filename());
        std::sort(result.begin(), result.end());
        return result;
    }

    std::string path;
};

inline std::string textOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void put(const std::string& path, std::string_view text) {
    std::ofstream(path, std::ios::binary) << text;
}

} // namespace kivo
