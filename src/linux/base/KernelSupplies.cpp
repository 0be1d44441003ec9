// SPDX-License-Identifier: MIT
#include "linux/base/KernelSupplies.h"

#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace kivo {
namespace {

// Attributes are one page at most.
constexpr std::size_t attributeSize = 4096;

std::optional<std::string> readAttribute(int folder, const char* name) {
    const int descriptor = openat(folder, name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
        return std::nullopt;
    char buffer[attributeSize];
    const ssize_t size = read(descriptor, buffer, sizeof buffer);
    close(descriptor);
    if (size < 0)
        return std::nullopt;
    return std::string(buffer, static_cast<std::size_t>(size));
}

KernelAttributes readAttributes(const std::filesystem::path& path) {
    KernelAttributes attributes;
    const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return attributes;
    for (const auto name : kernelAttributeNames()) {
        const std::string key(name);
        if (auto value = readAttribute(folder, key.c_str()))
            attributes.emplace(key, std::move(*value));
    }
    close(folder);
    return attributes;
}

} // namespace

KernelSupplies readKernelSupplies(const std::string& folder) {
    KernelSupplies supplies;
    std::error_code error;
    for (std::filesystem::directory_iterator it(folder, error), end; !error && it != end; it.increment(error))
        supplies.emplace(it->path().filename().string(), readAttributes(it->path()));
    return supplies;
}

} // namespace kivo
