#include "fs/FolderChain.h"

#include "base/SystemCall.h"
#include "base/Text.h"
#include "fs/PathTools.h"
#include "platform/EntryKinds.h"
#include "platform/Platform.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <utility>

namespace korvanti::FolderChain {
namespace {

/// The child folder, made where nothing stands. No descriptor and `errno` on failure; a link is ELOOP
/// whatever the system calls it.
FileDescriptor step(int parent, const std::string& name) {
    FileDescriptor folder(Platform::openPassageAt(parent, name.c_str()));
    if (!folder && errno == ENOENT) {
        if (uninterrupted([&] { return ::mkdirat(parent, name.c_str(), 0755); }) != 0 && errno != EEXIST)
            return {};
        folder = FileDescriptor(Platform::openPassageAt(parent, name.c_str()));
    }
    if (folder)
        return folder;
    const int error = errno;
    struct stat status {};
    const bool isLink = ::fstatat(parent, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
                        Platform::kindOfMode(status.st_mode) == Platform::EntryKind::link;
    errno = isLink ? ELOOP : error;
    return {};
}

} // namespace

std::expected<FileDescriptor, FileError> create(int base, const std::string& basePath,
                                                std::string_view relative) {
    const auto start = std::min(relative.find_first_not_of('/'), relative.size());
    const auto path = PathTools::joined(basePath, relative.substr(start));
    const auto names = Text::pieces(relative, '/');
    if (!std::ranges::all_of(names, PathTools::isEntryName))
        return std::unexpected(fileErrorOf(EINVAL, path));
    FileDescriptor current(Platform::openPassageAt(base, "."));
    if (!current)
        return std::unexpected(lastFileError(path));
    for (const auto name : names) {
        auto next = step(current.get(), std::string(name));
        if (!next)
            return std::unexpected(lastFileError(path));
        current = std::move(next);
    }
    return current;
}

} // namespace korvanti::FolderChain
