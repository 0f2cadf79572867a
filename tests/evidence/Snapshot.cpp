#include "Snapshot.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace korvanti::testing {
namespace {

/// The names of a folder in the open; none where it can't be listed.
std::vector<std::string> namesIn(int folder) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::fdopendir(folder), &::closedir);
    if (!listing)
        ADD_FAILURE() << "a folder of the snapshot can't be listed";
    while (const dirent* entry = listing ? ::readdir(listing.get()) : nullptr) {
        if (const std::string name = entry->d_name; name != "." && name != "..")
            names.push_back(name);
    }
    return names;
}

std::string contentsOf(int folder, const std::string& name, mode_t mode) {
    std::string bytes(4096, '\0');
    ssize_t length = 0;
    if (S_ISLNK(mode)) {
        length = ::readlinkat(folder, name.c_str(), bytes.data(), bytes.size());
    } else if (S_ISREG(mode)) {
        const int file = ::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
        length = ::read(file, bytes.data(), bytes.size());
        ::close(file);
    }
    if (length < 0 || length == std::ssize(bytes))
        ADD_FAILURE() << name << " can't be read, or is too long for a snapshot";
    bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    return bytes;
}

/// Takes over the descriptor.
void add(Snapshot& snapshot, int folder, const std::string& path) {
    for (const auto& name : namesIn(folder == -1 ? -1 : ::dup(folder))) {
        struct stat status {};
        if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            ADD_FAILURE() << name << " vanished from under a snapshot";
        const auto full = path.empty() ? name : path + "/" + name;
        snapshot[full] = std::to_string(status.st_mode) + " " + contentsOf(folder, name, status.st_mode);
        if (S_ISDIR(status.st_mode))
            add(snapshot, ::openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC),
                full);
    }
    ::close(folder);
}

} // namespace

Snapshot snapshotOf(const std::string& folder) {
    Snapshot snapshot;
    add(snapshot, ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), {});
    return snapshot;
}

Snapshot part(const Snapshot& whole, std::string_view root) {
    Snapshot found;
    for (auto entry = whole.lower_bound(std::string(root));
         entry != whole.end() && entry->first.starts_with(root); ++entry) {
        if (entry->first.size() == root.size())
            found[{}] = entry->second;
        else if (entry->first[root.size()] == '/')
            found[entry->first.substr(root.size() + 1)] = entry->second;
    }
    return found;
}

std::string differences(const Snapshot& before, const Snapshot& after) {
    std::string lines;
    int left = 5;
    const auto note = [&](const std::string& what, const std::string& path) {
        if (left-- > 0)
            lines.append("\n    ").append(what).append(path);
    };
    for (const auto& [path, contents] : before) {
        const auto found = after.find(path);
        if (found == after.end())
            note("gone: ", path);
        else if (found->second != contents)
            note("changed: ", path);
    }
    for (const auto& [path, contents] : after) {
        if (!before.contains(path))
            note("new: ", path);
    }
    return lines;
}

} // namespace korvanti::testing
