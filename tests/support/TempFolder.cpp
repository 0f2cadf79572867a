#include "support/TempFolder.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace korvanti::testing {
namespace {

std::string freshFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "korvanti-test.XXXXXX").string();
    if (!::mkdtemp(name.data()))
        throw std::system_error(errno, std::generic_category(), name);
    return std::filesystem::canonical(name).string();
}

} // namespace

TempFolder::TempFolder() : DiskFolder(freshFolder()) {}

TempFolder::TempFolder(std::string path) : DiskFolder(std::move(path)) {}

TempFolder::~TempFolder() {
    // A test may have taken the rights that removing needs.
    const auto root = path();
    std::error_code error;
    for (auto entry = std::filesystem::recursive_directory_iterator(
             root, std::filesystem::directory_options::skip_permission_denied, error);
         !error && entry != std::filesystem::recursive_directory_iterator(); entry.increment(error)) {
        if (!entry->is_symlink() && entry->is_directory()) // in this order: a link may lead to itself
            ::chmod(entry->path().c_str(), 0700);
    }
    std::filesystem::remove_all(root, error);
    EXPECT_FALSE(error) << root << ": " << error.message();
}

std::int64_t blocksOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return static_cast<std::int64_t>(status.st_blocks) * 512;
}

std::string textOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream.good()) << path;
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace korvanti::testing
