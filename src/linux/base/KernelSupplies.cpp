// SPDX-License-Identifier: MIT
#include "linux/base/KernelSupplies.h"

#include "linux/base/Descriptor.h"

#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace kivo {
namespace {

// Attributes are one page at most.
constexpr std::size_t attributeSize = 4096;

std::optional<std::string> readAttribute(int folder, const char* name) {
    const Descriptor file(openat(folder, name, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    char buffer[attributeSize];
    const ssize_t size = file ? read(file.get(), buffer, sizeof buffer) : -1;
    if (size < 0)
        return std::nullopt;
    return std::string(buffer, static_cast<std::size_t>(size));
}

KernelAttributes readAttributes(const std::filesystem::path& path) {
    KernelAttributes attributes;
    const Descriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        return attributes;
    for (const auto name : kernelAttributeNames()) {
        const std::string key(name);
        if (auto value = readAttribute(folder.get(), key.c_str()))
            attributes.emplace(key, std::move(*value));
    }
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
