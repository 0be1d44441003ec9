// SPDX-License-Identifier: MIT
#include "linux/base/WholeFile.h"

#include "linux/base/Descriptor.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

namespace kivo {
namespace {

std::string failure(const std::string& path) {
    return path + ": " + std::strerror(errno);
}

std::string folderOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

// Where the path leads when it is a symbolic link.
std::string followed(const std::string& path) {
    char target[PATH_MAX];
    struct stat status {};
    if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode))
        return path;
    if (realpath(path.c_str(), target))
        return target;
    // Nothing is there yet.
    const bool leadsNowhere = errno == ENOENT;
    const auto length = readlink(path.c_str(), target, sizeof target);
    if (!leadsNowhere || length <= 0 || static_cast<std::size_t>(length) == sizeof target)
        return path;
    const std::string aim(target, static_cast<std::size_t>(length));
    return aim.front() == '/' ? aim : folderOf(path) + "/" + aim;
}

bool makeFolders(const std::string& folder) {
    if (mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST)
        return true;
    if (errno != ENOENT || folder == "/" || folder == ".")
        return false;
    return makeFolders(folderOf(folder)) && (mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST);
}

// A temporary file's name is ".NAME.XXXXXX.part". Whoever writes one holds its lock, so that others can tell
// a leftover from a file that is being written.
constexpr std::string_view temporaryEnd = ".part";

struct Temporary {
    Descriptor file;
    std::string path;
};

Temporary makeTemporary(const std::string& path) {
    std::string name = folderOf(path) + "/." + nameOf(path) + ".XXXXXX" + std::string(temporaryEnd);
    Temporary result;
    result.file = Descriptor(mkostemps(name.data(), static_cast<int>(temporaryEnd.size()), O_CLOEXEC));
    if (result.file)
        flock(result.file.get(), LOCK_EX | LOCK_NB);
    result.path = std::move(name);
    return result;
}

bool writeAll(int file, const std::vector<std::string_view>& parts) {
    constexpr std::size_t mostAtOnce = 512;
    std::size_t first = 0;  // not written as a whole yet
    std::size_t offset = 0; // within it
    iovec rest[mostAtOnce];
    while (first < parts.size()) {
        const std::size_t count = std::min(mostAtOnce, parts.size() - first);
        for (std::size_t i = 0; i < count; ++i)
            rest[i] = {const_cast<char*>(parts[first + i].data()), parts[first + i].size()};
        rest[0] = {const_cast<char*>(parts[first].data() + offset), parts[first].size() - offset};
        const ssize_t written = writev(file, rest, static_cast<int>(count));
        if (written < 0 && errno != EINTR)
            return false;
        offset += written > 0 ? static_cast<std::size_t>(written) : 0;
        for (; first < parts.size() && offset >= parts[first].size(); ++first)
            offset -= parts[first].size();
    }
    return true;
}

bool syncFolder(const std::string& folder) {
    const Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Some file systems cannot sync a folder; there the rename is as safe as it gets.
    return descriptor && (fsync(descriptor.get()) == 0 || errno == EINVAL || errno == ENOTSUP);
}

} // namespace

FileText readWholeFile(const std::string& path) {
    // Without O_NONBLOCK a pipe in the file's place would hold the process.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file) {
        const bool isMissing = errno == ENOENT || errno == ENOTDIR;
        return {isMissing ? FileText::State::missing : FileText::State::unreadable, {}, failure(path)};
    }
    struct stat status {};
    if (fstat(file.get(), &status) != 0)
        return {FileText::State::unreadable, {}, failure(path)};
    if (!S_ISREG(status.st_mode))
        return {FileText::State::unreadable, {}, path + ": not a file"};
    FileText result{FileText::State::read, {}, {}};
    char buffer[16384];
    while (result.text.size() <= largestWholeFile) {
        const ssize_t count = ::read(file.get(), buffer, sizeof buffer);
        if (count == 0)
            return result;
        if (count > 0)
            result.text.append(buffer, static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return {FileText::State::unreadable, {}, failure(path)};
    }
    return {FileText::State::unreadable, {}, path + ": too large"};
}

std::optional<std::string> replaceWholeFile(const std::string& path, std::string_view text) {
    return replaceWholeFile(path, std::vector{text});
}

std::optional<std::string> replaceWholeFile(const std::string& path,
                                            const std::vector<std::string_view>& parts) {
    const std::string target = followed(path);
    const std::string folder = folderOf(target);
    if (!makeFolders(folder))
        return failure(folder);
    // Somebody who takes the fresh file for a leftover can remove it before it is locked: then once more.
    for (int attempt = 0; attempt < 3; ++attempt) {
        const Temporary temporary = makeTemporary(target);
        if (!temporary.file)
            return failure(folder);
        if (writeAll(temporary.file.get(), parts) && fsync(temporary.file.get()) == 0 &&
            rename(temporary.path.c_str(), target.c_str()) == 0)
            return syncFolder(folder) ? std::nullopt : std::optional(failure(folder));
        const int error = errno;
        unlink(temporary.path.c_str());
        errno = error;
        if (error != ENOENT)
            break;
    }
    return failure(target);
}

std::optional<std::string> moveFileAside(const std::string& path) {
    const std::string source = followed(path);
    for (int number = 1; number < 1000; ++number) {
        const std::string aside =
            source + ".unreadable" + (number == 1 ? std::string() : "." + std::to_string(number));
        if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, aside.c_str(), RENAME_NOREPLACE) == 0)
            return std::nullopt;
        if (errno == EINVAL || errno == ENOSYS) {
            // A file system without that operation.
            if (access(aside.c_str(), F_OK) == 0)
                continue;
            if (rename(source.c_str(), aside.c_str()) == 0)
                return std::nullopt;
        }
        if (errno == ENOENT)
            return std::nullopt;
        if (errno != EEXIST)
            break;
    }
    return failure(source);
}

void removeLeftovers(const std::string& path) {
    const std::string target = followed(path);
    const std::string folder = folderOf(target);
    const std::string start = "." + nameOf(target) + ".";
    DIR* entries = opendir(folder.c_str());
    if (!entries)
        return;
    while (const dirent* entry = readdir(entries)) {
        const std::string_view name = entry->d_name;
        if (name.size() != start.size() + 6 + temporaryEnd.size() || !name.starts_with(start) ||
            !name.ends_with(temporaryEnd))
            continue;
        const std::string leftover = folder + "/" + std::string(name);
        const Descriptor file(open(leftover.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
        if (file && flock(file.get(), LOCK_EX | LOCK_NB) == 0)
            unlink(leftover.c_str());
    }
    closedir(entries);
}

} // namespace kivo
