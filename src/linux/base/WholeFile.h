// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kivo {

// Files that are replaced as a whole: at any instant, also after a crash of the process or of the computer,
// the path holds either the complete old text or the complete new one. New files have mode 0600, new folders
// 0700. A path that is a symbolic link stays one: what it points to is replaced. Errors are descriptions such
// as "/home/a/x.json: No space left on device". Callable from any thread; blocks on the disk.

struct FileText {
    enum class State { missing, unreadable, read };
    State state = State::missing;
    std::string text;  // when read
    std::string error; // when unreadable
};
// In bytes; what is larger counts as unreadable. Kivo's own files have a hundredth of it at most.
constexpr std::size_t largestWholeFile = std::size_t{64} << 20;
FileText readWholeFile(const std::string& path);

// Nothing on success; the text is then on the disk.
std::optional<std::string> replaceWholeFile(const std::string& path, std::string_view text);
// The same for a text in parts.
std::optional<std::string> replaceWholeFile(const std::string& path,
                                            const std::vector<std::string_view>& parts);

// Moves the file to the first free name of PATH.unreadable, PATH.unreadable.2, … No file at all is a success.
std::optional<std::string> moveFileAside(const std::string& path);

// Removes the half-written files that processes killed during `replaceWholeFile` left beside the path.
void removeLeftovers(const std::string& path);

} // namespace kivo
