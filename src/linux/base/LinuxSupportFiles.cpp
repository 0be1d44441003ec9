// SPDX-License-Identifier: MIT
#include "linux/base/LinuxSupportFiles.h"

#include "linux/base/WholeFile.h"

#include <unistd.h>
#include <utility>

namespace kivo {
namespace {

std::string notAllowed(std::string_view path) {
    return std::string(path) + ": not a path inside the support folder";
}

} // namespace

std::optional<std::string> LinuxSupportFiles::located(std::string_view path) const {
    constexpr std::string_view ownFolder = "Kivo/";
    if (path.starts_with(ownFolder))
        path.remove_prefix(ownFolder.size());
    const std::string parts = "/" + std::string(path) + "/";
    if (path.empty() || parts.find("//") != std::string::npos || parts.find("/../") != std::string::npos)
        return std::nullopt;
    return folder_ + "/" + std::string(path);
}

std::optional<std::string> LinuxSupportFiles::read(std::string_view path) {
    const auto file = located(path);
    if (!file)
        return std::nullopt;
    // What was handed over is what must be read back.
    writer_.flush();
    auto content = readWholeFile(*file);
    return content.state == FileText::State::read ? std::optional(std::move(content.text)) : std::nullopt;
}

bool LinuxSupportFiles::keepAside(std::string_view path) {
    const auto file = located(path);
    if (!file || access(file->c_str(), F_OK) != 0)
        return false;
    writer_.flush();
    return !moveFileAside(*file);
}

std::optional<std::string> LinuxSupportFiles::write(std::string_view path, const std::string& text) {
    const auto file = located(path);
    return file ? writer_.writeAndWait(*file, text) : notAllowed(path);
}

void LinuxSupportFiles::writeInBackground(std::string_view path, std::string text,
                                          std::function<void(std::optional<std::string>)> done) {
    handOver(path, std::move(text), std::move(done));
}

void LinuxSupportFiles::writePiecesInBackground(std::string_view path, std::function<TextPieces()> text,
                                                std::function<void(std::optional<std::string>)> done) {
    handOver(path, std::move(text), std::move(done));
}

template <typename Text>
void LinuxSupportFiles::handOver(std::string_view path, Text text,
                                 std::function<void(std::optional<std::string>)> done) {
    const auto file = located(path);
    if (!file) {
        loop_.post([done = std::move(done), error = notAllowed(path)] { done(error); });
        return;
    }
    writer_.write(*file, std::move(text),
                  [&loop = loop_, done = std::move(done)](const std::optional<std::string>& error) {
                      loop.post([done, error] { done(error); });
                  });
}

} // namespace kivo
