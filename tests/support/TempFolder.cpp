#include "support/TempFolder.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace korvanti::testing {
namespace {

void expectDone(bool done, const std::string& what) {
    if (!done)
        ADD_FAILURE() << what << ": " << std::error_code(errno, std::generic_category()).message();
}

void allocate(int file, std::int64_t bytes) {
#ifdef __APPLE__
    const std::string block(1 << 20, 'x');
    for (std::int64_t left = bytes; left > 0; left -= static_cast<std::int64_t>(block.size())) {
        const auto size = std::min<std::int64_t>(left, static_cast<std::int64_t>(block.size()));
        expectDone(::write(file, block.data(), static_cast<std::size_t>(size)) == size, "write");
    }
#else
    errno = ::posix_fallocate(file, 0, bytes);
    expectDone(errno == 0, "posix_fallocate");
    // A large file in many pieces has blocks of the file system's own, which count as well: it is made
    // shorter by them.
    struct stat status {};
    expectDone(::fstat(file, &status) == 0, "fstat");
    const auto wanted = (bytes + status.st_blksize - 1) / status.st_blksize * status.st_blksize;
    if (const auto surplus = std::int64_t{status.st_blocks} * 512 - wanted; surplus > 0)
        expectDone(::ftruncate(file, bytes - surplus) == 0, "ftruncate");
#endif
}

} // namespace

TempFolder::TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "korvanti-test.XXXXXX").string();
    expectDone(::mkdtemp(name.data()) != nullptr, name);
    root_ = std::filesystem::canonical(name).string();
}

TempFolder::TempFolder(std::string path) : root_(std::move(path)) {}

TempFolder::~TempFolder() {
    // A test may have taken the rights that removing needs.
    std::error_code error;
    for (auto entry = std::filesystem::recursive_directory_iterator(
             root_, std::filesystem::directory_options::skip_permission_denied, error);
         !error && entry != std::filesystem::recursive_directory_iterator(); entry.increment(error)) {
        if (!entry->is_symlink() && entry->is_directory()) // in this order: a link may lead to itself
            ::chmod(entry->path().c_str(), 0700);
    }
    std::filesystem::remove_all(root_, error);
    EXPECT_FALSE(error) << root_ << ": " << error.message();
}

std::string TempFolder::path(std::string_view relative) const {
    return relative.empty() ? root_ : root_ + "/" + std::string(relative);
}

std::string TempFolder::file(std::string_view relative, const File& contents) const {
    const auto full = path(relative);
    std::filesystem::create_directories(std::filesystem::path(full).parent_path());
    const int file = ::open(full.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    expectDone(file >= 0, full);
    if (contents.sparseBytes > 0)
        expectDone(::ftruncate(file, contents.sparseBytes) == 0, full);
    if (contents.allocatedBytes > 0)
        allocate(file, contents.allocatedBytes);
    expectDone(::pwrite(file, contents.text.data(), contents.text.size(), 0) ==
                   static_cast<ssize_t>(contents.text.size()),
               full);
    ::close(file);
    if (contents.modified)
        setModified(relative, *contents.modified);
    return full;
}

std::string TempFolder::folder(std::string_view relative) const {
    auto full = path(relative);
    std::filesystem::create_directories(full);
    return full;
}

std::string TempFolder::symlink(std::string_view relative, const std::string& target) const {
    auto full = path(relative);
    std::filesystem::create_directories(std::filesystem::path(full).parent_path());
    expectDone(::symlink(target.c_str(), full.c_str()) == 0, full);
    return full;
}

std::string TempFolder::hardLink(std::string_view relative, const std::string& existing) const {
    auto full = path(relative);
    std::filesystem::create_directories(std::filesystem::path(full).parent_path());
    expectDone(::link(existing.c_str(), full.c_str()) == 0, full);
    return full;
}

void TempFolder::setModified(std::string_view relative, std::int64_t secondsSince1970) const {
    const auto full = path(relative);
    const timespec both[2] = {{.tv_sec = secondsSince1970, .tv_nsec = 0},
                              {.tv_sec = secondsSince1970, .tv_nsec = 0}};
    expectDone(::utimensat(AT_FDCWD, full.c_str(), both, AT_SYMLINK_NOFOLLOW) == 0, full);
}

void TempFolder::setMode(std::string_view relative, unsigned mode) const {
    expectDone(::chmod(path(relative).c_str(), static_cast<mode_t>(mode)) == 0, path(relative));
}

std::int64_t blocksOf(const std::string& path) {
    struct stat status {};
    expectDone(::lstat(path.c_str(), &status) == 0, path);
    return static_cast<std::int64_t>(status.st_blocks) * 512;
}

std::string textOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream.good()) << path;
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace korvanti::testing
