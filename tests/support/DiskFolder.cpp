#include "support/DiskFolder.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace korvanti::testing {
namespace {

void must(bool done, const std::string& what) {
    if (!done)
        throw std::system_error(errno, std::generic_category(), what);
}

void makeParent(const std::string& path) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
}

void allocate(int file, std::int64_t bytes) {
#ifdef __APPLE__
    const std::string block(1 << 20, 'x');
    for (std::int64_t left = bytes; left > 0; left -= static_cast<std::int64_t>(block.size())) {
        const auto size = std::min<std::int64_t>(left, static_cast<std::int64_t>(block.size()));
        must(::write(file, block.data(), static_cast<std::size_t>(size)) == size, "write");
    }
#else
    errno = ::posix_fallocate(file, 0, bytes);
    must(errno == 0, "posix_fallocate");
    // A large file in many pieces has blocks of the file system's own, which count as well: it is made
    // shorter by them.
    struct stat status {};
    must(::fstat(file, &status) == 0, "fstat");
    const auto wanted = (bytes + status.st_blksize - 1) / status.st_blksize * status.st_blksize;
    if (const auto surplus = std::int64_t{status.st_blocks} * 512 - wanted; surplus > 0)
        must(::ftruncate(file, bytes - surplus) == 0, "ftruncate");
#endif
}

} // namespace

DiskFolder::DiskFolder(std::string path) : root_(std::move(path)) {}

std::string DiskFolder::path(std::string_view relative) const {
    return relative.empty() ? root_ : root_ + "/" + std::string(relative);
}

std::string DiskFolder::file(std::string_view relative, const File& contents) const {
    auto full = path(relative);
    makeParent(full);
    const int file = ::open(full.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    must(file >= 0, full);
    if (contents.sparseBytes > 0)
        must(::ftruncate(file, contents.sparseBytes) == 0, full);
    if (contents.allocatedBytes > 0)
        allocate(file, contents.allocatedBytes);
    must(::pwrite(file, contents.text.data(), contents.text.size(), 0) ==
             static_cast<ssize_t>(contents.text.size()),
         full);
    ::close(file);
    if (contents.modified)
        setModified(relative, *contents.modified);
    return full;
}

std::string DiskFolder::folder(std::string_view relative) const {
    auto full = path(relative);
    std::filesystem::create_directories(full);
    return full;
}

std::string DiskFolder::symlink(std::string_view relative, const std::string& target) const {
    auto full = path(relative);
    makeParent(full);
    must(::symlink(target.c_str(), full.c_str()) == 0, full);
    return full;
}

std::string DiskFolder::hardLink(std::string_view relative, const std::string& existing) const {
    auto full = path(relative);
    makeParent(full);
    must(::link(existing.c_str(), full.c_str()) == 0, full);
    return full;
}

void DiskFolder::setModified(std::string_view relative, std::int64_t secondsSince1970) const {
    const auto full = path(relative);
    const timespec both[2] = {{.tv_sec = secondsSince1970, .tv_nsec = 0},
                              {.tv_sec = secondsSince1970, .tv_nsec = 0}};
    must(::utimensat(AT_FDCWD, full.c_str(), both, AT_SYMLINK_NOFOLLOW) == 0, full);
}

void DiskFolder::setMode(std::string_view relative, unsigned mode) const {
    must(::chmod(path(relative).c_str(), static_cast<mode_t>(mode)) == 0, path(relative));
}

} // namespace korvanti::testing
